// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>

#include "velasim/JournalEntry.h"

namespace velasim {

/** A journal entry of a request: its bytes, the profile that it names and a few words on it. Any
 * message, any bytes. */
JournalEntry summarizeRequest(std::uint32_t messageId, std::span<const std::uint8_t> request);

}  // namespace velasim
