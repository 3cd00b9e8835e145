// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/Traffic.h"

#include <rlink_client.h>

namespace velactl {

namespace {

struct MessageWords {
    const char* name;
    const char* purpose;
    int indications = 0;
};

MessageWords wordsOf(vela::ModemMessageType type) {
    using enum vela::ModemMessageType;
    switch (type) {
        case CreateProfile:
            return {"create_profile", "create a profile", 2};  // creation and first change
        case ModifyProfile:
            return {"modify_profile", "change a profile", 1};
        case DeleteProfile:
            return {"delete_profile", "delete a profile", 1};
        case ListProfiles:
            return {"list_profiles", "list the profiles"};
        case ReadProfile:
            return {"read_profile", "read a profile"};
        case BindSubscription:
            return {"bind_subscription", "bind to the subscription"};
        case RegisterIndications:
            return {"register_indications", "send indications"};
        case ConfigureEventList:
            return {"configure_event_list", "report changes of profiles"};
    }
    return {"unknown", "do something"};
}

/** Of a service that is not up. */
std::string absence(std::optional<vela::ServiceState> service) {
    if (!service) {
        return "its service has not come up";
    }
    return *service == vela::ServiceState::Down ? "its service has gone"
                                                : "the library could not connect to its service";
}

void addNote(Connection& connection, const std::string& failure, const char* consequence) {
    if (!failure.empty()) {
        connection.notes.push_back(failure + consequence);
    }
}

}  // namespace

const char* nameOf(vela::ModemMessageType type) {
    return wordsOf(type).name;
}

int indicationsOf(const vela::ModemMessage& message) {
    return wordsOf(message.type).indications;
}

std::string failureOf(const vela::ModemMessage& message, const Backend& modem) {
    const std::string what = wordsOf(message.type).purpose;
    std::string noAnswer = "the modem did not answer the request to " + what;
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
    using enum vela::ModemMessageType;
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
        } else if (message.type == RegisterIndications || message.type == ConfigureEventList) {
            addNote(connection, failure, ", so the library does not see what others change");
        } else {
            addNote(connection, failure, "");
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
