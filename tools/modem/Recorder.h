// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Observer.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "modem/Traffic.h"

namespace velactl {

/** Notes what the tool must know of the library's doings, and passes all of them on. Any thread. */
class Recorder : public vela::Observer {
  public:
    /** The messages since the last call, oldest first; their pointers are null. */
    Messages takeMessages();

    /** Of each profile that the library holds and could not read, its latest try. */
    Messages failedReadings() const;

    /** Passes everything on from now on, one call after the other; null: to nobody. The former
     * listener is in no call any more when this returns. */
    void passTo(vela::Observer* newListener);

    /** Has the library search, of which the listener learns nothing. */
    std::vector<vela::ProfileCandidate> searchAside(const std::function<void()>& search);

    /** The latest that was told of the modem's service. */
    std::optional<vela::ServiceState> service() const;

    /** How many indications of its own changes the library still expects. */
    int expectedIndications() const;

    /** Waits until the library expects none, or the time has passed; not again for those that are
     * late then, nor for those that an outage of the service has swallowed. */
    void awaitConfirmations(std::chrono::milliseconds patience);

    /** Waits until the modem's service is up, or the time has passed. */
    void awaitService(std::chrono::milliseconds patience);

    void onRequest(const vela::ClientRequest& request) override;
    void onResponse(const vela::ClientRequest& request, const vela::ClientResponse* response,
                    std::chrono::nanoseconds duration) override;
    void onSearch(const vela::ClientRequest& request,
                  const std::vector<vela::ProfileCandidate>& candidates) override;
    void onMessage(const vela::ModemMessage& message) override;
    void onIndication(const vela::ModemIndication& indication) override;
    void onService(vela::ServiceState state) override;
    void onPolicyBegin(const vela::PolicyCall& call) override;
    void onPolicyEnd(const vela::PolicyCall& call, const vela::PolicyResult& result) override;

  private:
    template <typename Tell>
    void pass(Tell tell, bool isOfRequest = false);
    void noteReading(const vela::ModemMessage& message);

    std::mutex listening;  // held while the listener is called; guards:
    vela::Observer* listener = nullptr;
    bool isAside = false;
    std::vector<vela::ProfileCandidate> found;

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
