// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <wds_service_v01.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "Change.h"
#include "Modem.h"

namespace velasim {

/**
 * The wireless data service: a table from message to handler. Translates requests to operations of
 * the modems and knows what each client has bound, registered and configured. Clients are known
 * by number; how their messages get here is the concern of others. Takes no lock: its owner,
 * SimulatedPlatform, calls it under its own.
 */
class WdsService {
  public:
    struct Reply {
        ModemError error = ModemError::None;
        std::vector<Change> changes;
    };

    explicit WdsService(std::vector<Modem>& modems) : modems(modems) {}

    /** Whether the message is known and its structures have these sizes. */
    static bool sizesFit(std::uint32_t messageId, std::size_t request, std::size_t response);

    /** Carries a request out and fills its response. The sizes must fit. */
    Reply handle(std::uint32_t client, std::uint32_t messageId, const void* request,
                 void* response);

    /** Fills the response of a refused request, which has had no effect. The size must fit. */
    static void refuse(ModemError error, void* response, std::size_t responseSize);

    /** The instance that a client's requests go to: 0 until it has bound another. */
    std::int32_t instanceOf(std::uint32_t client) const;

    /** The clients that are told of a change, in the order of their numbers; `author`, the client
     * that made it, only if it asked for its own changes. 0: no client made it. */
    std::vector<std::uint32_t> audience(const Change& change, std::uint32_t author) const;

    /** Whether the client has bound the instance, registered and configured an event list. */
    bool isSubscribed(std::uint32_t client, std::int32_t instance) const;
    std::size_t subscribers(std::int32_t instance) const;

    /** The client has gone. */
    void forget(std::uint32_t client) { sessions.erase(client); }
    void forgetAll() { sessions.clear(); }

  private:
    struct Session {
        std::int32_t instance = 0;
        bool isBound = false;
        bool wantsChanges = false;
        bool wantsOwnChanges = false;
        std::vector<wds_profile_identifier_type_v01> events;
    };
    struct Handler;

    static const Handler* handlerOf(std::uint32_t messageId);
    template <auto Method, typename Request, typename Response>
    Reply invoke(Session& session, const void* request, void* response);
    Modem& modemOf(const Session& session);
    const Session* sessionOf(std::uint32_t client) const;

    Reply create(Session&, const wds_create_profile_req_msg_v01&, wds_create_profile_resp_msg_v01&);
    Reply modify(Session&, const wds_modify_profile_settings_req_msg_v01&,
                 wds_modify_profile_settings_resp_msg_v01&);
    Reply remove(Session&, const wds_delete_profile_req_msg_v01&, wds_delete_profile_resp_msg_v01&);
    Reply read(Session&, const wds_get_profile_settings_req_msg_v01&,
               wds_get_profile_settings_resp_msg_v01&);
    Reply list(Session&, const wds_get_profile_list_req_msg_v01&,
               wds_get_profile_list_resp_msg_v01&);
    Reply bind(Session&, const wds_bind_subscription_req_msg_v01&,
               wds_bind_subscription_resp_msg_v01&);
    Reply subscribe(Session&, const wds_indication_register_req_msg_v01&,
                    wds_indication_register_resp_msg_v01&);
    Reply configure(Session&, const wds_configure_profile_event_list_req_msg_v01&,
                    wds_configure_profile_event_list_resp_msg_v01&);

    std::vector<Modem>& modems;
    std::map<std::uint32_t, Session> sessions;
};

}  // namespace velasim
