// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <rlink_client.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include "DeliveryQueue.h"
#include "velasim/Journal.h"

namespace velasim {

/**
 * The messaging client's side of a platform: notifiers, clients, what they have registered, and the
 * callbacks to them. Handles are numbers that are looked up, never addresses, so an unknown or
 * released one is harmless. Any thread.
 */
class RlinkRuntime {
  public:
    using Handle = std::uintptr_t;

    /** An indication for one client. The journal entry's `client` and `bytes` are the address and
     * the contents. */
    using Indication = JournalEntry;

    RlinkRuntime(Journal& journal, DeliveryMode mode, bool isServiceUp);

    /** What clients get for a handle. */
    static rlink_client_type toClient(Handle handle);

    RlinkRuntime(const RlinkRuntime&) = delete;
    RlinkRuntime& operator=(const RlinkRuntime&) = delete;

    // As the functions of the contract; the caller supplies a handle that was never used.
    int createNotifier(Handle handle);
    int watchService(Handle handle, rlink_notify_cb callback, rlink_service_object_type service,
                     void* data);
    int connect(Handle handle, rlink_ind_cb callback, void* data);
    int watchErrors(Handle handle, rlink_error_cb callback, void* data);

    /** Returns the number of what was released; 0 when the handle is unknown. */
    std::uint32_t release(Handle handle);

    bool owns(Handle handle) const;

    /** The client's number; 0 when the handle is not a client's. */
    std::uint32_t clientOf(Handle handle) const;

    bool isServiceUp() const;
    bool isConnected(std::uint32_t client) const;
    std::vector<std::uint32_t> connectedClients() const;
    std::size_t openHandles() const;

    void serviceUp();
    void serviceDown();

    /** Queues an indication; without its client nothing happens and the ticket is null. */
    DeliveryQueue::Ticket queue(const Indication& indication, DeliveryQueue::Place place);

    /** Holds an indication back until `further` others have been queued for its client. */
    void hold(const Indication& indication, std::uint32_t further);

    /** Queues what is held back; returns how many. */
    std::size_t releaseHeld();

    DeliveryQueue& deliveries() { return queued; }

    /** Forgets every handle and ends all callbacks. Not inside a callback. */
    void close();

  private:
    struct Held {
        Indication indication;
        std::uint32_t further;
    };
    struct Endpoint {
        Handle handle;
        bool isClient;
        bool isConnected;
        rlink_ind_cb onIndication;
        rlink_notify_cb onNotify;
        rlink_error_cb onError;
        rlink_service_object_type service;
        void* data;       // of onIndication or onNotify
        void* errorData;  // of onError
        std::vector<Held> held;
    };
    using Endpoints = std::map<std::uint32_t, Endpoint>;  // by number

    Endpoints::iterator find(Handle handle);
    Endpoints::const_iterator find(Handle handle) const;
    void note(JournalKind kind, std::uint32_t client, int result = 0);
    std::uint32_t add(Endpoint endpoint);
    void disconnect(std::uint32_t number, Endpoint& endpoint);
    void dropHeld(Endpoint& endpoint);
    DeliveryQueue::Ticket push(const Endpoint& endpoint, const Indication& indication,
                               DeliveryQueue::Place place);
    void pushNotify(std::uint32_t number, const Endpoint& endpoint, rlink_notify_event_type event);
    void pushError(std::uint32_t number, const Endpoint& endpoint);
    void notifyAll(rlink_notify_event_type event);

    Journal& journal;

    mutable std::mutex mutex;  // taken before the queue's
    // Guarded by `mutex`.
    Endpoints endpoints;
    std::uint32_t lastNumber = 0;
    bool up;

    DeliveryQueue queued;
};

}  // namespace velasim
