// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <chrono>
#include <cinttypes>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

/** Ends the process when nothing is achieved for some time, and says what was being done. */
class ProgressWatchdog {
  public:
    explicit ProgressWatchdog(std::chrono::seconds atMost)
        : thread([this, atMost] { watch(atMost); }) {}
    ProgressWatchdog(const ProgressWatchdog&) = delete;
    ProgressWatchdog& operator=(const ProgressWatchdog&) = delete;

    ~ProgressWatchdog() {
        {
            const std::lock_guard lock(mutex);
            isDone = true;
        }
        done.notify_one();
        thread.join();
    }

    /** Something has been achieved. Any thread. */
    void progress() { ++steps; }

    /** What begins now: a text that lives as long as the process. */
    void doing(const char* what) {
        activity = what;
        progress();
    }

  private:
    using Clock = std::chrono::steady_clock;

    void watch(std::chrono::seconds atMost) {
        std::unique_lock lock(mutex);
        auto seen = steps.load();
        auto since = Clock::now();
        while (!done.wait_for(lock, std::chrono::seconds(1), [this] { return isDone; })) {
            if (const auto current = steps.load(); current != seen) {
                seen = current;
                since = Clock::now();
            } else if (Clock::now() - since >= atMost) {
                bark(seen);
            }
        }
    }

    void bark(std::uint64_t atStep) const {
        std::fprintf(stderr, "soak: nothing moves after %" PRIu64 " steps; was %s\n", atStep,
                     activity.load());
        std::abort();
    }

    std::atomic<std::uint64_t> steps{0};
    std::atomic<const char*> activity{"starting"};
    std::mutex mutex;
    std::condition_variable done;
    bool isDone = false;  // guarded by mutex
    std::thread thread;
};
