// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

#include "Operation.h"

namespace coherence {

/** The shortest run found that still fails, made by leaving out steps. */
std::vector<Operation> shrink(std::uint64_t seed, std::vector<Operation> operations);

}  // namespace coherence
