// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <semaphore>
#include <thread>

#include "velasim/Random.h"
#include "velasim/Simulator.h"

/** When something is due next, in requests of the clients; distances are drawn from a seed. */
class Schedule {
  public:
    Schedule(std::uint64_t seed, std::uint64_t meanDistance) : random(seed) { next(meanDistance); }

    /** So many requests have been made. Any thread. */
    void reach(std::uint64_t requests);

    /** Waits until it is due, or close(); false: closed. */
    bool wait();

    /** Due again after about that many further requests. */
    void next(std::uint64_t meanDistance);

    void close();

  private:
    velasim::Random random;
    std::atomic<std::uint64_t> dueAt{0};
    std::atomic<std::uint64_t> reached{0};
    std::atomic<bool> isClosed{false};
    std::counting_semaphore<> due{0};
};

/** Someone else who changes the modem's profiles, and someone who switches the modem off and on,
 * each on a thread of its own. */
class Outsiders {
  public:
    Outsiders(velasim::Simulator& simulator, std::uint64_t seed);
    Outsiders(const Outsiders&) = delete;
    Outsiders& operator=(const Outsiders&) = delete;
    ~Outsiders();

    /** The clients, who pace them, have made so many requests. Any thread. */
    void reach(std::uint64_t requests);

    /** While the lock lives, they do nothing. */
    std::unique_lock<std::mutex> pause() { return std::unique_lock(atWork); }

    // While they pause:
    std::uint64_t changesMade() const { return changes; }
    std::uint64_t restartsMade() const { return restarts; }
    std::uint64_t outagesMade() const { return outages; }

  private:
    void write();
    void change(velasim::Random& random);
    void interrupt();
    std::uint64_t restartOrSwitch(velasim::Random& random);

    velasim::Simulator& simulator;
    const std::uint64_t seed;

    std::mutex atWork;
    // Guarded by `atWork`.
    std::uint64_t changes = 0;
    std::uint64_t restarts = 0;
    std::uint64_t outages = 0;

    Schedule changesDue;
    Schedule restartsDue;
    std::thread writer;  // after what they use
    std::thread restarter;
};
