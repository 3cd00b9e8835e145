// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

#include "Checkup.h"
#include "Client.h"
#include "Outsiders.h"
#include "ProgressWatchdog.h"
#include "Resources.h"
#include "Tally.h"
#include "vela/Manager.h"
#include "velasim/Simulator.h"

/**
 * Many client threads, a second writer and a modem that restarts, fails requests and loses, repeats
 * and delays indications, all at once, in rounds. Between two rounds the library has to be in
 * order. A first part of the rounds warms up; what the process holds after it is compared with what
 * it holds later.
 */
class Soak {
  public:
    struct Options {
        std::uint64_t requests = 1'000'000;
        std::uint64_t threads = 8;
        std::uint64_t seed = 1;
    };

    Soak(const Options& options, ProgressWatchdog& watchdog);
    ~Soak();
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;

    /** Prints the figures and what is wrong with them. True: nothing. */
    bool run();

  private:
    /** What is held at a moment of rest. */
    struct Sample {
        Resources resources;
        std::size_t pendingRecords = 0;

        std::int64_t allocated() const { return unexplained(resources.allocatedBytes); }
        std::int64_t resident() const { return unexplained(resources.residentBytes); }
        std::int64_t unexplained(std::uint64_t bytes) const;
    };

    bool part(std::uint64_t requests);
    void round(std::uint64_t requests);
    bool rest(bool isSampled);
    Sample sample();
    void printFigures(double seconds);
    void require(bool holds, const char* complaint);
    void requireEnoughOfAll();
    void requireNoGrowth();

    const Options options;
    ProgressWatchdog& watchdog;
    Tally tally;
    velasim::Simulator simulator;
    vela::Manager manager;
    Checkup checkup;
    Outsiders outsiders;
    std::vector<SharedKey> sharedKeys;
    std::uint64_t rounds = 0;
    std::uint64_t faultsStruck = 0;
    bool isGood = true;
    std::vector<Sample> samples;
};
