// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/Recorder.h"

#include <algorithm>
#include <utility>

namespace velactl {

Messages Recorder::takeMessages() {
    const std::lock_guard lock(mutex);
    return std::exchange(messages, {});
}

void Recorder::passTo(vela::Observer* newListener) {
    const std::lock_guard lock(listening);
    listener = newListener;
}

std::vector<vela::ProfileCandidate> Recorder::searchAside(const std::function<void()>& search) {
    const auto setAside = [this](bool aside) {
        const std::lock_guard lock(listening);
        isAside = aside;
        return std::exchange(found, {});
    };
    setAside(true);
    search();
    return setAside(false);
}

std::optional<vela::ServiceState> Recorder::service() const {
    const std::lock_guard lock(mutex);
    return state;
}

Messages Recorder::failedReadings() const {
    const std::lock_guard lock(mutex);
    return unread;
}

int Recorder::expectedIndications() const {
    const std::lock_guard lock(mutex);
    return expected;
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

template <typename Tell>
void Recorder::pass(Tell tell, bool isOfRequest) {
    const std::lock_guard lock(listening);
    if (listener != nullptr && !(isAside && isOfRequest)) {
        tell(*listener);
    }
}

void Recorder::onRequest(const vela::ClientRequest& request) {
    pass([&](Observer& to) { to.onRequest(request); }, true);
}

void Recorder::onResponse(const vela::ClientRequest& request, const vela::ClientResponse* response,
                          std::chrono::nanoseconds duration) {
    pass([&](Observer& to) { to.onResponse(request, response, duration); }, true);
}

void Recorder::onSearch(const vela::ClientRequest& request,
                        const std::vector<vela::ProfileCandidate>& candidates) {
    pass([&](Observer& to) { to.onSearch(request, candidates); }, true);
    const std::lock_guard lock(listening);
    if (isAside) {
        found = candidates;
    }
}

void Recorder::onMessage(const vela::ModemMessage& message) {
    using enum vela::ModemMessageType;
    pass([&](Observer& to) { to.onMessage(message); });
    const std::lock_guard lock(mutex);
    const bool isDone = message.outcome == vela::MessageOutcome::Answered;
    expected += isDone ? wordsOf(message.type).indications : 0;
    if (message.type == RegisterIndications || message.type == ConfigureEventList) {
        isDeaf = isDeaf || !isDone;
    } else if (message.type == BindSubscription) {
        isDeaf = false;
    }
    messages.push_back(message);
    messages.back().request = nullptr;
    messages.back().profile = nullptr;
    noteReading(messages.back());
}

void Recorder::noteReading(const vela::ModemMessage& message) {
    if (message.type == vela::ModemMessageType::ListProfiles) {
        std::erase_if(unread, [&](const auto& one) { return one.techType == message.techType; });
    } else if (message.type == vela::ModemMessageType::ReadProfile) {
        std::erase_if(unread, [&](const auto& one) {
            return one.techType == message.techType && one.profileId == message.profileId;
        });
        if (message.outcome != vela::MessageOutcome::Answered) {
            unread.push_back(message);
        }
    }
}

void Recorder::onIndication(const vela::ModemIndication& indication) {
    pass([&](Observer& to) { to.onIndication(indication); });
    const std::lock_guard lock(mutex);
    expected -= indication.outcome == vela::IndicationOutcome::Confirmed ? 1 : 0;
    lost = std::min(lost, expected);  // it was late
    changed.notify_all();
}

void Recorder::onService(vela::ServiceState newState) {
    pass([&](Observer& to) { to.onService(newState); });
    const std::lock_guard lock(mutex);
    state = newState;
    lost = newState == vela::ServiceState::Down ? expected : lost;
    changed.notify_all();
}

void Recorder::onPolicyBegin(const vela::PolicyCall& call) {
    pass([&](Observer& to) { to.onPolicyBegin(call); });
}

void Recorder::onPolicyEnd(const vela::PolicyCall& call, const vela::PolicyResult& result) {
    pass([&](Observer& to) { to.onPolicyEnd(call, result); });
}

}  // namespace velactl
