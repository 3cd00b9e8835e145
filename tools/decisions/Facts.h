// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What the observer is told, as JSON in the words of docs/decisions.md, secrets in clear.
#pragma once

#include <vela/Observer.h>

#include <optional>

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

/** All that a filter asks for, by field. */
Json askedOf(const vela::FilterProfileParams& filter);

/** The looser ways of comparing that a filter allows, by field. */
Json loosenessOf(const vela::FilterProfileParams& filter);

/** A profile as the observer is told of it; null when the library could not read it. */
Json profileOf(const std::optional<vela::ProfileImage>& image);

/** The criteria that a candidate does not meet, with what it has and what was asked. */
Json mismatchesOf(const vela::ProfileCandidate& candidate, const Json& asked);

/** The fields in which two differ: what the first has, and under `name` what the second has. Those
 * that the second lacks only if `all`. */
Json differencesOf(const Json& first, const Json& second, const char* name, bool all);

Json messageOf(const vela::ModemMessage& message, const Backend& modem);
Json indicationOf(const vela::ModemIndication& indication);

/** None where a table cannot be seen. */
Json changesOf(const std::optional<ProfileRecords>& before,
               const std::optional<ProfileRecords>& after);

/** Masks all passwords in a document. */
void maskSecrets(Json& document);

}  // namespace velactl
