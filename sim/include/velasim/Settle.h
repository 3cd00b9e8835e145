// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Manager.h>
#include <velasim/Simulator.h>

#include <cstdint>

namespace velasim {

/**
 * Has the callbacks made that wait, and those that come of them, and returns when all is at rest:
 * nothing is queued in the simulator, nothing under way in the library. Sends no message and leaves
 * nothing in the log. Not inside a callback.
 *
 * In stepped delivery, vela::Manager::settle() alone waits for the library without any callback.
 */
inline void settle(vela::Manager& manager, Simulator& simulator) {
    std::uint64_t before = 0;
    do {
        before = simulator.journal().latest();
        simulator.waitIdle();
        manager.settle();
    } while (simulator.journal().latest() != before);
}

}  // namespace velasim
