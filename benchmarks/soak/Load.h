// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>

#include "vela/Manager.h"
#include "velasim/Simulator.h"

/** What all threads share. */
struct Scene {
    using Count = std::atomic<std::uint64_t>;
    // For listeners, until the library is gone.
    Count asked{0};
    Count addsAsked{0};
    Count added{0};
    Count expirations{0};
    Count wrongAnswers{0};  // that cannot be right, whatever the modem and others did meanwhile
    Count lostAnswers{0};   // of another request's kind, or none
    Count changes{0};
    Count outages{0};

    explicit Scene(const velasim::SimulatorOptions& modem) : simulator(modem) {}

    velasim::Simulator simulator;
    vela::Manager library;
};

/** Something has been achieved. When nothing is for half a minute, the process ends. Any thread. */
void progress();

/** What begins now, to be told in that case: a text that lives as long as the process. */
void begin(const char* activity);

/** One thread of radio software, which calls by chance, holds some keys and doubts each answer. Now
 * and then it is someone else, who changes the modem's profiles or switches the modem off and on.
 */
void runClient(Scene& scene, std::uint64_t number, std::uint64_t seed, std::uint64_t requests);

/** Whether this thread is inside a listener, where the library refuses requests. */
bool isInListener();
