// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "Operation.h"

namespace coherence {

/** What a run came to. */
struct Outcome {
    /** A text; empty: all was as promised. */
    std::array<char, 16384> failure;
    /** The step that is under way, or failed; the number of steps: what follows them. */
    std::size_t step;
    /** Comparisons of one cached profile with the modem's table, and how often an exception was
     * claimed instead. */
    std::uint64_t compared;
    std::uint64_t excused;
    std::uint64_t faults;

    bool isFailure() const { return failure[0] != '\0'; }
    void fail(const std::string& text) { text.copy(failure.data(), failure.size() - 1); }
};

/**
 * Carries out a run against the library on a simulator of its own, and against the model beside it;
 * compares them after every step. At the end the faults are ended and everything has to heal.
 * Callbacks of the messaging library are made only while the worker rests, or all while it is kept
 * busy, so that a run is always the same. `seed` decides what a fault does to the bytes of an
 * indication, and on which instance of the modem the library starts.
 */
void run(std::uint64_t seed, const std::vector<Operation>& operations, Outcome& outcome);

}  // namespace coherence
