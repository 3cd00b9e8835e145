// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Image.h"

#include <algorithm>
#include <array>
#include <vector>

namespace coherence {

namespace {

/** By IP type what the modem calls it: UNKNOWN, V4, V6, V4V6. */
using IPTypes = std::array<std::uint64_t, 4>;
constexpr IPTypes kPdp = {3, 0, 2, 3};
constexpr IPTypes kPdn = {2, 0, 1, 2};
constexpr IPTypes kOthers = {255, 0, 1, 2};

/** By the position of a client's APN type the position of the modem's. */
constexpr std::array<unsigned, 12> kTypePositions = {0, 2, 4, 3, 5, 6, 1, 7, 8, 9, 11, 10};

const IPTypes& namesOf(ValueKind kind, bool is3gpp2) {
    return kind != ValueKind::CommonIPType ? kOthers : is3gpp2 ? kPdn : kPdp;
}

/** Whatever is no IP type goes out as the last. */
std::uint64_t ipTypeToModem(const IPTypes& names, std::int64_t value) {
    const bool isKnown = value >= 0 && value < static_cast<std::int64_t>(names.size());
    return isKnown ? names.at(static_cast<std::size_t>(value)) : names.back();
}

std::optional<std::int64_t> ipTypeFromModem(ValueKind kind, bool is3gpp2, std::uint64_t value) {
    if (kind == ValueKind::RoamIPType && value == kOthers[0]) {
        return std::nullopt;  // not configured; only the home override calls it unknown
    }
    const auto& names = namesOf(kind, is3gpp2);
    const auto* found = std::find(names.begin() + 1, names.end(), value);
    return found == names.end() ? kUnknown : found - names.begin();
}

/** 3GPP has a bit for each of PAP and CHAP, 3GPP2 an enumeration; the numbers are the same. */
std::int64_t authTypeKept(bool is3gpp2, std::int64_t value) {
    return !is3gpp2 ? value & 3 : value >= 1 && value <= 3 ? value : 0;
}

bool isIPType(ValueKind kind) {
    return kind == ValueKind::CommonIPType || kind == ValueKind::HomeIPType ||
           kind == ValueKind::RoamIPType;
}

std::int64_t bit(unsigned position) {
    return std::int64_t{1} << position;
}

/** By value; what is not named prints as its number. */
std::vector<std::string> namesOf(ValueKind kind) {
    switch (kind) {
        case ValueKind::CommonIPType:
        case ValueKind::HomeIPType:
        case ValueKind::RoamIPType:
            return {"UNKNOWN", "V4", "V6", "V4V6"};
        case ValueKind::AuthType:
            return {"NONE", "PAP", "CHAP", "PAP_CHAP"};
        case ValueKind::ApnClass:
            return {"0", "IMS", "ADMN", "INET", "APP"};
        default:
            return {};
    }
}

}  // namespace

bool isEnumerator(ValueKind kind, bool is3gpp2) {
    return isIPType(kind) || (kind == ValueKind::AuthType && is3gpp2);
}

std::uint64_t toModem(ValueKind kind, bool is3gpp2, std::int64_t value) {
    switch (kind) {
        case ValueKind::Count:
            return static_cast<std::uint16_t>(value);
        case ValueKind::ApnClass:
            return static_cast<std::uint8_t>(value);
        case ValueKind::AuthType:
            return static_cast<std::uint64_t>(authTypeKept(is3gpp2, value));
        case ValueKind::CommonIPType:
        case ValueKind::HomeIPType:
        case ValueKind::RoamIPType:
            return ipTypeToModem(namesOf(kind, is3gpp2), value);
        default:
            return static_cast<std::uint64_t>(value);
    }
}

std::optional<std::int64_t> fromModem(ValueKind kind, bool is3gpp2, std::uint64_t value) {
    switch (kind) {
        case ValueKind::Flag:
            return value != 0 ? 1 : 0;
        case ValueKind::AuthType:
            return authTypeKept(is3gpp2, static_cast<std::int64_t>(value));
        case ValueKind::CommonIPType:
        case ValueKind::HomeIPType:
        case ValueKind::RoamIPType:
            return ipTypeFromModem(kind, is3gpp2, value);
        default:
            return static_cast<std::int64_t>(value);
    }
}

std::string printed(ValueKind kind, std::int64_t value) {
    const auto names = namesOf(kind);
    if (value >= 0 && value < static_cast<std::int64_t>(names.size())) {
        return names[static_cast<std::size_t>(value)];
    }
    return kind == ValueKind::ApnTypes ? std::to_string(static_cast<std::uint64_t>(value))
                                       : std::to_string(value);
}

std::int64_t modemTypesOf(std::int64_t clientTypes) {
    std::int64_t result = 0;
    for (unsigned position = 0; position < kTypePositions.size(); ++position) {
        result |= (clientTypes & bit(position)) != 0 ? bit(kTypePositions.at(position)) : 0;
    }
    return result;
}

std::int64_t clientTypesOf(std::int64_t modemTypes) {
    std::int64_t result = 0;
    for (unsigned position = 0; position < kTypePositions.size(); ++position) {
        result |= (modemTypes & bit(kTypePositions.at(position))) != 0 ? bit(position) : 0;
    }
    return result;
}

}  // namespace coherence
