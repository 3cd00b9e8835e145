// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Fault.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Driver.h"

namespace coherence {

/** Many random runs. */
struct Campaign {
    std::uint64_t seeds = 500;
    std::uint64_t first = 1;
    std::uint64_t steps = 200;
    /** Faults that strike throughout, instead of the usual ones. */
    std::vector<velasim::FaultRule> mix;

    /** Prints the figures, or the failure: what, how to replay it, and the shortest run found that
     * shows it. True: all seeds passed. */
    bool run() const;

  private:
    std::string describeFailure(std::uint64_t seed, const Outcome& outcome) const;
    std::string replayCommand(std::uint64_t seed) const;
    Outcome runSeed(std::uint64_t seed) const;
};

}  // namespace coherence
