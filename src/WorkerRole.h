// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cassert>
#include <thread>

#include "Mutex.h"

namespace vela {

/**
 * Being the worker thread, as a lock that a compiler can check: what only the worker may touch is
 * guarded by this role. Builds with assertions also check it when they run; others do nothing.
 */
class VELA_THREAD_SAFETY(capability("role")) WorkerRole {
  public:
    /** The calling thread is the worker from here on. Until then every thread passes. */
    void assume() {
#ifndef NDEBUG
        worker = std::this_thread::get_id();
#endif
    }

    /** Aborts on a thread that is not the worker. */
    void check() const VELA_THREAD_SAFETY(assert_capability(this)) {
#ifndef NDEBUG
        const std::thread::id known = worker.load();
        assert((known == std::thread::id() || known == std::this_thread::get_id()) &&
               "called off the worker thread");
#endif
    }

    /** For the holder of the worker's gate, and for who builds or takes down what is guarded. */
    void standIn() const VELA_THREAD_SAFETY(assert_capability(this)) {}

  private:
#ifndef NDEBUG
    std::atomic<std::thread::id> worker{};
#endif
};

}  // namespace vela
