// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Simulator.h>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Backend.h"

namespace velactl {

/** The modem simulator, with its memory in a file between runs. */
class SimulatedModem : public Backend {
  public:
    /** Reads the file, if there is one; throws ToolError. */
    SimulatedModem(const ModemOptions& options, LogSink sink);
    ~SimulatedModem() override;

    void connect(vela::Manager& manager) override;
    void settle(vela::Manager& manager) override;
    std::optional<ProfileRecords> modemProfiles() override;
    std::vector<std::string> takeLog() override;
    std::optional<Answers> takeAnswers() override;
    std::string save() override;

    /** Another user of the modem writes one text setting of a 3GPP profile. False: no such profile.
     */
    bool changeBehindLibrary(int index, std::string_view setting, std::string_view value);

    /** A power cycle; returns when the library has connected anew and the modem has told it that
     * its profiles are ready. */
    void restart(vela::Manager& manager);

    /** Whether settle() leaves deliveries waiting. */
    void holdDeliveries(bool hold) { isHeld = hold; }

    /** For everything else that only a simulator can do. */
    velasim::Simulator& simulator() { return *sim; }
    int instance() const { return options.instance; }

  private:
    velasim::Snapshot load();

    const ModemOptions options;
    const LogSink sink;
    bool isNew = false;
    bool isResized = false;
    bool isHeld = false;
    std::uint64_t lastEntry = 0;  // of the journal, whose answer has been taken
    std::string savedMemory;

    std::mutex linesMutex;
    std::vector<std::string> lines;  // guarded by `linesMutex`

    std::unique_ptr<velasim::Simulator> sim;
};

}  // namespace velactl
