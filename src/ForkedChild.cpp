// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ForkedChild.h"

#include <pthread.h>

#include "Observation.h"

namespace vela {

constinit std::atomic<bool> forkedChild{false};

namespace {

constinit std::atomic<int> guards{0};

void enterChild() {
    if (guards.load() > 0) {
        forkedChild = true;
        observed = false;  // whose lock somebody may hold
    }
}

}  // namespace

ForkGuard::ForkGuard() {
    static const int registered = pthread_atfork(nullptr, nullptr, enterChild);
    static_cast<void>(registered);
    ++guards;
}

ForkGuard::~ForkGuard() {
    --guards;
}

}  // namespace vela
