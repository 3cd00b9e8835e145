// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>

namespace vela {

/**
 * Holds the worker thread between two dispatch passes while another thread edits or reads what the
 * worker otherwise owns: the event handlers, the cache. Takes the place of locks on those.
 */
class WorkerGate {
  public:
    /** @param wakeWorker makes a worker that sleeps in its loop come round; any thread */
    explicit WorkerGate(std::function<void()> wakeWorker);
    WorkerGate(const WorkerGate&) = delete;
    WorkerGate& operator=(const WorkerGate&) = delete;

    /** Worker thread, before each pass: waits as long as anyone holds the gate. */
    void pass();

    /** Any other thread: returns when the worker stands at the held gate for the first time. */
    void awaitWorker();

    /**
     * Holds the gate. Made before the worker has come to the gate for the first time, it returns at
     * once; later it returns when the worker stands there. Not for the worker thread.
     */
    class Hold {
      public:
        explicit Hold(WorkerGate& gate);
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold();

      private:
        WorkerGate& gate;
    };

  private:
    const std::function<void()> wakeWorker;

    std::mutex mutex;  // guards all that follows
    std::condition_variable workerArrived;
    std::condition_variable gateOpened;
    int holders = 0;
    bool workerSeen = false;
    bool workerWaits = false;
};

}  // namespace vela
