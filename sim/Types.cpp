// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Types.h"

#include <wds_service_v01.h>

#include <array>
#include <cstdio>

namespace velasim {

std::string toString(Technology value) {
    switch (value) {
        case Technology::ThreeGpp:
            return "3GPP";
        case Technology::ThreeGpp2:
            return "3GPP2";
    }
    return std::to_string(static_cast<std::int32_t>(value));
}

std::string toString(ModemError value) {
    using enum ModemError;
    switch (value) {
        case None:
            return "no error";
        case UnknownProfileType:
            return "unknown profile type";
        case UnknownProfile:
            return "unknown profile";
        case TableFull:
            return "table full";
        case UnknownInstance:
            return "unknown instance";
        case Malformed:
            return "malformed request";
        case Internal:
            return "internal";
    }
    return std::to_string(static_cast<std::uint32_t>(value));
}

std::string toString(ChangeEvent value) {
    using enum ChangeEvent;
    switch (value) {
        case None:
            return "None";
        case Create:
            return "Create";
        case Delete:
            return "Delete";
        case Modify:
            return "Modify";
        case SubscriptionChange:
            return "SubscriptionChange";
        case ProfileReady:
            return "ProfileReady";
    }
    return std::to_string(static_cast<std::int32_t>(value));
}

std::string messageName(std::uint32_t messageId) {
    switch (messageId) {
        case RLINK_WDS_INDICATION_REGISTER_REQ_V01:
            return "indication register";
        case RLINK_WDS_CREATE_PROFILE_REQ_V01:
            return "create profile";
        case RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01:
            return "modify profile settings";
        case RLINK_WDS_DELETE_PROFILE_REQ_V01:
            return "delete profile";
        case RLINK_WDS_GET_PROFILE_LIST_REQ_V01:
            return "get profile list";
        case RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01:
            return "get profile settings";
        case RLINK_WDS_CONFIGURE_PROFILE_EVENT_LIST_REQ_V01:
            return "configure profile event list";
        case RLINK_WDS_PROFILE_CHANGED_IND_V01:
            return "profile changed";
        case RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01:
            return "bind subscription";
        default:
            break;
    }
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%02X", messageId);
    return text.data();
}

}  // namespace velasim
