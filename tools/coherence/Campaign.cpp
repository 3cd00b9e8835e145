// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Campaign.h"

#include <array>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <sstream>

#include "Apart.h"
#include "Operation.h"
#include "Shrink.h"

namespace coherence {

namespace {

/** Far more than it takes, under a sanitizer as well. */
std::chrono::seconds longestRun(std::uint64_t steps) {
    return std::chrono::seconds(120 + steps / 10);
}

std::string describe(const Outcome& outcome, const std::vector<Operation>& operations) {
    std::ostringstream out;
    out << outcome.failure << "\n  at step " << outcome.step + 1 << " of " << operations.size()
        << (outcome.step < operations.size() ? "" : " (the reload at the end)") << "\n";
    return out.str();
}

/** Profiles have texts of any bytes; whoever reads of them needs lines. */
std::string legible(const std::string& text) {
    std::string shown;
    for (const char byte : text) {
        if (byte == '\n' || (byte >= ' ' && byte <= '~')) {
            shown += byte;
        } else {
            std::array<char, 5> hex{};
            std::snprintf(hex.data(), hex.size(), "\\x%02X", static_cast<unsigned char>(byte));
            shown += hex.data();
        }
    }
    return shown;
}

}  // namespace

std::string Campaign::replayCommand(std::uint64_t seed) const {
    auto command =
        "./dev coherence --replay " + std::to_string(seed) + " --steps " + std::to_string(steps);
    for (const auto& rule : mix) {
        command += " --fault " + toString(rule.fault) + "=" + std::to_string(rule.probability);
    }
    return command;
}

Outcome Campaign::runSeed(std::uint64_t seed) const {
    return runApart(seed, randomOperations(seed, steps, mix), longestRun(steps));
}

std::string Campaign::describeFailure(std::uint64_t seed, const Outcome& outcome) const {
    const auto operations = randomOperations(seed, steps, mix);
    std::ostringstream out;
    out << "seed " << seed << ": " << describe(outcome, operations)
        << "replay: " << replayCommand(seed) << "\n";
    const auto shortest = shrink(seed, operations);
    out << "shrunk to " << shortest.size() << " steps:\n";
    for (std::size_t i = 0; i < shortest.size(); ++i) {
        out << "  " << i + 1 << ". " << shortest[i].line() << "\n";
    }
    out << "which fail with: " << describe(runApart(seed, shortest, longestRun(0)), shortest);
    return legible(out.str());
}

bool Campaign::run() const {
    const auto begin = std::chrono::steady_clock::now();
    Outcome sum;
    for (auto seed = first; seed < first + seeds; ++seed) {
        const auto outcome = runSeed(seed);
        if (!outcome.failure.empty()) {
            std::printf("%s", describeFailure(seed, outcome).c_str());
            return false;
        }
        sum.compared += outcome.compared;
        sum.excused += outcome.excused;
        sum.faults += outcome.faults;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::printf("%" PRIu64 " seeds of %" PRIu64 " steps passed in %.1f s: %" PRIu64
                " steps, %" PRIu64 " faults struck; %" PRIu64
                " times a cached profile was the modem's, %" PRIu64 " times it was excused\n",
                seeds, steps, took.count(), seeds * steps, sum.faults, sum.compared, sum.excused);
    return true;
}

}  // namespace coherence
