// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <wds_service_v01.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velasim/Export.h"
#include "velasim/Types.h"

namespace velasim {

/** The settings of one profile as they cross the service; zero-initialise before use. */
using Settings = wds_profile_settings_type_v01;

// Access by name. The names are those of the structure's members ("apn_name", "pdp_type", ...), so
// that tables of tests, scenario files and snapshots can speak of settings. All functions are free
// of state.

/** The settings that profiles of `technology` have, in the structure's order. */
VELASIM_API std::vector<std::string> fieldNames(Technology technology);

/** Whether the setting is a text (otherwise it is a number). False for an unknown name. */
VELASIM_API bool isTextField(std::string_view field);

/** The text of a setting up to its terminator or the end of its array; empty when the setting is
 * absent, unknown or a number. */
VELASIM_API std::optional<std::string> textOf(const Settings& settings, std::string_view field);

/** The number of a setting, enumerators as unsigned 32-bit; empty when the setting is absent,
 * unknown or a text. */
VELASIM_API std::optional<std::uint64_t> numberOf(const Settings& settings, std::string_view field);

/** Writes a text setting and makes it present. False, and nothing changed, when the name is not a
 * text setting's, or the value is too long or contains a zero byte. */
VELASIM_API bool setText(Settings& settings, std::string_view field, std::string_view value);

/** Writes a number setting and makes it present. False, and nothing changed, when the name is not a
 * number setting's or the value does not fit. */
VELASIM_API bool setNumber(Settings& settings, std::string_view field, std::uint64_t value);

/** Makes a setting absent. False when the name is unknown. */
VELASIM_API bool unset(Settings& settings, std::string_view field);

/** Whether two settings say the same of a profile of `technology`: the same settings present, with
 * equal values (texts as texts; what follows a terminator does not count). */
VELASIM_API bool sameSettings(const Settings& left, const Settings& right, Technology technology);

/** One line of "name=value" pairs, passwords masked as "***". */
VELASIM_API std::string describe(const Settings& settings, Technology technology);

}  // namespace velasim
