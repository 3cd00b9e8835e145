// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>

namespace vela {

/** Set in a child that was forked while a pipeline was alive. Its worker thread is the parent's,
 * its locks may be held by threads that the child does not have: the library does nothing there any
 * more. */
extern std::atomic<bool> forkedChild;
inline bool isForkedChild() {
    return forkedChild.load(std::memory_order_relaxed);
}

/** Lives as long as something that a forked child must not touch. */
class ForkGuard {
  public:
    ForkGuard();
    ForkGuard(const ForkGuard&) = delete;
    ForkGuard& operator=(const ForkGuard&) = delete;
    ~ForkGuard();
};

}  // namespace vela
