// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "velasim/Settings.h"

namespace velasim {

/** One profile in the modem's table. A plain value. */
struct StoredProfile {
    /** The profile's number in its table, from 1. */
    std::uint8_t index = 0;

    /** What was written, merged over all writes. The persistence flag is always present. */
    Settings settings{};

    /** Whether the profile survives a power cycle. */
    bool isPersistent() const { return settings.persistence_flag != 0; }
};

}  // namespace velasim
