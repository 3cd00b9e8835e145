// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <thread>

#include "support/ClientFixture.h"
#include "support/DeathTests.h"
#include "vela/Observer.h"

namespace vela {
namespace {

// Made before the manager, so destroyed after it.
Keys earlyKeys;
std::unique_ptr<velasim::Simulator> earlySimulator;

/** Is told of the very last requests. Looks at what it is told, so that memory checkers do. */
class LateObserver : public Observer {
  public:
    void onRequest(const ClientRequest& request) override { seen += request.dump().size(); }
    void onMessage(const ModemMessage& message) override {
        seen += message.request ? message.request->dump().size() : 0;
    }

  private:
    std::atomic<std::size_t> seen{0};
};

/** Ends the process with keys, the manager and the simulator alive. */
[[noreturn]] void runAndExit(bool useAdb, bool simulatorGoesFirst, bool inCallback) {
    setObserver(useAdb ? std::make_shared<LateObserver>() : nullptr);
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

/** Calls every operation, over and over. */
[[noreturn]] void callForEver(Manager& manager) {
    const AddProfileParams temporary(false, TechType::TECH_3GPP, false);
    ModifyProfileParams update;  // nothing static: that goes before this thread
    update.setUserName("eve");
    while (true) {
        const auto key = manager.addProfile(temporary);
        manager.modifyProfile(update, key);
        manager.getProfile(key);
        manager.filter(FilterProfileParams());
        manager.dump();
    }
}

enum class End { Exit, ChildExits, Destructor };

/** Ends the process, a forked child of it or the manager, while threads are inside. */
[[noreturn]] void endWhileInside(End end) {
    // Never destroyed: the threads go on until the very end.
    static auto* const simulator = new velasim::Simulator;
    auto& manager = end == End::Destructor ? *new Manager : Manager::getInstance();
    manager.init(0, false);
    simulator->waitSubscribed();
    static const auto key = manager.addProfile({true, TechType::TECH_3GPP, false});
    if (end == End::Destructor) {
        std::thread([&] { manager.filter(FilterProfileParams()); }).join();
        delete &manager;
        std::exit(0);
    }
    for (int i = 0; i < 4; ++i) {
        std::thread([&manager] { callForEver(manager); }).detach();
    }
    simulator->journal().waitFor([](const auto& entries) { return entries.size() > 500; });
    if (end == End::ChildExits) {
        const pid_t child = fork();
        if (child == 0) {
            static_cast<void>(manager.dump());
            std::exit(key != nullptr && manager.getProfile(key) == std::nullopt ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        const bool isParentWell = manager.getProfile(key) != std::nullopt;
        std::_Exit(WIFEXITED(status) && WEXITSTATUS(status) == 0 && isParentWell ? 0 : 1);
    }
    std::exit(0);
}

TEST(ExitDeathTest, EndsWhileThreadsAreInside) {
    runDeathTestsAfresh();
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // threads hold something until the very end
    for (const End end : {End::Exit, End::ChildExits, End::Destructor}) {
        for (int round = 0; round < 5; ++round) {
            EXPECT_EXIT(endWhileInside(end), testing::ExitedWithCode(0), "");
        }
    }
}

using Inside = ClientFixture;

TEST_F(Inside, AnotherInitAnswersEveryCallBeforeAndAfter) {
    store("apn_name=internet");
    start();
    std::atomic<bool> goesOn{true};
    std::vector<std::future<std::size_t>> callers;
    for (int i = 0; i < 4; ++i) {
        callers.push_back(std::async(std::launch::async, [&] {
            std::size_t calls = 0;
            for (; goesOn; ++calls) {
                const Keys keys = manager.filter(FilterProfileParams());
                EXPECT_LE(keys.size(), 1U);
                manager.getProfile(keys.empty() ? nullptr : keys.front());
                manager.dump();
            }
            return calls;
        }));
    }
    for (int round = 0; round < 20; ++round) {
        manager.init(0, false);
        modem.waitSubscribed();
        reload();
        EXPECT_EQ(manager.filter(FilterProfileParams()).size(), 1U);
    }
    goesOn = false;
    for (auto& calls : callers) {
        EXPECT_GT(calls.get(), 0U);
    }
}

}  // namespace
}  // namespace vela
