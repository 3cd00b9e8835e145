// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "velasim/Fault.h"

namespace velasim {

/** When the simulator makes callbacks. Always on its own thread. */
enum class DeliveryMode {
    Immediate,  // as soon as it can
    Stepped     // one by one, when Simulator::deliverNext() or deliverAll() asks
};

/** How a simulator starts. */
struct SimulatorOptions {
    /** Modem instances, numbered from 0. */
    unsigned instances = 2;
    /** Profiles per instance and technology, 1 to 255. */
    unsigned capacity = 16;
    /** Whether the service runs from the start; otherwise after serviceUp(). */
    bool serviceUp = true;
    /** Whether the platform has the service at all. Without, the service object is null. */
    bool hasService = true;
    /** Whether a request that times out takes its time, instead of failing at once. */
    bool realTimeouts = false;
    DeliveryMode delivery = DeliveryMode::Immediate;
    /** Seed of the fault plan. */
    std::uint64_t seed = 1;
    /** The fault plan's first rules. */
    std::vector<FaultRule> faults{};
    /** At least how many journal entries are kept. */
    std::size_t journalLimit = 16384;
};

}  // namespace velasim
