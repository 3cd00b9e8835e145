// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>

#include "velasim/FaultPlan.h"

namespace velasim {

/** Spoils a response as the fault says: UnterminatedText, ListOverrun, GarbageEnumerators. Other
 * faults, and messages without such contents, leave it alone. */
void spoilResponse(const FiredFault& fault, std::uint32_t messageId,
                   std::span<std::uint8_t> response);

}  // namespace velasim
