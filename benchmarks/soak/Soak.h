// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <semaphore>
#include <string>
#include <vector>

#include "Resources.h"
#include "vela/Manager.h"
#include "velasim/Random.h"
#include "velasim/Simulator.h"

/**
 * Many client threads, a second writer and a modem that restarts, loses indications and times out,
 * all at once. A first part warms up; what the process holds after it is compared with what it
 * holds at the end.
 */
class Soak {
  public:
    struct Options {
        std::uint64_t requests = 1'000'000;
        std::uint64_t threads = 8;
        std::uint64_t seed = 1;
    };

    explicit Soak(const Options& options);
    ~Soak();
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;

    /** Prints the figures and what is wrong with them. True: nothing. Ends the process when nothing
     * moves for half a minute. */
    bool run();

  private:
    class Client;

    struct Sample {
        Resources resources;
        std::size_t pendingRecords = 0;
    };

    void phase(std::uint64_t requests);
    void secondWriter();
    void restarter();
    void change(velasim::Random& random);
    Sample sample();
    bool report(const Sample& before, const Sample& after, double seconds) const;

    const Options options;
    velasim::Simulator simulator;
    vela::Manager manager;

    std::atomic<std::uint64_t> asked{0};
    std::atomic<std::uint64_t> answered{0};
    std::atomic<std::uint64_t> mixedUp{0};  // answers of another request's kind, or none
    std::atomic<std::uint64_t> expirations{0};
    std::uint64_t foreignChanges = 0;
    std::uint64_t restarts = 0;

    // Clients pace the second writer and the restarts by what they ask.
    std::atomic<bool> isOver{false};
    std::counting_semaphore<> changesDue{0};
    std::counting_semaphore<> restartsDue{0};
};
