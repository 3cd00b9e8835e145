// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "WdsService.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace velasim {

namespace {

Technology technologyOf(wds_profile_type_enum_v01 type) {
    return static_cast<Technology>(static_cast<std::int32_t>(type));
}

bool concerns(const wds_profile_identifier_type_v01& entry, const Change& change) {
    const auto type = static_cast<std::int32_t>(entry.profile_type);
    const auto technology = static_cast<std::int32_t>(change.technology);
    return (type == WDS_PROFILE_TYPE_ALL_V01 || type == technology) &&
           (entry.profile_index == WDS_PROFILE_INDEX_ALL_V01 ||
            entry.profile_index == change.index);
}

void append(const std::vector<StoredProfile>& profiles, Technology technology,
            wds_get_profile_list_resp_msg_v01& response) {
    for (const auto& profile : profiles) {
        if (response.profile_list_len == WDS_PROFILE_LIST_MAX_V01) {
            return;
        }
        auto& info = response.profile_list[response.profile_list_len++];
        info.profile_type =
            static_cast<wds_profile_type_enum_v01>(static_cast<std::int32_t>(technology));
        info.profile_index = profile.index;
        if (profile.settings.profile_name_valid != 0) {
            std::memcpy(info.profile_name, profile.settings.profile_name, sizeof info.profile_name);
        }
    }
}

}  // namespace

struct WdsService::Handler {
    std::uint32_t messageId;
    std::size_t requestSize;
    std::size_t responseSize;
    Reply (WdsService::*invoke)(Session&, const void*, void*);
};

// Copies the client's bytes into the message's structure, calls the method for it, and fills in
// what every response has.
template <auto Method, typename Request, typename Response>
WdsService::Reply WdsService::invoke(Session& session, const void* request, void* response) {
    Request in{};
    Response out{};
    std::memcpy(&in, request, sizeof in);
    Reply reply = (this->*Method)(session, in, out);
    const auto error = static_cast<std::uint32_t>(reply.error);
    out.resp = {error == 0 ? 0U : 1U, error};
    if constexpr (requires { out.extended_error_code; }) {
        out.extended_error_code_valid = error == 0 ? 0 : 1;
        out.extended_error_code = error;
    }
    std::memcpy(response, &out, sizeof out);
    return reply;
}

