// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What the observer is told, and what that has come to, as JSON in the words of docs/decisions.md,
// secrets in clear.
#pragma once

#include <vela/Observer.h>

#include <optional>
#include <vector>

#include "modem/Traffic.h"
#include "profiles/ProfileRecord.h"

namespace velactl {

const char* nameOf(vela::Policy policy);
/** The kind of a request's step. */
const char* nameOf(vela::ReqRespType type);
const char* nameOf(vela::ServiceState state);

/** Sets `technology` and `index`; an index below 0 is none. */
void setPlace(Json& object, vela::TechType tech, int index);
/** Whether a profile, or a step, is of this place. */
bool isAt(const Json& profile, const Json& place);

/** The entries that a policy was called with. */
Json entriesOf(const vela::PolicyCall& policy);
/** What a filter asks for, and how loosely. */
Json searchOf(const vela::FilterProfileParams& filter);
Json candidatesOf(const std::vector<vela::ProfileCandidate>& candidates, const Json& asked);
Json messageOf(const vela::ModemMessage& message, const Backend& modem);
Json indicationOf(const vela::ModemIndication& indication);

/** None where a table cannot be seen. */
Json changesOf(const std::optional<ProfileRecords>& before,
               const std::optional<ProfileRecords>& after);

/** The profile at the place that was yielded, or that a match was about, how it came to be, and in
 * what it differs from what was asked for; null when there is none. */
Json takenOf(const Json& document, const Json& yielded, const ProfileRecords& profiles);

/** found, created, none; matches, no-match; done, refused. */
std::string outcomeOf(const Json& document, bool matches, bool hasFailed);

/** Why the answer to a match is no; null when it is not. */
Json whyNotOf(const Json& document, const std::optional<ProfileRecords>& table);

/** What the policy has made, that is still in the modem, and that nobody holds; null where the
 * modem's table cannot be seen. */
Json leftBehindOf(const Json& document, const std::optional<ProfileRecords>& table);

}  // namespace velactl
