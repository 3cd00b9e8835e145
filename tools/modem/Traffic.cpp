// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/Traffic.h"

#include <rlink_client.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "modem/Workbench.h"

namespace velactl {

namespace {

using enum vela::ModemMessageType;

constexpr MessageWords kUnknown{{}, "unknown", "do something", ""};

/** Whether it asks for indications. */
bool isOfIndications(const vela::ModemMessage& message) {
    return message.type == RegisterIndications || message.type == ConfigureEventList;
}

}  // namespace

const MessageWords& wordsOf(vela::ModemMessageType type) {
    const auto* found = std::find_if(std::begin(kMessages), std::end(kMessages),
                                     [type](const auto& each) { return each.type == type; });
    return found == std::end(kMessages) ? kUnknown : *found;
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
            connection.notes.push_back(failure +
                                       (isOfIndications(message)
                                            ? ", so the library does not see what others change"
                                            : ""));
        }
    }
    if (service != vela::ServiceState::Up) {
        connection.failure = !service ? "its service has not come up"
                             : *service == vela::ServiceState::Down
                                 ? "its service has gone"
                                 : "the library could not connect to its service";
    } else if (connection.failure.empty() && !isListed) {
        connection.failure = unlisted;
    }
    return connection;
}

Messages Recorder::takeMessages() {
    const std::lock_guard lock(mutex);
    return std::exchange(messages, {});
}

std::vector<vela::ProfileCandidate> Recorder::searchAside(const std::function<void()>& search) {
    isAside = true;
    search();
    isAside = false;
    const std::lock_guard lock(listening);
    return std::exchange(found, {});
}

void Recorder::awaitConfirmations(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex);
    changed.wait_for(lock, patience, [this] { return isDeaf || expected <= lost; });
    lost = expected;
}

void Recorder::awaitService(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex);
    changed.wait_for(lock, patience, [this] { return state == vela::ServiceState::Up; });
}

void Recorder::onSearch(const vela::ClientRequest& request,
                        const std::vector<vela::ProfileCandidate>& candidates) {
    pass(!isAside, &Observer::onSearch, request, candidates);
    const std::lock_guard lock(listening);
    if (isAside) {
        found = candidates;
    }
}

void Recorder::onMessage(const vela::ModemMessage& message) {
    pass(true, &Observer::onMessage, message);
    const std::lock_guard lock(mutex);
    const bool isDone = message.outcome == vela::MessageOutcome::Answered;
    expected += isDone ? wordsOf(message.type).indications : 0;
    if (isOfIndications(message)) {
        isDeaf = isDeaf || !isDone;
    } else if (message.type == BindSubscription) {
        isDeaf = false;
    }
    messages.push_back(message);
    messages.back().request = nullptr;
    messages.back().profile = nullptr;
    std::erase_if(unread, [&message](const vela::ModemMessage& former) {
        const bool isSame = former.profileId == message.profileId;
        return former.techType == message.techType &&
               (message.type == ListProfiles || (message.type == ReadProfile && isSame));
    });
    if (message.type == ReadProfile && !isDone) {
        unread.push_back(messages.back());
    }
}

void Recorder::onIndication(const vela::ModemIndication& indication) {
    pass(true, &Observer::onIndication, indication);
    const std::lock_guard lock(mutex);
    expected -= indication.outcome == vela::IndicationOutcome::Confirmed ? 1 : 0;
    lost = std::min(lost, expected);  // it was late
    changed.notify_all();
}

void Recorder::onService(vela::ServiceState newState) {
    pass(true, &Observer::onService, newState);
    const std::lock_guard lock(mutex);
    state = newState;
    lost = newState == vela::ServiceState::Down ? expected : lost;
    changed.notify_all();
}

}  // namespace velactl
