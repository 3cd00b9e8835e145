// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/ProfileTypes.h"

#include <cstddef>
#include <ostream>

namespace vela {
namespace {

// Prints names[value - first], or the number when there is no such name.
template <typename Enum, std::size_t Count>
std::ostream& print(std::ostream& out, Enum value, const char* const (&names)[Count], int first) {
    const std::int64_t index = static_cast<std::int64_t>(value) - first;
    if (index < 0 || index >= static_cast<std::int64_t>(Count)) {
        return out << static_cast<std::int32_t>(value);
    }
    return out << names[index];
}

}  // namespace

std::ostream& operator<<(std::ostream& out, TechType value) {
    static constexpr const char* kNames[] = {"3GPP", "3GPP2"};
    return print(out, value, kNames, 0);
}

std::ostream& operator<<(std::ostream& out, IPType value) {
    static constexpr const char* kNames[] = {"UNKNOWN", "V4", "V6", "V4V6"};
    return print(out, value, kNames, 0);
}

std::ostream& operator<<(std::ostream& out, AuthType value) {
    static constexpr const char* kNames[] = {"NONE", "PAP", "CHAP", "PAP_CHAP"};
    return print(out, value, kNames, 0);
}

std::ostream& operator<<(std::ostream& out, ApnClass value) {
    static constexpr const char* kNames[] = {"IMS", "ADMN", "INET", "APP"};
    return print(out, value, kNames, 1);
}

}  // namespace vela
