// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "WorkerGate.h"

#include <utility>

namespace vela {

WorkerGate::WorkerGate(std::function<void()> wakeWorker) : wakeWorker(std::move(wakeWorker)) {}

void WorkerGate::pass() {
    MutexLock lock(mutex);
    workerSeen = true;
    workerStands = true;
    isAtWork = false;
    changed.notifyAll();
    while (isHeld && workerStands) {
        changed.wait(lock);
    }
    workerStands = false;
}

void WorkerGate::awaitWorker() {
    awaitWorker(Deadline::max());
}

bool WorkerGate::awaitWorker(Deadline deadline) {
    MutexLock lock(mutex);
    while (!workerStands) {
        if (!changed.waitUntil(lock, deadline) && !workerStands) {
            return false;
        }
    }
    return true;
}

void WorkerGate::awaitRest(const std::function<bool()>& hasEvents) {
    MutexLock lock(mutex);
    while (isAtWork || hasEvents() || isAtWork) {  // again: it may have taken them meanwhile
        changed.wait(lock);
    }
}

bool WorkerGate::take(Deadline deadline, bool& mustMeet) {
    MutexLock lock(mutex);
    while (isHeld) {
        if (!changed.waitUntil(lock, deadline) && isHeld) {
            return false;
        }
    }
    isHeld = true;
    mustMeet = workerSeen;
    return true;
}

void WorkerGate::open() {
    const MutexLock lock(mutex);
    isHeld = false;
    workerStands = false;
    changed.notifyAll();
}

WorkerGate::Hold::Hold(WorkerGate& gate, Deadline deadline) : gate(gate) {
    bool mustMeet = false;
    if (!gate.take(deadline, mustMeet)) {
        return;
    }
    isHeld = true;
    if (mustMeet) {
        gate.wakeWorker();
        isHeld = gate.awaitWorker(deadline);
    }
    if (!isHeld) {
        gate.open();
    }
}

WorkerGate::Hold::~Hold() {
    if (isHeld) {
        gate.open();
    }
}

}  // namespace vela
