// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Random.h>
#include <velasim/Settings.h>

#include <cstddef>

#include "vela/ProfileParams.h"

namespace coherence {

// Values come from small pools, so that filters match and changes repeat; some do not fit.

template <typename Value, std::size_t Size>
const Value& oneOf(velasim::Random& random, const Value (&values)[Size]) {
    return values[random.below(Size)];
}

/** How probable each field is, of a change and of a new profile. */
inline constexpr double kFewFields = 0.12;
inline constexpr double kManyFields = 0.3;

vela::ProfileParams randomParams(velasim::Random& random, double probability);
vela::FilterProfileParams randomFilter(velasim::Random& random);

/** What someone else writes, who need not write what the library would. */
velasim::Settings randomSettings(velasim::Random& random, bool is3gpp2);

}  // namespace coherence
