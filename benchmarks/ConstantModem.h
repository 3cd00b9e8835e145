// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// A platform of constant answers, so that the library is timed and no modem: every message succeeds
// at once, profiles are numbers that all have the same settings.
#pragma once

#include <cstdint>

#include "wds_service_v01.h"

namespace constant_modem {

/** What the lists hold from the next reading on; the profiles of both technologies are 1 to n. */
void hold(int profiles3gpp, int profiles3gpp2);

/** Whether created and deleted profiles are announced, as a modem does, by the next deliver(). */
void setAnnouncing(bool announcing);

/** Makes the callbacks that are due: the service's coming up, announcements. Not on the worker. */
void deliver();

/** Tells the library that somebody else has changed a profile of 3GPP. */
void announce(int index, wds_profile_change_event_enum_v01 event);

/** Whether diagnostic lines are formatted, as a diagnostic log does, or dropped at once. */
void setFormatting(bool formatting);

/** Is called for each diagnostic line before anything else; null: nothing is. */
void setLineHook(void (*hook)());

/** Messages answered so far. */
std::uint64_t messages();

}  // namespace constant_modem
