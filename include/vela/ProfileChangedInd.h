// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "vela/Export.h"
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

VELA_API std::ostream& operator<<(std::ostream& out, ProfileChangedEvent value);

/** One profile-changed indication of the modem. */
struct VELA_API ProfileChangedInd {
    TechType techType = TechType::TECH_3GPP;
    /** The modem's profile index; -1 when unknown. */
    int profileId = -1;
    ProfileChangedEvent event = ProfileChangedEvent::Create;

    /** Technology, ":", profile id, blank and event in one line. */
    std::string dump() const;
};

inline bool operator==(const ProfileChangedInd& left, const ProfileChangedInd& right) {
    return left.techType == right.techType && left.profileId == right.profileId &&
           left.event == right.event;
}

}  // namespace vela
