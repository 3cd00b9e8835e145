// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

/** Ends the process, with a line that says why, unless it is destroyed in time. */
class Watchdog {
  public:
    Watchdog(std::chrono::seconds atMost, const std::string& message)
        : thread([this, atMost, message] { watch(atMost, message); }) {}
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    ~Watchdog() {
        {
            const std::lock_guard lock(mutex);
            isDone = true;
        }
        done.notify_one();
        thread.join();
    }

  private:
    void watch(std::chrono::seconds atMost, const std::string& message) {
        std::unique_lock lock(mutex);
        if (!done.wait_for(lock, atMost, [this] { return isDone; })) {
            std::fprintf(stderr, "watchdog: %s\n", message.c_str());
            std::abort();
        }
    }

    std::mutex mutex;
    std::condition_variable done;
    bool isDone = false;  // guarded by mutex
    std::thread thread;
};
