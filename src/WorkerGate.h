// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <chrono>
#include <functional>

#include "Mutex.h"

namespace vela {

/**
 * Holds the worker thread between two dispatch passes while another thread edits or reads what the
 * worker otherwise owns: the event handlers, the cache. Takes the place of locks on those.
 *
 * Holders take turns, and between two of them the worker makes a whole pass, so that they do not
 * keep it from its callers.
 */
class WorkerGate {
  public:
    /** @param wakeWorker makes a worker that sleeps in its loop come round; any thread */
    explicit WorkerGate(std::function<void()> wakeWorker);
    WorkerGate(const WorkerGate&) = delete;
    WorkerGate& operator=(const WorkerGate&) = delete;

    /** Worker thread, before each pass: waits as long as anyone holds the gate. */
    void pass();

    /** Worker thread: it is awake, and what it has found is about to be dispatched. */
    void beginWork() { isAtWork = true; }

    /** The holder: returns when the worker stands at the gate. */
    void awaitWorker();

    /** Returns when the worker is between two passes or asleep, and `hasEvents` finds nothing that
     * would wake it. Wakes nobody. Not for the worker thread. */
    void awaitRest(const std::function<bool()>& hasEvents);

    using Deadline = std::chrono::steady_clock::time_point;

    /**
     * Holds the gate. Made before the worker has come to the gate for the first time, it returns at
     * once; later it returns when the worker stands there, with everything done that was signalled
     * before the latest hold ended. Not for the worker thread.
     */
    class Hold {
      public:
        explicit Hold(WorkerGate& gate) : Hold(gate, Deadline::max()) {}
        /** Gives up at the deadline. */
        Hold(WorkerGate& gate, Deadline deadline);
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold();

        /** False when the worker has not come in time: nothing is held. */
        explicit operator bool() const { return isHeld; }

      private:
        WorkerGate& gate;
        bool isHeld = false;
    };

  private:
    /** False when the deadline came first. */
    bool take(Deadline deadline, bool& mustMeet);
    bool awaitWorker(Deadline deadline);
    void open();

    const std::function<void()> wakeWorker;

    Mutex mutex;
    Condition changed;
    bool isHeld VELA_GUARDED_BY(mutex) = false;
    bool workerSeen VELA_GUARDED_BY(mutex) = false;
    // Until the hold for which it has come is over.
    bool workerStands VELA_GUARDED_BY(mutex) = false;
    // Becomes false under the mutex only, so that who holds it sees a pass begin, but not end.
    std::atomic<bool> isAtWork{true};
};

}  // namespace vela
