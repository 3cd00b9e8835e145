// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Outsiders.h"

#include <limits>

namespace {

using velasim::Technology;

constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kRequestsPerChange = 40;
constexpr std::uint64_t kRequestsPerRestart = 2000;
constexpr std::uint64_t kRequestsPerOutage = 30;

}  // namespace

void Schedule::reach(std::uint64_t requests) {
    if (requests >= dueAt.load() && dueAt.exchange(kNever) != kNever) {
        reached = requests;
        due.release();
    }
}

bool Schedule::wait() {
    due.acquire();
    return !isClosed;
}

void Schedule::next(std::uint64_t meanDistance) {
    dueAt = reached + 1 + random.below(2 * meanDistance);
}

void Schedule::close() {
    isClosed = true;
    due.release();
}

Outsiders::Outsiders(velasim::Simulator& simulator, std::uint64_t seed)
    : simulator(simulator),
      seed(seed),
      changesDue(seed + 1, kRequestsPerChange),
      restartsDue(seed + 2, kRequestsPerRestart),
      writer([this] { write(); }),
      restarter([this] { interrupt(); }) {}

Outsiders::~Outsiders() {
    changesDue.close();
    restartsDue.close();
    writer.join();
    restarter.join();
}

void Outsiders::reach(std::uint64_t requests) {
    changesDue.reach(requests);
    restartsDue.reach(requests);
}

void Outsiders::write() {
    velasim::Random random(seed + 3);
    while (changesDue.wait()) {
        const auto lock = pause();
        change(random);
        ++changes;
        changesDue.next(kRequestsPerChange);
    }
}

void Outsiders::change(velasim::Random& random) {
    const auto technology = static_cast<Technology>(random.below(2));
    const auto index = static_cast<int>(1 + random.below(100));
    velasim::Settings settings{};
    velasim::setText(settings, technology == Technology::ThreeGpp ? "apn_name" : "apn_string_3gpp2",
                     "foreign");
    switch (random.below(16)) {
        case 0:
            simulator.profileReady(0);
            break;
        case 1:
        case 2:
        case 3:
            simulator.foreignCreate(0, technology, settings);
            break;
        case 4:
        case 5:
        case 6:
        case 7:
            simulator.foreignModify(0, technology, index, settings);
            break;
        default:
            simulator.foreignDelete(0, technology, index);
    }
}

void Outsiders::interrupt() {
    velasim::Random random(seed + 4);
    while (restartsDue.wait()) {
        const auto lock = pause();
        restartsDue.next(restartOrSwitch(random));
    }
}

/** Returns after how many requests the next is due. */
std::uint64_t Outsiders::restartOrSwitch(velasim::Random& random) {
    if (!simulator.isServiceUp()) {
        simulator.serviceUp();
    } else if (random.chance(0.5)) {
        simulator.restart();
        ++restarts;
    } else {
        simulator.serviceDown();
        ++outages;
        return kRequestsPerOutage;
    }
    return kRequestsPerRestart;
}
