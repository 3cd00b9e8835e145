// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Shrink.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "Apart.h"

namespace coherence {

namespace {

/** A candidate that takes longer hangs. */
constexpr std::chrono::seconds kPatience{20};

}  // namespace

std::vector<Operation> shrink(std::uint64_t seed, std::vector<Operation> operations) {
    const auto run = [&](const std::vector<Operation>& candidate) {
        return runApart(seed, candidate, kPatience);
    };
    const auto fails = [&](const std::vector<Operation>& candidate) {
        return !run(candidate).failure.empty();
    };
    operations.resize(std::min(operations.size(), run(operations).step + 1));
    for (std::size_t chunk = operations.size() / 2; chunk > 0;) {
        bool isShorter = false;
        for (std::size_t from = 0; from < operations.size();) {
            auto candidate = operations;
            const auto begin = candidate.begin() + static_cast<std::ptrdiff_t>(from);
            const auto length = std::min(chunk, operations.size() - from);
            candidate.erase(begin, begin + static_cast<std::ptrdiff_t>(length));
            if (fails(candidate)) {
                operations = std::move(candidate);
                isShorter = true;
            } else {
                from += chunk;
            }
        }
        if (!isShorter) {
            chunk /= 2;
        }
    }
    return operations;
}

}  // namespace coherence
