// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Fault.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace coherence {

class Driver;

/** One step of a run: a run is a list of these, and stays a run when any of them are left out. */
struct Operation {
    std::string text;  // for people
    std::function<void(Driver& driver)> perform;
};

/**
 * The run of a seed. Some seeds have no faults, and some no restarts.
 * @param mix these faults and no others, from the start to the end; empty: a few of every kind,
 * some of the time
 */
std::vector<Operation> randomOperations(std::uint64_t seed, std::size_t count,
                                        const std::vector<velasim::FaultRule>& mix = {});

}  // namespace coherence
