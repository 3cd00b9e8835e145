// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "Driver.h"
#include "Operation.h"

namespace coherence {

/**
 * Carries out a run in a process of its own, so that a crash or a hang is an outcome like any
 * other. Call it while this process has one thread only. The outcome has no journal.
 * @param atMost for the whole run; what takes longer hangs
 */
Outcome runApart(std::uint64_t seed, const std::vector<Operation>& operations,
                 std::chrono::seconds atMost);

}  // namespace coherence
