// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What a decision has come to, from what has been recorded of it so far.
#pragma once

#include <optional>

#include "profiles/ProfileRecord.h"

namespace velactl {

/** found, created, none; matches, no-match; done, refused. */
std::string outcomeOf(const Json& document, bool matches, bool hasFailed);

/** Why the answer to a match is no; null when it is not. */
Json whyNotOf(const Json& document, const std::optional<ProfileRecords>& table);

/** The profile at the place that was yielded, or that a match was about, how it came to be, and in
 * what it differs from what was asked for; null when there is none. */
Json takenOf(const Json& document, const Json& yielded, const ProfileRecords& profiles);

/** What the policy has made, that is still in the modem, and that nobody holds; null where the
 * modem's table cannot be seen. */
Json leftBehindOf(const Json& document, const std::optional<ProfileRecords>& table);

}  // namespace velactl
