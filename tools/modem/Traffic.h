// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What the library does: its messages to the modem, and what they have come to.
#pragma once

#include <vela/Observer.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace velactl {

class Backend;

using Messages = std::vector<vela::ModemMessage>;

/** One kind of message: all that is said of it is said here. */
struct MessageWords {
    vela::ModemMessageType type;
    const char* name;     // "create_profile"
    const char* purpose;  // "create a profile"
    const char* target;   // of a fault
    /** How many the library expects once the modem has carried it out; of a creation also that
     * of the first change. */
    int indications = 0;
};

/** Of all messages that the library sends. */
using MessageType = vela::ModemMessageType;
inline constexpr MessageWords kMessages[] = {
    {MessageType::CreateProfile, "create_profile", "create a profile", "create", 2},
    {MessageType::ModifyProfile, "modify_profile", "change a profile", "modify", 1},
    {MessageType::DeleteProfile, "delete_profile", "delete a profile", "delete", 1},
    {MessageType::ListProfiles, "list_profiles", "list the profiles", "list"},
    {MessageType::ReadProfile, "read_profile", "read a profile", "read"},
    {MessageType::BindSubscription, "bind_subscription", "bind to the subscription", "bind"},
    {MessageType::RegisterIndications, "register_indications", "send indications", "register"},
    {MessageType::ConfigureEventList, "configure_event_list", "report changes of profiles",
     "event-list"},
};
const MessageWords& wordsOf(vela::ModemMessageType type);

inline const char* nameOf(vela::ModemMessageType type) {
    return wordsOf(type).name;
}

/** Whether it is to create, modify or delete a profile. */
inline bool isWrite(const vela::ModemMessage& message) {
    return wordsOf(message.type).indications != 0;
}

/** Why a message failed, whole: "the modem refused to create a profile: table full". Empty for one
 * that did not. */
std::string failureOf(const vela::ModemMessage& message, const Backend& modem);

/** What the library asked the modem to change. */
struct Traffic {
    std::size_t writes = 0;
    /** The changes that failed: refused, not answered or not sent, in words. */
    std::vector<std::string> failures = {};
    /** The same for reading the modem's tables. */
    std::vector<std::string> failedReads = {};
};

Traffic trafficOf(const Messages& messages, const Backend& modem);

/** What the library's first steps with a modem have come to. */
struct Connection {
    /** Why the modem cannot be worked with; empty: it can. */
    std::string failure;
    /** What is lacking all the same, one line each. */
    std::vector<std::string> notes;
};

/** Of the messages since the library was initialised, its first reading of the tables included. */
Connection connectionOf(const Messages& messages, std::optional<vela::ServiceState> service,
                        const Backend& modem);

/** Notes what the tool must know of the library's doings, and passes all of them on. Any thread. */
class Recorder : public vela::Observer {
  public:
    /** The messages since the last call, oldest first; their pointers are null. */
    Messages takeMessages();

    /** Of each profile that the library holds and could not read, its latest try. */
    Messages failedReadings() const { return locked(unread); }

    /** Passes everything on from now on, one call after the other; null: to nobody. The former
     * listener is in no call any more when this returns. */
    void passTo(vela::Observer* newListener) {
        const std::lock_guard lock(listening);
        listener = newListener;
    }

    /** Has the library search, of which the listener learns nothing. */
    std::vector<vela::ProfileCandidate> searchAside(const std::function<void()>& search);

    /** The latest that was told of the modem's service. */
    std::optional<vela::ServiceState> service() const { return locked(state); }

    /** How many indications of its own changes the library still expects. */
    int expectedIndications() const { return locked(expected); }

    /** Waits until the library expects none, or the time has passed; not again for those that are
     * late then, nor for those that an outage of the service has swallowed. */
    void awaitConfirmations(std::chrono::milliseconds patience);

    /** Waits until the modem's service is up, or the time has passed. */
    void awaitService(std::chrono::milliseconds patience);

    void onRequest(const vela::ClientRequest& request) override {
        pass(!isAside, &Observer::onRequest, request);
    }
    void onResponse(const vela::ClientRequest& request, const vela::ClientResponse* response,
                    std::chrono::nanoseconds duration) override {
        pass(!isAside, &Observer::onResponse, request, response, duration);
    }
    void onSearch(const vela::ClientRequest& request,
                  const std::vector<vela::ProfileCandidate>& candidates) override;
    void onMessage(const vela::ModemMessage& message) override;
    void onIndication(const vela::ModemIndication& indication) override;
    void onService(vela::ServiceState state) override;
    void onPolicyBegin(const vela::PolicyCall& call) override {
        pass(true, &Observer::onPolicyBegin, call);
    }
    void onPolicyEnd(const vela::PolicyCall& call, const vela::PolicyResult& result) override {
        pass(true, &Observer::onPolicyEnd, call, result);
    }

  private:
    template <typename Tell, typename... Told>
    void pass(bool isTold, Tell tell, const Told&... told) {
        const std::lock_guard lock(listening);
        if (isTold && listener != nullptr) {
            (listener->*tell)(told...);
        }
    }
    template <typename Value>
    Value locked(const Value& value) const {
        const std::lock_guard lock(mutex);
        return value;
    }

    std::mutex listening;  // held while the listener is called; guards:
    vela::Observer* listener = nullptr;
    std::vector<vela::ProfileCandidate> found;
    std::atomic<bool> isAside = false;

    mutable std::mutex mutex;  // guards all that follows
    std::condition_variable changed;
    Messages messages;
    Messages unread;
    int expected = 0;
    int lost = 0;
    bool isDeaf = false;  // the modem does not send indications
    std::optional<vela::ServiceState> state;
};

}  // namespace velactl
