// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "velasim/Types.h"

namespace velasim {

/** Something that happened to a modem's tables, of which clients are told. */
struct Change {
    std::int32_t instance = 0;
    Technology technology = Technology::ThreeGpp;
    std::uint8_t index = 0;
    ChangeEvent event = ChangeEvent::None;
};

}  // namespace velasim
