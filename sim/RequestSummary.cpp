// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "RequestSummary.h"

#include <wds_service_v01.h>

#include <cstring>
#include <optional>

#include "velasim/Settings.h"

namespace velasim {

namespace {

template <typename Message>
std::optional<Message> as(std::span<const std::uint8_t> bytes) {
    if (bytes.size() != sizeof(Message)) {
        return std::nullopt;
    }
    Message message{};
    std::memcpy(&message, bytes.data(), sizeof message);
    return message;
}

Technology technologyOf(wds_profile_type_enum_v01 type) {
    return static_cast<Technology>(static_cast<std::int32_t>(type));
}

void name(JournalEntry& entry, const wds_profile_identifier_type_v01& profile) {
    entry.technology = technologyOf(profile.profile_type);
    entry.index = profile.profile_index;
}

void addDetails(JournalEntry& entry, const wds_create_profile_req_msg_v01& request) {
    entry.technology = technologyOf(request.profile_type);
    entry.text = describe(request.settings, *entry.technology);
}

void addDetails(JournalEntry& entry, const wds_modify_profile_settings_req_msg_v01& request) {
    name(entry, request.profile);
    entry.text = describe(request.settings, *entry.technology);
}

void addDetails(JournalEntry& entry, const wds_delete_profile_req_msg_v01& request) {
    name(entry, request.profile);
}

void addDetails(JournalEntry& entry, const wds_get_profile_list_req_msg_v01& request) {
    if (request.profile_type_valid != 0) {
        entry.technology = technologyOf(request.profile_type);
    }
}

void addDetails(JournalEntry& entry, const wds_bind_subscription_req_msg_v01& request) {
    entry.text = "to modem " + std::to_string(request.instance);
}

template <typename Message>
void summarize(JournalEntry& entry) {
    if (const auto request = as<Message>(entry.bytes)) {
        addDetails(entry, *request);
    }
}

}  // namespace

JournalEntry summarizeRequest(std::uint32_t messageId, std::span<const std::uint8_t> request) {
    JournalEntry entry;
    entry.kind = JournalKind::Request;
    entry.messageId = messageId;
    entry.bytes.assign(request.begin(), request.end());
    switch (messageId) {
        case RLINK_WDS_CREATE_PROFILE_REQ_V01:
            summarize<wds_create_profile_req_msg_v01>(entry);
            break;
        case RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01:
            summarize<wds_modify_profile_settings_req_msg_v01>(entry);
            break;
        case RLINK_WDS_DELETE_PROFILE_REQ_V01:
        case RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01:
            summarize<wds_delete_profile_req_msg_v01>(entry);  // both only name the profile
            break;
        case RLINK_WDS_GET_PROFILE_LIST_REQ_V01:
            summarize<wds_get_profile_list_req_msg_v01>(entry);
            break;
        case RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01:
            summarize<wds_bind_subscription_req_msg_v01>(entry);
            break;
        default:
            break;
    }
    return entry;
}

}  // namespace velasim
