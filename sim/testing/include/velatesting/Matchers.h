// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What is said of profiles in tests: of those in the modem (velasim::StoredProfile) by the names
// that its settings have there, of the library's (vela::ProfileParams, std::optional of it) by APN.
#pragma once

#include <gmock/gmock.h>
#include <vela/ProfileParams.h>
#include <velasim/StoredProfile.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace velatesting {

inline std::optional<std::string> apnOf(const velasim::StoredProfile& profile) {
    return velasim::textOf(profile.settings, "apn_name");
}
inline std::optional<std::string> apnOf(const vela::ProfileParams& profile) {
    return profile.hasApnName() ? std::optional(profile.getApnName()) : std::nullopt;
}
inline std::optional<std::string> apnOf(const std::optional<vela::ProfileParams>& profile) {
    return profile ? apnOf(*profile) : std::nullopt;
}

/** A profile whose APN name is exactly this. */
MATCHER_P(HasApn, name, "has the APN name " + testing::PrintToString(name)) {
    const auto held = apnOf(arg);
    *result_listener << "which has " << (held ? testing::PrintToString(*held) : "none");
    return held == std::string(name);
}

/** A profile in the modem with this text. */
MATCHER_P2(HasText, field, text,
           std::string("has ") + field + " = " + testing::PrintToString(text)) {
    const auto held = velasim::textOf(arg.settings, field);
    *result_listener << "which has " << (held ? testing::PrintToString(*held) : "none");
    return held == std::string(text);
}

/** A profile in the modem with this number. */
MATCHER_P2(HasNumber, field, number,
           std::string("has ") + field + " = " + testing::PrintToString(number)) {
    const auto held = velasim::numberOf(arg.settings, field);
    *result_listener << "which has " << (held ? testing::PrintToString(*held) : "none");
    return held && *held == static_cast<std::uint64_t>(number);
}

/** A profile in the modem that is there again after a power cycle. */
MATCHER(IsPersistent, "survives a power cycle") {
    return arg.isPersistent();
}

}  // namespace velatesting

namespace velasim {

/** How GoogleTest prints a profile of the modem; passwords are masked. */
inline void PrintTo(const StoredProfile& profile, std::ostream* out) {
    *out << "profile " << static_cast<int>(profile.index) << ": "
         << describe(profile.settings, Technology::ThreeGpp);
}

}  // namespace velasim
