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

bool isIPType(ValueKind kind) {
    return kind == ValueKind::CommonIPType || kind == ValueKind::HomeIPType ||
           kind == ValueKind::RoamIPType;
}

const IPTypes& codesOf(ValueKind kind, bool is3gpp2) {
    return kind != ValueKind::CommonIPType ? kOthers : is3gpp2 ? kPdn : kPdp;
}

/** 3GPP has a bit for each of PAP and CHAP, 3GPP2 an enumeration; the numbers are the same. */
std::int64_t authTypeKept(bool is3gpp2, std::int64_t value) {
    return !is3gpp2 ? value & 3 : value >= 1 && value <= 3 ? value : 0;
}

/** The bits of types at other positions. */
template <typename Move>
std::int64_t moved(Move move) {
    std::int64_t result = 0;
    for (unsigned position = 0; position < kTypePositions.size(); ++position) {
        result |= move(std::int64_t{1} << position, std::int64_t{1} << kTypePositions.at(position));
    }
    return result;
}

/** By value; what is not named prints as its number. */
std::vector<std::string> namesOf(ValueKind kind) {
    return isIPType(kind) ? std::vector<std::string>{"UNKNOWN", "V4", "V6", "V4V6"}
           : kind == ValueKind::AuthType
               ? std::vector<std::string>{"NONE", "PAP", "CHAP", "PAP_CHAP"}
           : kind == ValueKind::ApnClass
               ? std::vector<std::string>{"0", "IMS", "ADMN", "INET", "APP"}
               : std::vector<std::string>{};
}

}  // namespace

bool isEnumerator(ValueKind kind, bool is3gpp2) {
    return isIPType(kind) || (kind == ValueKind::AuthType && is3gpp2);
}

std::uint64_t toModem(ValueKind kind, bool is3gpp2, std::int64_t value) {
    if (isIPType(kind)) {
        const auto& codes = codesOf(kind, is3gpp2);  // whatever is no IP type goes out as the last
        return codes[std::min(static_cast<std::size_t>(value), codes.size() - 1)];
    }
    switch (kind) {
        case ValueKind::Count:
            return static_cast<std::uint16_t>(value);
        case ValueKind::ApnClass:
            return static_cast<std::uint8_t>(value);
        case ValueKind::AuthType:
            return static_cast<std::uint64_t>(authTypeKept(is3gpp2, value));
        default:
            return static_cast<std::uint64_t>(value);
    }
}

std::optional<std::int64_t> fromModem(ValueKind kind, bool is3gpp2, std::uint64_t value) {
    if (kind == ValueKind::RoamIPType && value == kOthers[0]) {
        return std::nullopt;  // not configured; only the home override calls it unknown
    }
    if (isIPType(kind)) {
        const auto& codes = codesOf(kind, is3gpp2);
        const auto* found = std::find(codes.begin() + 1, codes.end(), value);
        return found == codes.end() ? kUnknown : found - codes.begin();
    }
    return kind == ValueKind::Flag       ? static_cast<std::int64_t>(value != 0)
           : kind == ValueKind::AuthType ? authTypeKept(is3gpp2, static_cast<std::int64_t>(value))
                                         : static_cast<std::int64_t>(value);
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
    return moved([=](auto own, auto modems) { return (clientTypes & own) != 0 ? modems : 0; });
}

std::int64_t clientTypesOf(std::int64_t modemTypes) {
    return moved([=](auto own, auto modems) { return (modemTypes & modems) != 0 ? own : 0; });
}

}  // namespace coherence
