// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "Change.h"
#include "IndicationSender.h"
#include "Modem.h"
#include "RlinkRuntime.h"
#include "WdsService.h"
#include "velasim/FaultPlan.h"
#include "velasim/Journal.h"
#include "velasim/SimulatorOptions.h"
#include "velasim/Snapshot.h"

namespace velasim {

/**
 * Everything behind one Simulator: modems, service, transport, faults, journal. A call of a client
 * keeps it alive, so that it may end after its Simulator has. Any thread.
 */
class SimulatedPlatform {
  public:
    using Handle = RlinkRuntime::Handle;

    explicit SimulatedPlatform(const SimulatorOptions& options);

    // What clients call. Connection faults strike here.
    int createNotifier(Handle handle);
    bool offersService();
    int connect(Handle handle, rlink_ind_cb callback, void* data);
    int watchErrors(Handle handle, rlink_error_cb callback, void* data);
    int release(Handle handle);

    // What the Simulator calls; documented there.
    void serviceUp();
    void serviceDown();
    void restart();
    std::size_t subscribedClients(std::int32_t instance);
    bool waitSubscribed(std::int32_t instance, std::chrono::milliseconds atMost);
    std::vector<StoredProfile> profiles(std::int32_t instance, Technology technology);
    std::optional<int> storeProfile(std::int32_t instance, Technology technology,
                                    const Settings& settings, int index);
    Snapshot snapshot();
    std::string restore(const Snapshot& snapshot);
    std::optional<int> foreignCreate(std::int32_t instance, Technology technology,
                                     const Settings& settings);
    bool foreignModify(std::int32_t instance, Technology technology, int index,
                       const Settings& settings);
    bool foreignDelete(std::int32_t instance, Technology technology, int index);
    bool foreignEvent(const Change& change);
    std::size_t inject(const std::vector<std::uint8_t>& bytes, std::uint32_t messageId,
                       unsigned count);

    /** Ends all callbacks and waiting calls. Not inside a callback. */
    void close();

    /** With `mutex` held: the parts of the operations above. */
    void restartLocked();

    const SimulatorOptions options;
    Journal journal;
    FaultPlan faults;
    RlinkRuntime runtime;

    std::mutex mutex;  // taken before every other lock of the simulator
    std::condition_variable changed;
    // Guarded by `mutex`.
    std::vector<Modem> modems;
    WdsService service;
    IndicationSender indications;
    bool closed = false;

  private:
    Modem* modem(std::int32_t instance);
    std::optional<int> strike(Fault fault);
    void publish(const std::vector<Change>& changes, const std::string& text);

    void serviceUpLocked();
    void serviceDownLocked();
};

}  // namespace velasim
