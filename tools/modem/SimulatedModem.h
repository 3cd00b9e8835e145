// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Simulator.h>
#include <velasim/SnapshotFile.h>

#include <memory>
#include <optional>
#include <string>

#include "modem/Backend.h"

namespace velactl {

/** The modem simulator, with its memory in a file between runs. */
class SimulatedModem : public Backend {
  public:
    /** Reads the file, if there is one; throws ToolError. */
    SimulatedModem(const ModemOptions& options, LogSink sink);
    ~SimulatedModem() override;

    void connect(vela::Manager& manager, Recorder& recorder, int instance) override;
    /** Makes what waits to be delivered, and what that causes, reach the library's cache. */
    void settle(vela::Manager& manager, Recorder& recorder) override;
    std::optional<ProfileRecords> modemProfiles() override;
    std::string errorName(std::uint32_t error) const override;
    bool keepsMemory() const override { return !options.file.empty(); }
    std::string save() override;

    /** Whether settle() leaves deliveries waiting. */
    void holdDeliveries(bool hold) { isHeld = hold; }

    /** For everything else that only a simulator can do. */
    velasim::Simulator& simulator() { return *sim; }
    int instance() const { return options.instance; }

  private:
    /** A capacity that is given is kept. */
    bool looksOnly() const { return options.looksOnly && !options.capacity; }

    /** Locks the file and reads it. */
    velasim::Snapshot load();

    ModemOptions options;
    const LogSink sink;
    bool isNew = false;
    bool isHeld = false;
    std::string savedMemory;                    // empty: it is to be saved in any case
    std::optional<velasim::SnapshotFile> file;  // empty without one

    std::unique_ptr<velasim::Simulator> sim;
};

}  // namespace velactl
