// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/StoredProfile.h>

#include <string>

#include "profiles/ProfileRecord.h"

namespace velactl {

/** What a stored profile says, by the table of fields and without the library, so that comparing it
 * with what the library says proves something. */
ProfileRecord viewOf(velasim::Technology technology, const velasim::StoredProfile& profile);

/** Writes one setting, given in the words of a field that is made of it, as "IPv4v6", as yes or no,
 * or as the modem's own number. False when the modem cannot hold that. Throws ToolError for a word
 * that is none. */
bool setSetting(velasim::Settings& settings, const std::string& name, const std::string& text);

}  // namespace velactl
