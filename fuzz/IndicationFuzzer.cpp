// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The bytes of indications, from the modem's thread through the proxy into the cache, on one
// thread. Input: for each indication, its length, a byte that chooses the message id, and its
// bytes.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "EventManager.h"
#include "ProfileCache.h"
#include "velasim/Simulator.h"

namespace {

struct World {
    World() {
        velasim::Settings settings{};
        velasim::setText(settings, "apn_name", "internet");
        sim.storeProfile(0, velasim::Technology::ThreeGpp, settings);
        sim.storeProfile(0, velasim::Technology::ThreeGpp2, settings);
        sim.deliverNext();
        events.processEvents();
    }

    static velasim::SimulatorOptions options() {
        velasim::SimulatorOptions result;
        result.delivery = velasim::DeliveryMode::Stepped;
        result.journalLimit = 64;
        return result;
    }

    velasim::Simulator sim{options()};
    vela::EventManager events;
    vela::ProfileCache cache{events, 0, [](const auto&) { return nullptr; }};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static World world;
    std::size_t queued = 0;
    while (size > 2) {
        const std::size_t length = std::min<std::size_t>(data[0], size - 2);
        const std::uint32_t messageId =
            data[1] < 0xF0 ? std::uint32_t{RLINK_WDS_PROFILE_CHANGED_IND_V01} : data[1];
        const std::vector<std::uint8_t> bytes(data + 2, data + 2 + length);
        data += 2 + length;
        size -= 2 + length;
        queued += bytes.empty() ? 0 : world.sim.injectIndication(bytes, messageId);
    }
    if (queued == 0) {
        return 0;
    }
    world.sim.deliverAll();
    world.events.processEvents();
    if (world.cache.dump().size() > 300) {  // Create indications add entries without limit
        world.cache.refresh();
    }
    return 0;
}
