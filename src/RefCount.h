// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>

namespace vela {

/** Counts holders on one thread. May go below zero; aborts where it would have to wrap. */
class RefCount {
  public:
    constexpr explicit RefCount(int initial = 0) : count(initial) {}

    void increment() { add(1); }
    void decrement() { add(-1); }
    int get() const { return count; }

  private:
    void add(int step) {
        if (__builtin_add_overflow(count, step, &count)) {
            std::abort();
        }
    }

    int count;
};

}  // namespace vela
