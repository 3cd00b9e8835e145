// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "WorkerGate.h"

#include <utility>

namespace vela {

WorkerGate::WorkerGate(std::function<void()> wakeWorker) : wakeWorker(std::move(wakeWorker)) {}

void WorkerGate::pass() {
    std::unique_lock lock(mutex);
    workerSeen = true;
    workerWaits = true;
    workerArrived.notify_all();
    gateOpened.wait(lock, [this] { return holders == 0; });
    workerWaits = false;
}

void WorkerGate::awaitWorker() {
    std::unique_lock lock(mutex);
    workerArrived.wait(lock, [this] { return workerWaits; });
}

WorkerGate::Hold::Hold(WorkerGate& gate) : gate(gate) {
    bool mustWait = false;
    {
        const std::lock_guard lock(gate.mutex);
        ++gate.holders;
        mustWait = gate.workerSeen && !gate.workerWaits;
    }
    if (mustWait) {
        gate.wakeWorker();
        gate.awaitWorker();
    }
}

WorkerGate::Hold::~Hold() {
    const std::lock_guard lock(gate.mutex);
    --gate.holders;
    gate.gateOpened.notify_all();
}

}  // namespace vela
