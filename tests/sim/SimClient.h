// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <rlink_client.h>
#include <wds_service_v01.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "velasim/Settings.h"

namespace velasim {

/** A client of the platform's C functions. Connects to the newest simulator. */
class SimClient {
  public:
    struct Subscription {
        bool bind = true;
        bool wantsChanges = true;
        bool wantsOwnChanges = true;
        std::vector<wds_profile_identifier_type_v01> events = {
            {static_cast<wds_profile_type_enum_v01>(WDS_PROFILE_TYPE_ALL_V01),
             WDS_PROFILE_INDEX_ALL_V01}};
    };
    struct Answer {
        int result;
        ModemError error;
        int index = 0;

        bool operator==(const Answer&) const = default;
    };

    explicit SimClient(std::int32_t instance = 0) : SimClient(instance, Subscription{}) {}
    SimClient(std::int32_t instance, const Subscription& subscription) {
        const auto service = wds_get_service_object_internal_v01(1, 227, 6);
        rlink_service_info info{};
        rlink_client_os_params params{};
        found = rlink_client_get_any_service(service, &info);
        connected = rlink_client_init(&info, service, &onIndication, this, &params, &handle);
        watched = rlink_client_register_error_cb(handle, &onError, this);
        subscribe(instance, subscription);
    }
    SimClient(const SimClient&) = delete;
    SimClient& operator=(const SimClient&) = delete;
    ~SimClient() { rlink_client_release(handle); }

    template <typename Response, typename Request>
    int call(std::uint32_t messageId, Request request, Response& response) {
        response = {};
        return rlink_client_send_msg_sync(handle, messageId, &request, sizeof request, &response,
                                          sizeof response, 1000);
    }

    template <typename Response, typename Request>
    Answer ask(std::uint32_t messageId, const Request& request) {
        Response response{};
        const int result = call(messageId, request, response);
        Answer answer{result, static_cast<ModemError>(response.resp.error)};
        if constexpr (requires { response.profile; }) {
            answer.index = response.profile.profile_index;
        }
        return answer;
    }

    Answer create(Technology technology, const Settings& settings) {
        return ask<wds_create_profile_resp_msg_v01>(
            RLINK_WDS_CREATE_PROFILE_REQ_V01,
            wds_create_profile_req_msg_v01{typeOf(technology), settings});
    }
    Answer modify(Technology technology, int index, const Settings& settings) {
        return ask<wds_modify_profile_settings_resp_msg_v01>(
            RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01,
            wds_modify_profile_settings_req_msg_v01{name(technology, index), settings, {}});
    }
    Answer remove(Technology technology, int index) {
        return ask<wds_delete_profile_resp_msg_v01>(
            RLINK_WDS_DELETE_PROFILE_REQ_V01,
            wds_delete_profile_req_msg_v01{name(technology, index)});
    }
    int read(Technology technology, int index, wds_get_profile_settings_resp_msg_v01& response) {
        return call(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01,
                    wds_get_profile_settings_req_msg_v01{name(technology, index)}, response);
    }
    int list(Technology technology, wds_get_profile_list_resp_msg_v01& response) {
        return call(RLINK_WDS_GET_PROFILE_LIST_REQ_V01,
                    wds_get_profile_list_req_msg_v01{1, typeOf(technology), {}}, response);
    }
    Answer bind(std::int32_t instance) {
        return ask<wds_bind_subscription_resp_msg_v01>(RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01,
                                                       wds_bind_subscription_req_msg_v01{instance});
    }

    /** What the callbacks saw, decoded: "Create 3GPP:1 Error ". Forgets it. */
    std::string take() {
        const std::lock_guard lock(mutex);
        return std::exchange(seen, {});
    }

    static wds_profile_type_enum_v01 typeOf(Technology technology) {
        return static_cast<wds_profile_type_enum_v01>(static_cast<std::int32_t>(technology));
    }
    static wds_profile_identifier_type_v01 name(Technology technology, int index) {
        return {typeOf(technology), static_cast<std::uint8_t>(index)};
    }

    rlink_client_type handle = nullptr;
    int found = 0;
    int connected = 0;
    int watched = 0;
    std::thread::id callbackThread;  // guarded by `mutex`
    /** Called in every indication callback, without a lock; set before the first. */
    std::function<void()> inCallback = [] {};
    std::mutex mutex;

  private:
    void subscribe(std::int32_t instance, const Subscription& subscription) {
        if (subscription.bind) {
            bind(instance);
        }
        wds_indication_register_req_msg_v01 changes{};
        changes.report_profile_changes_valid = 1;
        changes.report_profile_changes = subscription.wantsChanges ? 1 : 0;
        ask<wds_indication_register_resp_msg_v01>(RLINK_WDS_INDICATION_REGISTER_REQ_V01, changes);
        wds_configure_profile_event_list_req_msg_v01 events{};
        events.event_list_valid = 1;
        for (const auto& entry : subscription.events) {
            events.event_list[events.event_list_len++] = entry;
        }
        events.report_own_changes_valid = 1;
        events.report_own_changes = subscription.wantsOwnChanges ? 1 : 0;
        ask<wds_configure_profile_event_list_resp_msg_v01>(
            RLINK_WDS_CONFIGURE_PROFILE_EVENT_LIST_REQ_V01, events);
    }

    void note(const std::string& text) {
        const std::lock_guard lock(mutex);
        seen += text + ' ';
        callbackThread = std::this_thread::get_id();
    }

    static void onIndication(rlink_client_type client, unsigned messageId, void* bytes,
                             unsigned size, void* data) {
        auto& self = *static_cast<SimClient*>(data);
        wds_profile_changed_ind_msg_v01 message{};
        const int result = rlink_client_message_decode(client, RLINK_MESSAGE_INDICATION, messageId,
                                                       bytes, size, &message, sizeof message);
        const auto& change = message.profile_changed;
        self.note(result != 0                          ? "bad"
                  : message.profile_changed_valid == 0 ? "empty"
                                                       : describeChange(change));
        self.inCallback();
    }

    static std::string describeChange(const wds_profile_changed_ind_type_v01& change) {
        return toString(static_cast<ChangeEvent>(static_cast<int>(change.change_event))) + ' ' +
               toString(static_cast<Technology>(static_cast<int>(change.profile_type))) + ':' +
               std::to_string(change.profile_index);
    }

    static void onError(rlink_client_type /*client*/, int /*error*/, void* data) {
        static_cast<SimClient*>(data)->note("Error");
    }

    std::string seen;  // guarded by `mutex`
};

/** Settings with an APN for each technology, persistent or volatile. */
inline Settings settingsWithApn(const std::string& apn, bool isPersistent = true) {
    Settings settings{};
    setText(settings, "apn_name", apn);
    setText(settings, "apn_string_3gpp2", apn);
    setNumber(settings, "persistence_flag", isPersistent ? 1 : 0);
    return settings;
}

}  // namespace velasim
