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
    static constexpr std::array<const char*, 7> kTexts = {
        "no error",         "unknown profile type", "unknown profile", "table full",
        "unknown instance", "malformed request",    "internal"};
    const auto number = static_cast<std::uint32_t>(value);
    return number < kTexts.size() ? kTexts[number] : std::to_string(number);
}

std::string toString(ChangeEvent value) {
    static constexpr std::array<const char*, 6> kTexts = {
        "None", "Create", "Delete", "Modify", "SubscriptionChange", "ProfileReady"};
    const auto number = static_cast<std::uint32_t>(value);
    return number < kTexts.size() ? kTexts[number]
                                  : std::to_string(static_cast<std::int32_t>(value));
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
