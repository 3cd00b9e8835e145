// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Manager.h>
#include <velasim/Simulator.h>

#include <algorithm>
#include <cstdint>

namespace velasim {

/**
 * Returns when the library has done everything of which its worker thread was told before the call:
 * the one way to wait for that. Asks no request and leaves nothing in the log buffer. Not on the
 * worker thread.
 */
inline void awaitRest(vela::Manager& manager) {
    constexpr int kDumps = 2;  // between which the worker makes a whole pass
    for (int dumps = 0; dumps < kDumps;) {
        const auto dump = manager.dump();
        const auto lacks = [&dump](const char* line) {
            return std::ranges::count(dump, line) == 0;
        };
        const bool hasGivenUp = lacks("Pending:") && !lacks("Cache:");  // which takes a worker
        dumps += hasGivenUp ? 0 : 1;
    }
}

/**
 * The same for what comes of it: returns when the library rests and nothing more has crossed to the
 * simulated modem or back. `deliver` has the callbacks made that are to be made.
 */
template <typename Deliver>
void awaitRest(vela::Manager& manager, Simulator& simulator, Deliver deliver) {
    const auto latestCrossing = [&simulator]() -> std::uint64_t {
        const auto entries = simulator.journal().snapshot();
        return entries.empty() ? 0 : entries.back().sequence;
    };
    std::uint64_t before = 0;
    do {
        before = latestCrossing();
        deliver();
        awaitRest(manager);
    } while (latestCrossing() != before);
}

}  // namespace velasim
