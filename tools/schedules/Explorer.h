// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace schedules {

/** A small program of a few threads, whose schedules are explored. */
struct Script {
    const char* name;
    void (*run)();
};

const std::vector<Script>& allScripts();

struct Options {
    unsigned preemptions = 2;
    std::uint64_t seeds = 10'000;
    std::uint64_t first = 1;
    unsigned depth = 3;
    std::string replay;  // instead of all that
};

/** Executes the script under all schedules with so few preemptions, then under random ones. Prints
 * their number, or the shortest schedule found that fails; true: none. */
bool explore(const Script& script, const Options& options);

}  // namespace schedules
