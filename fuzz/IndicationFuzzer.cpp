// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The bytes of indications, from the messaging library's callback through the proxy into the cache,
// on one thread. Input: for each indication, its length, a byte that chooses the message id, and
// its bytes.
#include <dlfcn.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "EventManager.h"
#include "ProfileCache.h"
#include "velasim/Simulator.h"

namespace {

/** What the library has given to the messaging library. */
struct Connection {
    rlink_client_type client = nullptr;
    rlink_ind_cb callback = nullptr;
    void* data = nullptr;
};

Connection connection;

constexpr std::uint32_t kIgnored = 1;  // no message of the library's

struct World {
    World() {
        velasim::Settings settings{};
        velasim::setText(settings, "apn_name", "internet");
        sim.storeProfile(0, velasim::Technology::ThreeGpp, settings);
        sim.storeProfile(0, velasim::Technology::ThreeGpp2, settings);
        sim.deliverNext();
        events.processEvents();
        if (connection.callback == nullptr) {
            std::abort();
        }
    }

    void deliver(std::uint32_t messageId, std::vector<std::uint8_t> bytes) {
        connection.callback(connection.client, messageId, bytes.data(),
                            static_cast<unsigned int>(bytes.size()), connection.data);
    }

    void handle() {
        events.wake();  // also when nothing was signalled
        events.processEvents();
    }

    velasim::Simulator sim{{.delivery = velasim::DeliveryMode::Stepped, .journalLimit = 64}};
    vela::EventManager events;
    vela::ProfileCache cache{events, 0, [](const auto&) { return nullptr; }};
};

}  // namespace

/** The simulator's, but for keeping what a simulator would call on a thread of its own. */
extern "C" int rlink_client_init(rlink_service_info* service, rlink_service_object_type object,
                                 rlink_ind_cb callback, void* data, rlink_client_os_params* params,
                                 rlink_client_type* client) {
    static const auto simulators =
        reinterpret_cast<decltype(&rlink_client_init)>(::dlsym(RTLD_NEXT, "rlink_client_init"));
    const int result = simulators(service, object, callback, data, params, client);
    connection = {*client, callback, data};
    return result;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static World world;
    constexpr std::size_t kBurst = 8;
    std::size_t burst = 0;
    for (; size > 2 && burst < kBurst; ++burst) {
        const std::size_t length = std::min<std::size_t>(data[0], size - 2);
        const std::uint32_t messageId =
            data[1] < 0xF0 ? std::uint32_t{RLINK_WDS_PROFILE_CHANGED_IND_V01} : data[1];
        std::vector<std::uint8_t> bytes(data + 2, data + 2 + length);
        data += 2 + length;
        size -= 2 + length;
        world.deliver(messageId, bytes);
    }
    // One that cannot be decoded leaves those behind it waiting for the next signal.
    for (std::size_t pass = 0; pass < burst; ++pass) {
        world.handle();
        world.deliver(kIgnored, {0});
    }
    world.handle();
    world.cache.refresh();  // every input finds the same
    return 0;
}
