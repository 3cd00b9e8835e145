// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdlib>
#include <limits>

namespace vela {

/** Hands out rising numbers, none twice. Any thread: pipelines may overlap for a moment. */
class TokenGenerator {
  public:
    constexpr explicit TokenGenerator(unsigned long first = 0) : nextToken(first) {}

    /** The next number; aborts where it would have to wrap. */
    unsigned long next() {
        unsigned long token = nextToken.load(std::memory_order_relaxed);
        do {
            if (token == std::numeric_limits<unsigned long>::max()) {
                std::abort();
            }
        } while (!nextToken.compare_exchange_weak(token, token + 1, std::memory_order_relaxed));
        return token;
    }

  private:
    std::atomic<unsigned long> nextToken;
};

}  // namespace vela
