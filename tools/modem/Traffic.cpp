// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/Traffic.h"

#include <rlink_client.h>

#include <algorithm>
#include <iterator>

namespace velactl {

namespace {

using enum vela::ModemMessageType;

constexpr MessageWords kMessages[] = {
    {CreateProfile, "create_profile", "create a profile", "create", 2},  // and its first change
    {ModifyProfile, "modify_profile", "change a profile", "modify", 1},
    {DeleteProfile, "delete_profile", "delete a profile", "delete", 1},
    {ListProfiles, "list_profiles", "list the profiles", "list"},
    {ReadProfile, "read_profile", "read a profile", "read"},
    {BindSubscription, "bind_subscription", "bind to the subscription", "bind"},
    {RegisterIndications, "register_indications", "send indications", "register"},
    {ConfigureEventList, "configure_event_list", "report changes of profiles", "event-list"},
};
constexpr MessageWords kUnknown{{}, "unknown", "do something", ""};

/** Of a service that is not up. */
std::string absence(std::optional<vela::ServiceState> service) {
    return !service                               ? "its service has not come up"
           : *service == vela::ServiceState::Down ? "its service has gone"
                                                  : "the library could not connect to its service";
}

}  // namespace

std::span<const MessageWords> allMessages() {
    return kMessages;
}

const MessageWords& wordsOf(vela::ModemMessageType type) {
    const auto* found = std::find_if(std::begin(kMessages), std::end(kMessages),
                                     [type](const auto& each) { return each.type == type; });
    return found == std::end(kMessages) ? kUnknown : *found;
}

std::string failureOf(const vela::ModemMessage& message, const Backend& modem) {
    const std::string what = wordsOf(message.type).purpose;
    const std::string noAnswer = "the modem did not answer the request to " + what;
    const std::string number = "messaging error " + std::to_string(message.result);
    switch (message.outcome) {
        case vela::MessageOutcome::Answered:
            return "";
        case vela::MessageOutcome::Refused:
            return "the modem refused to " + what + ": " + modem.errorName(message.error);
        case vela::MessageOutcome::TimedOut:
            return noAnswer;
        case vela::MessageOutcome::NotSent:
            return "the request to " + what + " was not sent: " +
                   (message.result == RLINK_ERROR_CLIENT
                        ? "the library is not connected to the modem"
                        : number);
        case vela::MessageOutcome::Lost:
            return noAnswer + ": " +
                   (message.result == RLINK_ERROR_SERVICE ? "its service is not there" : number);
    }
    return "the request to " + what + " failed";
}

Traffic trafficOf(const Messages& messages, const Backend& modem) {
    Traffic traffic;
    for (const vela::ModemMessage& message : messages) {
        traffic.writes += isWrite(message) ? 1U : 0U;
        if (std::string failure = failureOf(message, modem); !failure.empty()) {
            (isWrite(message) ? traffic.failures : traffic.failedReads)
                .push_back(std::move(failure));
        }
    }
    return traffic;
}

Connection connectionOf(const Messages& messages, std::optional<vela::ServiceState> service,
                        const Backend& modem) {
    Connection connection;
    std::string unlisted;
    bool isListed = false;
    for (const vela::ModemMessage& message : messages) {
        const std::string failure = failureOf(message, modem);
        const bool isList = message.type == ListProfiles;
        isListed = isListed || (isList && failure.empty());
        unlisted = isList && unlisted.empty() ? failure : unlisted;
        if (message.type == BindSubscription) {
            connection.failure = failure;
        } else if (!failure.empty()) {
            const bool isDeaf =
                message.type == RegisterIndications || message.type == ConfigureEventList;
            connection.notes.push_back(
                failure + (isDeaf ? ", so the library does not see what others change" : ""));
        }
    }
    if (service != vela::ServiceState::Up) {
        connection.failure = absence(service);
    } else if (connection.failure.empty() && !isListed) {
        connection.failure = unlisted;
    }
    return connection;
}

}  // namespace velactl
