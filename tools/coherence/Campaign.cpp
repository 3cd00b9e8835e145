// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Campaign.h"

#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <sstream>

#include "Driver.h"
#include "Shrink.h"
#include "Watchdog.h"

namespace coherence {

namespace {

constexpr std::chrono::seconds kLongestRun{120};

std::string replayCommand(std::uint64_t seed, std::uint64_t steps) {
    return "./dev coherence --replay " + std::to_string(seed) + " --steps " + std::to_string(steps);
}

std::string describe(const Outcome& outcome, const std::vector<Operation>& operations) {
    std::ostringstream out;
    out << outcome.failure << "\n  at step " << outcome.step + 1 << " of " << operations.size()
        << (outcome.step < operations.size() ? "" : " (the reload at the end)") << "\n";
    return out.str();
}

Outcome runSeed(std::uint64_t seed, std::uint64_t steps) {
    const Watchdog watchdog(kLongestRun, "hangs: " + replayCommand(seed, steps));
    return Driver(seed).run(randomOperations(seed, steps));
}

}  // namespace

std::string Campaign::failureOf(std::uint64_t seed) const {
    const auto outcome = runSeed(seed, steps);
    if (outcome.failure.empty()) {
        return {};
    }
    const auto operations = randomOperations(seed, steps);
    std::ostringstream out;
    out << "seed " << seed << ": " << describe(outcome, operations)
        << "replay: " << replayCommand(seed, steps) << "\n";
    const auto shortest = shrink(seed, operations);
    out << "shrunk to " << shortest.size() << " steps:\n";
    for (std::size_t i = 0; i < shortest.size(); ++i) {
        out << "  " << i + 1 << ". " << shortest[i].line() << "\n";
    }
    out << "which fail with: " << describe(Driver(seed).run(shortest), shortest);
    return out.str();
}

bool Campaign::run() const {
    const auto begin = std::chrono::steady_clock::now();
    std::uint64_t compared = 0;
    std::uint64_t faults = 0;
    for (auto seed = first; seed < first + seeds; ++seed) {
        const auto outcome = runSeed(seed, steps);
        if (!outcome.failure.empty()) {
            std::printf("%s", failureOf(seed).c_str());
            return false;
        }
        compared += outcome.compared;
        faults += outcome.faults;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::printf("%" PRIu64 " seeds of %" PRIu64 " steps passed in %.1f s: %" PRIu64
                " steps, %" PRIu64 " faults struck, %" PRIu64
                " times a cached profile was the modem's\n",
                seeds, steps, took.count(), seeds * steps, faults, compared);
    return true;
}

}  // namespace coherence
