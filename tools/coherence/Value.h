// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace coherence {

inline constexpr std::size_t kApnLimit = 150;

// IP types that mean more than themselves.
inline constexpr std::int64_t kUnknown = 0;
inline constexpr std::int64_t kV4V6 = 3;

/** What a value is: this decides how it is told to the modem and how it is printed. */
enum class ValueKind {
    Text,
    Count,
    Flag,
    ApnTypes,
    ApnClass,
    AuthType,
    CommonIPType,
    HomeIPType,
    RoamIPType
};

/** Whether the modem has an enumeration of its own for it. */
bool isEnumerator(ValueKind kind, bool is3gpp2);

/** What the modem is told of a value; what does not fit is lost on the way. */
std::uint64_t toModem(ValueKind kind, bool is3gpp2, std::int64_t value);

/** What is understood of the modem's value; empty: as if it had not been told. */
std::optional<std::int64_t> fromModem(ValueKind kind, bool is3gpp2, std::uint64_t value);

/** As the library's dump prints it. */
std::string printed(ValueKind kind, std::int64_t value);

/** APN types from the clients' bits to the modem's, which is how a profile keeps them, and back. */
std::int64_t modemTypesOf(std::int64_t clientTypes);
std::int64_t clientTypesOf(std::int64_t modemTypes);

}  // namespace coherence
