// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "velasim/Random.h"
#include "velasim/Settings.h"

namespace velasim {

/** Random values, any bytes included, for about half of a technology's settings. */
inline Settings randomSettings(Random& random, Technology technology) {
    Settings settings{};
    for (const auto& field : fieldNames(technology)) {
        if (random.chance(0.5)) {
            continue;
        }
        if (isTextField(field)) {
            std::string text;
            for (auto length = random.below(51); length > 0; --length) {
                text += static_cast<char>(1 + random.below(255));
            }
            setText(settings, field, text);
            continue;
        }
        auto value = random.next();
        while (!setNumber(settings, field, value)) {
            value >>= 8U;
        }
    }
    return settings;
}

}  // namespace velasim
