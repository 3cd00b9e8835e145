// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "EnumNames.h"

#include <cstddef>
#include <cstdint>
#include <ostream>

namespace vela {
namespace {

/** names[value - first]. */
template <typename Enum, std::size_t Count>
std::string_view pick(Enum value, const std::string_view (&names)[Count], int first = 0) {
    const std::int64_t index = static_cast<std::int64_t>(value) - first;
    const bool isNamed = index >= 0 && index < static_cast<std::int64_t>(Count);
    return isNamed ? names[index] : std::string_view();
}

template <typename Enum>
std::ostream& print(std::ostream& out, Enum value) {
    const std::string_view name = nameOf(value);
    return name.empty() ? out << static_cast<std::int32_t>(value) : out << name;
}

}  // namespace

std::string_view nameOf(TechType value) {
    static constexpr std::string_view kNames[] = {"3GPP", "3GPP2"};
    return pick(value, kNames);
}

std::string_view nameOf(IPType value) {
    static constexpr std::string_view kNames[] = {"UNKNOWN", "V4", "V6", "V4V6"};
    return pick(value, kNames);
}

std::string_view nameOf(AuthType value) {
    static constexpr std::string_view kNames[] = {"NONE", "PAP", "CHAP", "PAP_CHAP"};
    return pick(value, kNames);
}

std::string_view nameOf(ApnClass value) {
    static constexpr std::string_view kNames[] = {"IMS", "ADMN", "INET", "APP"};
    return pick(value, kNames, 1);
}

std::string_view nameOf(ReqRespType value) {
    static constexpr std::string_view kNames[] = {"Add",   "Modify", "Delete",   "Filter",
                                                  "Match", "Get",    "Callback", "Refresh"};
    return pick(value, kNames);
}

std::string_view nameOf(Status value) {
    static constexpr std::string_view kNames[] = {"Success", "Failure"};
    return pick(value, kNames);
}

std::string_view nameOf(ProfileChangedEvent value) {
    static constexpr std::string_view kNames[] = {"Create", "Delete", "Modify",
                                                  "SubscriptionChange", "ProfileReady"};
    return pick(value, kNames);
}

std::ostream& operator<<(std::ostream& out, TechType value) {
    return print(out, value);
}

std::ostream& operator<<(std::ostream& out, IPType value) {
    return print(out, value);
}

std::ostream& operator<<(std::ostream& out, AuthType value) {
    return print(out, value);
}

std::ostream& operator<<(std::ostream& out, ApnClass value) {
    return print(out, value);
}

std::ostream& operator<<(std::ostream& out, ReqRespType value) {
    return print(out, value);
}

std::ostream& operator<<(std::ostream& out, Status value) {
    return print(out, value);
}

std::ostream& operator<<(std::ostream& out, ProfileChangedEvent value) {
    return print(out, value);
}

}  // namespace vela
