// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Modem.h"

#include <diag_log.h>

#include <cstring>
#include <map>
#include <set>

#include "Scheduler.h"

namespace schedules::modem {

namespace {

/** A client or a notifier, with one kind of callback each, and errors for clients. */
struct Endpoint {
    rlink_ind_cb onIndication = nullptr;
    rlink_notify_cb onNotify = nullptr;
    rlink_error_cb onError = nullptr;
    void* data = nullptr;
    bool isDead = false;
    int callbacks = 0;  // that are being made
};

struct State {
    std::map<rlink_client_type, Endpoint> endpoints;
    std::uintptr_t lastHandle = 0;
    std::set<int> profiles;
    int lastIndex = 0;
    std::map<std::pair<std::uint32_t, int>, int> counts;
    bool isUp = true;
};

/** Never destroyed: the library outlives main(). */
State& state() {
    static auto* const instance = new State;
    return *instance;
}

Endpoint& open(rlink_client_type* handle) {
    // A number, never dereferenced. NOLINTNEXTLINE(performance-no-int-to-ptr)
    *handle = reinterpret_cast<rlink_client_type>(++state().lastHandle);
    return state().endpoints[*handle];
}

/** One callback after the other, to each endpoint that is there when its turn comes. */
template <typename Call>
void callEach(Call call) {
    auto& endpoints = state().endpoints;
    for (auto one = endpoints.begin(); one != endpoints.end();) {
        const auto handle = one->first;
        acquire(&state());
        ++one->second.callbacks;
        call(one->second);
        --one->second.callbacks;
        release(&state());
        one = endpoints.upper_bound(handle);
    }
}

template <typename Message>
Message& as(void* bytes) {
    return *static_cast<Message*>(bytes);
}

/** Fills the response but for its result, which it returns. */
bool carryOut(unsigned message, void* request, void* response) {
    auto& profiles = state().profiles;
    int index = 0;
    bool isDone = true;
    if (message == RLINK_WDS_CREATE_PROFILE_REQ_V01) {
        profiles.insert(++state().lastIndex);
        as<wds_create_profile_resp_msg_v01>(response).profile.profile_index =
            static_cast<std::uint8_t>(state().lastIndex);
    } else if (message == RLINK_WDS_DELETE_PROFILE_REQ_V01) {
        index = as<wds_delete_profile_req_msg_v01>(request).profile.profile_index;
        isDone = profiles.erase(index) != 0;
    } else if (message == RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01) {
        index = as<wds_get_profile_settings_req_msg_v01>(request).profile.profile_index;
        isDone = has(index);
        auto& settings = as<wds_get_profile_settings_resp_msg_v01>(response).settings;
        settings.apn_name_valid = 1;
        nameOf(index).copy(settings.apn_name, WDS_APN_NAME_MAX_V01);
    }
    ++state().counts[{message, index}];
    return isDone;
}

}  // namespace

void comeUp() {
    state().isUp = true;
    callEach([](Endpoint& notifier) {
        if (notifier.onNotify != nullptr) {
            notifier.onNotify(nullptr, nullptr, RLINK_SERVICE_AVAILABLE, notifier.data);
        }
    });
}

void goDown() {
    state().isUp = false;
    callEach([](Endpoint& client) {
        client.isDead = true;
        if (client.onError != nullptr) {
            client.onError(nullptr, RLINK_ERROR_SERVICE, client.data);
        }
    });
}

void announce(int index, wds_profile_change_event_enum_v01 event) {
    if (event == WDS_PROFILE_CHANGE_EVENT_DELETE_V01) {
        state().profiles.erase(index);
    }
    wds_profile_changed_ind_msg_v01 message{};
    message.profile_changed_valid = 1;
    message.profile_changed = {WDS_PROFILE_TYPE_3GPP_V01, static_cast<std::uint8_t>(index), event};
    callEach([&](Endpoint& client) {
        if (client.onIndication != nullptr) {
            client.onIndication(nullptr, RLINK_WDS_PROFILE_CHANGED_IND_V01, &message,
                                sizeof message, client.data);
        }
    });
}

std::string nameOf(int index) {
    return "apn" + std::to_string(index);
}

bool has(int index) {
    return state().profiles.count(index) != 0;
}

int countOf(std::uint32_t message, int index) {
    return state().counts[{message, index}];
}

std::size_t openHandles() {
    return state().endpoints.size();
}

}  // namespace schedules::modem

using namespace schedules::modem;  // NOLINT(google-build-using-namespace): its own

extern "C" {

rlink_service_object_type wds_get_service_object_internal_v01(int32_t, int32_t, int32_t) {
    return reinterpret_cast<rlink_service_object_type>(&state());
}

int rlink_client_notifier_init(rlink_service_object_type, rlink_client_os_params*,
                               rlink_client_type* notifier) {
    open(notifier);
    return RLINK_NO_ERROR;
}

int rlink_client_register_notify_cb(rlink_client_type notifier, rlink_notify_cb callback,
                                    void* data) {
    auto& endpoint = state().endpoints[notifier];
    endpoint.onNotify = callback;
    endpoint.data = data;
    schedules::release(&state());
    return RLINK_NO_ERROR;
}

int rlink_client_get_any_service(rlink_service_object_type, rlink_service_info*) {
    return state().isUp ? RLINK_NO_ERROR : RLINK_ERROR_SERVICE;
}

int rlink_client_init(rlink_service_info*, rlink_service_object_type, rlink_ind_cb callback,
                      void* data, rlink_client_os_params*, rlink_client_type* client) {
    auto& endpoint = open(client);
    endpoint.onIndication = callback;
    endpoint.data = data;
    schedules::release(&state());
    return RLINK_NO_ERROR;
}

int rlink_client_register_error_cb(rlink_client_type client, rlink_error_cb callback, void*) {
    state().endpoints[client].onError = callback;
    return RLINK_NO_ERROR;
}

int rlink_client_send_msg_sync(rlink_client_type client, unsigned int message, void* request,
                               unsigned int, void* response, unsigned int, unsigned int) {
    schedules::Scheduler::instance().point("asks the modem", __builtin_return_address(0));
    const auto endpoint = state().endpoints.find(client);
    if (endpoint == state().endpoints.end() || endpoint->second.isDead) {
        return RLINK_ERROR_CLIENT;
    }
    const wds_response_type_v01 result{carryOut(message, request, response) ? 0U : 1U, 0};
    std::memcpy(response, &result, sizeof result);  // each response begins with it
    return RLINK_NO_ERROR;
}

int rlink_client_message_decode(rlink_client_type, rlink_message_kind, unsigned int,
                                const void* bytes, unsigned int, void* out, unsigned int length) {
    std::memcpy(out, bytes, length);
    return RLINK_NO_ERROR;
}

/** Returns when no callback is being made to it. */
int rlink_client_release(rlink_client_type client) {
    schedules::Scheduler::instance().point("gives up a handle", __builtin_return_address(0), [=] {
        const auto endpoint = state().endpoints.find(client);
        return endpoint == state().endpoints.end() || endpoint->second.callbacks == 0;
    });
    schedules::acquire(&state());
    state().endpoints.erase(client);
    return RLINK_NO_ERROR;
}

bool diagLogInit(void*) {
    return true;
}
bool diagLogDeinit() {
    return true;
}
void diagLogPrintf(const diag_log_descriptor*, ...) {}

}  // extern "C"
