// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ConstantModem.h"

#include <diag_log.h>
#include <rlink_client.h>

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

namespace constant_modem {
namespace {

using Change = wds_profile_changed_ind_type_v01;

struct State {
    std::mutex mutex;
    rlink_notify_cb onNotify = nullptr;
    void* notifyData = nullptr;
    rlink_ind_cb onIndication = nullptr;
    void* indicationData = nullptr;
    std::vector<Change> announcements;
    std::array<int, 2> counts{};
    std::uint8_t lastCreated = 0;
    bool announcing = false;
    std::atomic<bool> formatting{false};
    std::atomic<void (*)()> lineHook{nullptr};
    std::atomic<std::uint64_t> messages{0};
};

/** Never destroyed: the library outlives main(). */
State& state() {
    static auto* const instance = new State;
    return *instance;
}

rlink_client_type handle() {
    return reinterpret_cast<rlink_client_type>(&state());
}

void indicate(const Change& change) {
    wds_profile_changed_ind_msg_v01 message{};
    message.profile_changed_valid = 1;
    message.profile_changed = change;
    state().onIndication(handle(), RLINK_WDS_PROFILE_CHANGED_IND_V01, &message, sizeof message,
                         state().indicationData);
}

void expect(std::uint8_t index, wds_profile_change_event_enum_v01 event) {
    if (state().announcing) {
        const std::lock_guard lock(state().mutex);
        state().announcements.push_back({WDS_PROFILE_TYPE_3GPP_V01, index, event});
    }
}

void answer(const wds_get_profile_list_req_msg_v01& request,
            wds_get_profile_list_resp_msg_v01& response) {
    const auto type = request.profile_type;
    response.profile_list_len =
        static_cast<std::uint32_t>(state().counts[type == WDS_PROFILE_TYPE_3GPP_V01 ? 0 : 1]);
    for (std::uint32_t i = 0; i < response.profile_list_len; ++i) {
        response.profile_list[i].profile_type = type;
        response.profile_list[i].profile_index = static_cast<std::uint8_t>(i + 1);
    }
}

void answer(const wds_get_profile_settings_req_msg_v01&,
            wds_get_profile_settings_resp_msg_v01& response) {
    auto& settings = response.settings;
    settings.apn_name_valid = 1;
    std::strcpy(settings.apn_name, "internet.operator.example");
    settings.apn_string_3gpp2_valid = 1;
    std::strcpy(settings.apn_string_3gpp2, "internet.operator.example");
    settings.pdp_type_valid = 1;
    settings.pdp_type = WDS_PDP_TYPE_IPV4V6_V01;
    settings.persistence_flag_valid = 1;
    settings.persistence_flag = 1;
}

template <typename Request, typename Response>
void answer(void* request, void* response) {
    answer(*static_cast<const Request*>(request), *static_cast<Response*>(response));
}

}  // namespace

void hold(int profiles3gpp, int profiles3gpp2) {
    state().counts = {profiles3gpp, profiles3gpp2};
}

void setAnnouncing(bool announcing) {
    state().announcing = announcing;
}

void deliver() {
    if (const auto onNotify = std::exchange(state().onNotify, nullptr)) {
        onNotify(handle(), nullptr, RLINK_SERVICE_AVAILABLE, state().notifyData);
    }
    std::vector<Change> due;
    {
        const std::lock_guard lock(state().mutex);
        due.swap(state().announcements);
    }
    for (const Change& change : due) {
        indicate(change);
    }
}

void announce(int index, wds_profile_change_event_enum_v01 event) {
    indicate({WDS_PROFILE_TYPE_3GPP_V01, static_cast<std::uint8_t>(index), event});
}

void setFormatting(bool formatting) {
    state().formatting = formatting;
}

void setLineHook(void (*hook)()) {
    state().lineHook = hook;
}

std::uint64_t messages() {
    return state().messages;
}

}  // namespace constant_modem

using namespace constant_modem;  // NOLINT(google-build-using-namespace): its own

extern "C" {

rlink_service_object_type wds_get_service_object_internal_v01(int32_t, int32_t, int32_t) {
    return reinterpret_cast<rlink_service_object_type>(&state());
}

int rlink_client_notifier_init(rlink_service_object_type, rlink_client_os_params*,
                               rlink_client_type* notifier) {
    *notifier = handle();
    return RLINK_NO_ERROR;
}

int rlink_client_register_notify_cb(rlink_client_type, rlink_notify_cb callback, void* data) {
    state().notifyData = data;
    state().onNotify = callback;
    return RLINK_NO_ERROR;
}

int rlink_client_get_any_service(rlink_service_object_type, rlink_service_info*) {
    return RLINK_NO_ERROR;
}

int rlink_client_init(rlink_service_info*, rlink_service_object_type, rlink_ind_cb callback,
                      void* data, rlink_client_os_params*, rlink_client_type* client) {
    state().onIndication = callback;
    state().indicationData = data;
    *client = handle();
    return RLINK_NO_ERROR;
}

int rlink_client_register_error_cb(rlink_client_type, rlink_error_cb, void*) {
    return RLINK_NO_ERROR;
}

int rlink_client_send_msg_sync(rlink_client_type, unsigned int message, void* request, unsigned int,
                               void* response, unsigned int, unsigned int) {
    ++state().messages;
    switch (message) {
        case RLINK_WDS_CREATE_PROFILE_REQ_V01: {
            const auto index = ++state().lastCreated;
            static_cast<wds_create_profile_resp_msg_v01*>(response)->profile.profile_index = index;
            expect(index, WDS_PROFILE_CHANGE_EVENT_CREATE_V01);
            expect(index, WDS_PROFILE_CHANGE_EVENT_MODIFY_V01);
            break;
        }
        case RLINK_WDS_DELETE_PROFILE_REQ_V01:
            expect(
                static_cast<const wds_delete_profile_req_msg_v01*>(request)->profile.profile_index,
                WDS_PROFILE_CHANGE_EVENT_DELETE_V01);
            break;
        case RLINK_WDS_GET_PROFILE_LIST_REQ_V01:
            answer<wds_get_profile_list_req_msg_v01, wds_get_profile_list_resp_msg_v01>(request,
                                                                                        response);
            break;
        case RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01:
            answer<wds_get_profile_settings_req_msg_v01, wds_get_profile_settings_resp_msg_v01>(
                request, response);
            break;
        default:
            break;
    }
    return RLINK_NO_ERROR;
}

int rlink_client_message_decode(rlink_client_type, rlink_message_kind, unsigned int,
                                const void* bytes, unsigned int, void* out, unsigned int length) {
    std::memcpy(out, bytes, length);
    return RLINK_NO_ERROR;
}

int rlink_client_release(rlink_client_type) {
    return RLINK_NO_ERROR;
}

bool diagLogInit(void*) {
    return true;
}

bool diagLogDeinit() {
    return true;
}

void diagLogPrintf(const diag_log_descriptor* descriptor, ...) {
    if (const auto hook = state().lineHook.load()) {
        hook();
    }
    if (!state().formatting) {
        return;
    }
    std::array<char, 600> line;  // of the one form that the library's lines have
    va_list arguments;
    va_start(arguments, descriptor);
    std::vsnprintf(line.data(), line.size(), "|%s| %s", arguments);
    va_end(arguments);
    asm volatile("" : : "g"(line.data()) : "memory");
}

}  // extern "C"
