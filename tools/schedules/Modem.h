// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <wds_service_v01.h>

#include <cstdint>
#include <string>

/**
 * A platform of constant answers: it carries out what it is asked and announces nothing by itself.
 * Scripts make its callbacks, on threads of theirs. As one thread runs at a time, it needs no lock.
 */
namespace schedules::modem {

/** The service is there: notifiers are told. */
void comeUp();
/** The service goes: clients are told, and their requests fail. */
void goDown();
/** Someone else has changed the 3GPP profile `index`. */
void announce(int index, wds_profile_change_event_enum_v01 event);

/** The name that the profile has, which tells one from another. */
std::string nameOf(int index);
bool has(int index);
/** How often a message has been asked for about the profile; 0: none in particular. */
int countOf(std::uint32_t message, int index = 0);
/** Clients and notifiers that were made and not released. */
std::size_t openHandles();

}  // namespace schedules::modem
