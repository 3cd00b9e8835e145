// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace velasim {

/**
 * A small pseudo-random generator with the same sequence on every platform, which the standard
 * library's distributions do not promise. Not for secrets. A plain value: a copy continues with the
 * same sequence.
 */
class Random {
  public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    /** The next 64 random bits. */
    std::uint64_t next() {
        state += 0x9E3779B97F4A7C15U;
        std::uint64_t bits = state;
        bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
        bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
        return bits ^ (bits >> 31U);
    }

    /** A number from 0 to `limit` - 1; 0 when `limit` is 0. */
    std::uint64_t below(std::uint64_t limit) { return limit == 0 ? 0 : next() % limit; }

    /** True with the given probability: never at 0 or less, always at 1 or more. */
    bool chance(double probability) {
        constexpr double kScale = 1.0 / 9007199254740992.0;  // 2^-53
        return static_cast<double>(next() >> 11U) * kScale < probability;
    }

  private:
    std::uint64_t state;
};

}  // namespace velasim
