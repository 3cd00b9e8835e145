// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "ProgressWatchdog.h"
#include "vela/Manager.h"
#include "velasim/Simulator.h"

/** Whether the library is alive and in order. Only at a moment of rest: no faults, no restarts, no
 * other thread inside the library. */
class Checkup {
  public:
    Checkup(vela::Manager& library, velasim::Simulator& simulator, ProgressWatchdog& watchdog)
        : library(library), simulator(simulator), watchdog(watchdog) {}

    /** False, with a line that says why: the library is not as it has to be. */
    bool passes();

    /** How often the library had been left unconnected, which only init() changes. */
    std::uint64_t reconnectedByInit() const { return inits; }
    /** How often it had been left without indications, which only a restart changes. */
    std::uint64_t subscribedByRestart() const { return restarts; }

  private:
    /** Technology, number and name. */
    using Profile = std::tuple<bool, int, std::string>;

    bool isConnected();
    void connectAgain();
    bool works();
    bool carriesOut(vela::TechType type);
    bool agrees();
    std::vector<Profile> cached();
    std::vector<Profile> stored() const;
    void settle();

    vela::Manager& library;
    velasim::Simulator& simulator;
    ProgressWatchdog& watchdog;
    std::uint64_t inits = 0;
    std::uint64_t restarts = 0;
};
