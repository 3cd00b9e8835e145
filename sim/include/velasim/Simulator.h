// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "velasim/Export.h"
#include "velasim/FaultPlan.h"
#include "velasim/Journal.h"
#include "velasim/Settings.h"
#include "velasim/SimulatorOptions.h"
#include "velasim/Snapshot.h"
#include "velasim/StoredProfile.h"
#include "velasim/Types.h"

namespace velasim {

class SimulatedPlatform;

/**
 * A modem on a laptop: one or more simulated modem instances behind the platform's messaging
 * client.
 *
 * While it exists, a Simulator is the process's platform: wds_get_service_object_internal_v01() and
 * the rlink_client functions answer from it. When several exist, new clients go to the newest, each
 * client stays with the simulator that it was made on, and nothing is shared between them. After
 * the destructor no callback runs; calls of clients that were left behind fail with
 * RLINK_ERROR_CLIENT.
 *
 * All operations: any thread except, where it says so, inside a callback. Callbacks are made on one
 * thread of the simulator, one at a time, without any lock held.
 */
class VELASIM_API Simulator {
  public:
    explicit Simulator(const SimulatorOptions& options = {});

    /** Not inside a callback. */
    ~Simulator();

    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // ---- the service ----

    bool isServiceUp() const;

    /** Starts the service; notifiers are told. Nothing happens when it runs. */
    void serviceUp();

    /** Stops the service: its clients are dead from now on and are told through their error
     * callbacks, what was queued for them is dropped, notifiers are told. The modem keeps its
     * tables. Nothing happens when it does not run. */
    void serviceDown();

    /** A power cycle: the service goes down, volatile profiles are forgotten, the service comes up.
     */
    void restart();

    // ---- callbacks ----

    /** When callbacks are made from now on; Immediate also makes those that are queued. */
    void setDelivery(DeliveryMode mode);

    /** Callbacks that are queued. An indication that a fault holds back counts once it is queued.
     */
    std::size_t pendingDeliveries() const;

    /** Has the oldest queued callback made and waits until it has returned. False when none is
     * queued. Not inside a callback. */
    bool deliverNext();

    /** Repeats deliverNext() until nothing is queued, what the callbacks cause included. Returns
     * how many were made. Not inside a callback. */
    std::size_t deliverAll();

    /** Queues the indications that faults hold back. Returns how many. */
    std::size_t releaseDelayed();

    /** Waits until no callback is queued or running; in Stepped mode makes them, as deliverAll().
     * Not inside a callback. */
    void waitIdle();

    /** Clients that indications of this instance go to: bound, registered, with an event list. */
    std::size_t subscribedClients(std::int32_t instance = 0) const;

    /** Clients and notifiers that were made and not released, dead ones included. */
    std::size_t openHandles() const;

    /** Waits until subscribedClients() is not 0. False: the time ran out first. */
    bool waitSubscribed(std::int32_t instance = 0,
                        std::chrono::milliseconds atMost = std::chrono::seconds(10)) const;

    // ---- the tables ----

    /** A copy of one table, by index; empty for an unknown instance. */
    std::vector<StoredProfile> profiles(std::int32_t instance, Technology technology) const;

    /** One stored profile; empty when there is none. */
    std::optional<StoredProfile> profile(std::int32_t instance, Technology technology,
                                         int index) const;

    /** Provisions silently: stores `settings` under `index`, or under the lowest free index when
     * `index` is 0, replacing what was there. Without a persistence flag the profile is persistent.
     * Returns the index; empty when the instance, the technology or the index does not exist, the
     * table is full, or a text has no terminator. */
    std::optional<int> storeProfile(std::int32_t instance, Technology technology,
                                    const Settings& settings, int index = 0);

    /** The persistent memory of all instances. */
    Snapshot snapshot() const;

    /** Replaces all tables by the snapshot's, silently; instances that it lacks become empty.
     * Returns one line that says why it does not fit, then nothing has changed; empty on success.
     */
    std::string restore(const Snapshot& snapshot);

    // ---- someone else at work ----

    /** Another user of the modem creates, modifies, deletes a profile: subscribed clients get the
     * indications of such a change. Results as in a request: index or empty, true or false. */
    std::optional<int> foreignCreate(std::int32_t instance, Technology technology,
                                     const Settings& settings);
    bool foreignModify(std::int32_t instance, Technology technology, int index,
                       const Settings& settings);
    bool foreignDelete(std::int32_t instance, Technology technology, int index);

    /** The modem reports that the subscription has changed, that its profiles are ready. The tables
     * stay. False for an unknown instance. */
    bool subscriptionChange(std::int32_t instance, Technology technology = Technology::ThreeGpp,
                            int index = 0);
    bool profileReady(std::int32_t instance, Technology technology = Technology::ThreeGpp,
                      int index = 0);

    /** Queues an indication with arbitrary contents `count` times for every connected client,
     * subscribed or not; faults do not touch it. Returns how many were queued. */
    std::size_t injectIndication(const std::vector<std::uint8_t>& bytes,
                                 std::uint32_t messageId = RLINK_WDS_PROFILE_CHANGED_IND_V01,
                                 unsigned count = 1);

    // ---- what happened, what shall go wrong ----

    Journal& journal();
    FaultPlan& faults();

  private:
    const std::shared_ptr<SimulatedPlatform> platform;
};

}  // namespace velasim
