// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/IProfileKey.h>
#include <vela/Util.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "SimulatedModem.h"
#include "Workbench.h"

namespace velactl {

/** Counts the calls of one key's listener; called on the library's worker thread. */
class ExpirationCounter {
  public:
    void count();
    int calls() const;

  private:
    mutable std::mutex mutex;
    int number = 0;
};

/** A key that a scenario holds under a name. */
struct HeldKey {
    std::shared_ptr<vela::IProfileKey> key;
    /** Empty until the key listens. */
    std::shared_ptr<ExpirationCounter> expirations;
    int toldExpirations = 0;
};

/**
 * Where scenarios play: a simulated modem, the library, and the keys held under names. Callbacks
 * are delivered one by one after each statement, unless they are held back, so that the same
 * statements give the same run.
 */
class Stage {
  public:
    /** Where a scenario is told: what it says itself, and what its statements bring about. */
    struct Telling {
        std::ostream& story;
        std::ostream& details;
    };

    Stage(const ModemOptions& options, bool showSecrets, Telling telling, LogSink sink);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    /** Drops the keys while the modem is there. */
    ~Stage();

    vela::Manager& manager() { return bench.manager(); }
    vela::Util& policies() { return util; }
    Workbench& workbench() { return bench; }
    SimulatedModem& modem() { return simulated; }
    velasim::Simulator& simulator() { return simulated.simulator(); }
    std::ostream& out() { return telling.details; }
    std::ostream& story() { return telling.story; }
    bool showSecrets() const { return showsSecrets; }

    /** Holds a key under a name, in place of the one that had it; an empty one leaves the name
     * without. */
    void hold(const std::string& name, std::shared_ptr<vela::IProfileKey> key);

    /** Throws ToolError that lists the names there are. */
    HeldKey& held(const std::string& name);
    void drop(const std::string& name);
    std::vector<std::string> keyNames() const;

    /** What has crossed over since the last call or settle(): what the operation at hand did. */
    Traffic takeTraffic();

    /** Notes how a client operation with this traffic ended, tells it and what failed. */
    void conclude(const Traffic& traffic, bool succeeded, const std::string& words);
    void conclude(bool succeeded, const std::string& words) {
        conclude(takeTraffic(), succeeded, words);
    }
    /** Empty before the first operation. */
    std::optional<bool> wasRefused() const { return refused; }

    /** From the start of a refresh to its completion the library answers nothing. */
    void setRefreshing(bool refreshing) { isInRefresh = refreshing; }
    bool isRefreshing() const { return isInRefresh; }

    /** Lets everything that was announced arrive and tells whose listeners were called. */
    void settle();

    /** All that has crossed between library and modem, for people. */
    std::vector<std::string> journalLines();

    /** The library's log lines since the beginning. */
    const std::vector<std::string>& log() const { return logLines; }

  private:
    void tell(const std::vector<std::string>& failures);

    const Telling telling;
    const bool showsSecrets;
    Workbench bench;
    SimulatedModem& simulated;
    vela::Util util;
    std::map<std::string, HeldKey> keys;
    std::vector<std::string> logLines;
    std::optional<bool> refused;
    bool isInRefresh = false;
};

}  // namespace velactl