const WdsService::Handler* WdsService::handlerOf(std::uint32_t messageId) {
#define VELASIM_HANDLER(id, method, message)                                \
    Handler {                                                               \
        id, sizeof(message##_req_msg_v01), sizeof(message##_resp_msg_v01),  \
            &WdsService::invoke<&WdsService::method, message##_req_msg_v01, \
                                message##_resp_msg_v01>                     \
    }
    static constexpr Handler kHandlers[] = {
        VELASIM_HANDLER(RLINK_WDS_CREATE_PROFILE_REQ_V01, create, wds_create_profile),
        VELASIM_HANDLER(RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01, modify,
                        wds_modify_profile_settings),
        VELASIM_HANDLER(RLINK_WDS_DELETE_PROFILE_REQ_V01, remove, wds_delete_profile),
        VELASIM_HANDLER(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01, read, wds_get_profile_settings),
        VELASIM_HANDLER(RLINK_WDS_GET_PROFILE_LIST_REQ_V01, list, wds_get_profile_list),
        VELASIM_HANDLER(RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01, bind, wds_bind_subscription),
        VELASIM_HANDLER(RLINK_WDS_INDICATION_REGISTER_REQ_V01, subscribe, wds_indication_register),
        VELASIM_HANDLER(RLINK_WDS_CONFIGURE_PROFILE_EVENT_LIST_REQ_V01, configure,
                        wds_configure_profile_event_list),
    };
#undef VELASIM_HANDLER
    const auto* found =
        std::find_if(std::begin(kHandlers), std::end(kHandlers),
                     [&](const Handler& handler) { return handler.messageId == messageId; });
    return found == std::end(kHandlers) ? nullptr : found;
}

bool WdsService::sizesFit(std::uint32_t messageId, std::size_t request, std::size_t response) {
    const auto* handler = handlerOf(messageId);
    return handler != nullptr && handler->requestSize == request &&
           handler->responseSize == response;
}

WdsService::Reply WdsService::handle(std::uint32_t client, std::uint32_t messageId,
                                     const void* request, void* response) {
    return (this->*handlerOf(messageId)->invoke)(sessions[client], request, response);
}

void WdsService::refuse(ModemError error, void* response, std::size_t responseSize) {
    const wds_response_type_v01 result{1, static_cast<std::uint32_t>(error)};
    std::memset(response, 0, responseSize);
    std::memcpy(response, &result, sizeof result);
}

std::int32_t WdsService::instanceOf(std::uint32_t client) const {
    const auto* session = sessionOf(client);
    return session == nullptr ? 0 : session->instance;
}

std::vector<std::uint32_t> WdsService::audience(const Change& change, std::uint32_t author) const {
    std::vector<std::uint32_t> clients;
    for (const auto& [client, session] : sessions) {
        const bool listens =
            isSubscribed(client, change.instance) && (client != author || session.wantsOwnChanges);
        if (listens && std::any_of(session.events.begin(), session.events.end(),
                                   [&](const auto& entry) { return concerns(entry, change); })) {
            clients.push_back(client);
        }
    }
    return clients;
}

bool WdsService::isSubscribed(std::uint32_t client, std::int32_t instance) const {
    const auto* session = sessionOf(client);
    return session != nullptr && session->isBound && session->instance == instance &&
           session->wantsChanges && !session->events.empty();
}

std::size_t WdsService::subscribers(std::int32_t instance) const {
    const auto count = std::count_if(sessions.begin(), sessions.end(), [&](const auto& item) {
        return isSubscribed(item.first, instance);
    });
    return static_cast<std::size_t>(count);
}

Modem& WdsService::modemOf(const Session& session) {
    return modems.at(static_cast<std::size_t>(session.instance));
}

const WdsService::Session* WdsService::sessionOf(std::uint32_t client) const {
    const auto found = sessions.find(client);
    return found == sessions.end() ? nullptr : &found->second;
}

WdsService::Reply WdsService::create(Session& session,
                                     const wds_create_profile_req_msg_v01& request,
                                     wds_create_profile_resp_msg_v01& response) {
    const auto technology = technologyOf(request.profile_type);
    const auto [error, index] = modemOf(session).create(technology, request.settings);
    if (error != ModemError::None) {
        return {error, {}};
    }
    response.profile = {request.profile_type, index};
    return {error,
            {{session.instance, technology, index, ChangeEvent::Create},
             {session.instance, technology, index, ChangeEvent::Modify}}};
}

WdsService::Reply WdsService::modify(Session& session,
                                     const wds_modify_profile_settings_req_msg_v01& request,
                                     wds_modify_profile_settings_resp_msg_v01& /*response*/) {
    const auto technology = technologyOf(request.profile.profile_type);
    const auto index = request.profile.profile_index;
    const auto error = modemOf(session).modify(technology, index, request.settings);
    if (error != ModemError::None) {
        return {error, {}};
    }
    return {error, {{session.instance, technology, index, ChangeEvent::Modify}}};
}

WdsService::Reply WdsService::remove(Session& session,
                                     const wds_delete_profile_req_msg_v01& request,
                                     wds_delete_profile_resp_msg_v01& /*response*/) {
    const auto technology = technologyOf(request.profile.profile_type);
    const auto index = request.profile.profile_index;
    const auto error = modemOf(session).remove(technology, index);
    if (error != ModemError::None) {
        return {error, {}};
    }
    return {error, {{session.instance, technology, index, ChangeEvent::Delete}}};
}

WdsService::Reply WdsService::read(Session& session,
                                   const wds_get_profile_settings_req_msg_v01& request,
                                   wds_get_profile_settings_resp_msg_v01& response) {
    const auto technology = technologyOf(request.profile.profile_type);
    const auto& modem = modemOf(session);
    const auto error = modem.check(technology, request.profile.profile_index);
    if (error == ModemError::None) {
        response.settings = *modem.find(technology, request.profile.profile_index);
    }
    return {error, {}};
}

WdsService::Reply WdsService::list(Session& session,
                                   const wds_get_profile_list_req_msg_v01& request,
                                   wds_get_profile_list_resp_msg_v01& response) {
    for (const auto technology : {Technology::ThreeGpp, Technology::ThreeGpp2}) {
        if (request.profile_type_valid == 0 || technologyOf(request.profile_type) == technology) {
            append(modemOf(session).profiles(technology), technology, response);
        }
    }
    const bool isKnown = request.profile_type_valid == 0 ||
                         request.profile_type == WDS_PROFILE_TYPE_3GPP_V01 ||
                         request.profile_type == WDS_PROFILE_TYPE_3GPP2_V01;
    return {isKnown ? ModemError::None : ModemError::UnknownProfileType, {}};
}

WdsService::Reply WdsService::bind(Session& session,
                                   const wds_bind_subscription_req_msg_v01& request,
                                   wds_bind_subscription_resp_msg_v01& /*response*/) {
    if (request.instance < 0 || static_cast<std::size_t>(request.instance) >= modems.size()) {
        return {ModemError::UnknownInstance, {}};
    }
    session.instance = request.instance;
    session.isBound = true;
    return {};
}

WdsService::Reply WdsService::subscribe(Session& session,
                                        const wds_indication_register_req_msg_v01& request,
                                        wds_indication_register_resp_msg_v01& /*response*/) {
    if (request.report_profile_changes_valid != 0) {
        session.wantsChanges = request.report_profile_changes != 0;
    }
    return {};
}

WdsService::Reply WdsService::configure(
    Session& session, const wds_configure_profile_event_list_req_msg_v01& request,
    wds_configure_profile_event_list_resp_msg_v01& /*response*/) {
    if (request.event_list_valid != 0) {
        if (request.event_list_len > WDS_PROFILE_LIST_MAX_V01) {
            return {ModemError::Malformed, {}};
        }
        session.events.assign(request.event_list, request.event_list + request.event_list_len);
    }
    if (request.report_own_changes_valid != 0) {
        session.wantsOwnChanges = request.report_own_changes != 0;
    }
    return {};
}

}  // namespace velasim
