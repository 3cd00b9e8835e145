// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Settings.h>

#include <map>

#include "Image.h"

namespace coherence {

/** The profiles of one modem instance. */
using Table = std::map<ProfileId, velasim::Settings>;

/** The lowest free number; 0: none. */
int freeIndex(const Table& table, velasim::Technology technology, unsigned capacity);

/** Makes or changes a profile. */
void store(Table& table, ProfileId id, const velasim::Settings& settings);

}  // namespace coherence
