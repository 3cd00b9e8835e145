// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/ProfileChangedInd.h"

#include <ostream>

#include "DumpText.h"

namespace vela {

std::ostream& operator<<(std::ostream& out, ProfileChangedEvent value) {
    switch (value) {
        case ProfileChangedEvent::Create:
            return out << "Create";
        case ProfileChangedEvent::Delete:
            return out << "Delete";
        case ProfileChangedEvent::Modify:
            return out << "Modify";
        case ProfileChangedEvent::SubscriptionChange:
            return out << "SubscriptionChange";
        case ProfileChangedEvent::ProfileReady:
            return out << "ProfileReady";
    }
    return out << static_cast<std::int32_t>(value);
}

std::string ProfileChangedInd::dump() const {
    DumpText text;
    text << techType << ":" << profileId << " " << event;
    return text.str();
}

}  // namespace vela
