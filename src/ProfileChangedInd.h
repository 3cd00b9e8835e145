// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "vela/ProfileTypes.h"

namespace vela {

/** What happened to a profile in the modem. Prints as its name, an unknown value as its number. */
enum class ProfileChangedEvent : std::int32_t {
    Create = 0,
    Delete = 1,
    Modify = 2,
    SubscriptionChange = 3,
    ProfileReady = 4,
};

std::ostream& operator<<(std::ostream& out, ProfileChangedEvent value);

/** One profile-changed indication of the modem. */
struct ProfileChangedInd {
    TechType techType = TechType::TECH_3GPP;
    int profileId = -1;
    ProfileChangedEvent event = ProfileChangedEvent::Create;

    bool operator==(const ProfileChangedInd&) const = default;

    /** Technology, ":", profile id, blank and event in one line. */
    std::string dump() const;
};

}  // namespace vela
