// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>

#include "support/ClientFixture.h"
#include "support/DeathTests.h"

namespace vela {
namespace {

// Made before the manager, so destroyed after it.
Keys earlyKeys;
std::unique_ptr<velasim::Simulator> earlySimulator;

/** Ends the process with keys, the manager and the simulator alive. */
[[noreturn]] void runAndExit(bool useAdb, bool simulatorGoesFirst, bool inCallback) {
    Manager& manager = Manager::getInstance();
    static Keys lateKeys;
    static std::unique_ptr<velasim::Simulator> lateSimulator;
    auto& simulator = simulatorGoesFirst ? lateSimulator : earlySimulator;
    simulator = std::make_unique<velasim::Simulator>();
    manager.init(0, useAdb);
    simulator->waitSubscribed();
    const AddProfileParams temporary(false, TechType::TECH_3GPP, false);
    for (Keys* keys : {&earlyKeys, &lateKeys}) {
        keys->push_back(manager.addProfile(temporary));
        keys->push_back(manager.addProfile(temporary));
    }
    if (inCallback) {
        lateKeys.front()->registerExpirationListener([] { std::exit(0); });
        manager.deleteProfile(lateKeys.front());
    }
    std::exit(inCallback ? 1 : 0);
}

TEST(ExitDeathTest, EndsNormallyWhateverIsAlive) {
    runDeathTestsAfresh();
    for (const bool useAdb : {false, true}) {
        for (const bool simulatorGoesFirst : {false, true}) {
            for (const bool inCallback : {false, true}) {
                EXPECT_EXIT(runAndExit(useAdb, simulatorGoesFirst, inCallback),
                            testing::ExitedWithCode(0), "");
            }
        }
    }
}

}  // namespace
}  // namespace vela
