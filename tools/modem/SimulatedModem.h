// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Simulator.h>
#include <velasim/SnapshotFile.h>

#include <optional>
#include <string>

#include "modem/Workbench.h"

namespace velactl {

/** Writes one setting, given in the words of a field that is made of it, as "IPv4v6", as yes or no,
 * or as the modem's own number. False when the modem cannot hold that. Throws ToolError for a word
 * that is none. */
bool setSetting(velasim::Settings& settings, const std::string& name, const std::string& text);

/** The modem simulator, with its memory in a file between runs. */
class SimulatedModem : public Backend {
  public:
    /** Reads the file, if there is one; throws ToolError. */
    explicit SimulatedModem(const ModemOptions& options);
    ~SimulatedModem() override;

    void connect(vela::Manager& manager, Recorder& recorder, int instance) override;
    /** Makes what waits to be delivered, and what that causes, reach the library's cache. */
    void settle(vela::Manager& manager, Recorder& recorder) override;
    std::optional<ProfileRecords> modemProfiles() override;
    std::string errorName(std::uint32_t error) const override;
    bool keepsMemory() const override { return !options.file.empty(); }
    void save() override;

    /** Whether settle() leaves deliveries waiting. */
    void holdDeliveries(bool hold) { isHeld = hold; }

    /** For everything else that only a simulator can do. */
    velasim::Simulator& simulator() { return *sim; }
    int instance() const { return options.instance; }

  private:
    /** Locks the file and reads it. */
    velasim::Snapshot load();

    ModemOptions options;
    bool isNew = false;
    bool isHeld = false;
    std::string savedMemory;                    // empty: it is to be saved in any case
    std::optional<velasim::SnapshotFile> file;  // empty without one
    std::optional<velasim::Simulator> sim;
};

}  // namespace velactl
