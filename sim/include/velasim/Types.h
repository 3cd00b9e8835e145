// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "velasim/Export.h"

namespace velasim {

/** Radio technology; the numbers are the service's profile types. */
enum class Technology : std::int32_t { ThreeGpp = 0, ThreeGpp2 = 1 };

/** Why the simulated modem refuses a request: the `error` word of a response. */
enum class ModemError : std::uint32_t {
    None = 0,
    UnknownProfileType = 1,
    UnknownProfile = 2,   // no profile is stored under that index
    TableFull = 3,        // no free index
    UnknownInstance = 4,  // bind to an instance that the modem does not have
    Malformed = 5,        // a text without terminator, a list longer than its array
    Internal = 6
};

/** What an indication says has happened; the numbers are the service's. */
enum class ChangeEvent : std::int32_t {
    None = 0,
    Create = 1,
    Delete = 2,
    Modify = 3,
    SubscriptionChange = 4,
    ProfileReady = 5
};

/** "3GPP", "3GPP2"; other values as decimal numbers, here and below. */
VELASIM_API std::string toString(Technology value);
/** "no error", "unknown profile", ... */
VELASIM_API std::string toString(ModemError value);
/** "Create", "Delete", "Modify", "SubscriptionChange", "ProfileReady". */
VELASIM_API std::string toString(ChangeEvent value);

/** A message's name ("create profile"); an unknown id as a hexadecimal number. */
VELASIM_API std::string messageName(std::uint32_t messageId);

}  // namespace velasim
