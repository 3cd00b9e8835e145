// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "LogCapture.h"
#include "ProfileCache.h"
#include "ProfileKey.h"
#include "RequestLine.h"
#include "TokenGenerator.h"
#include "WorkerGate.h"
#include "support/DeathTests.h"

namespace vela {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(TokenGeneratorDeathTest, AbortsInsteadOfWrapping) {
    constexpr unsigned long kMax = std::numeric_limits<unsigned long>::max();
    TokenGenerator tokens(kMax - 1);
    EXPECT_EQ(tokens.next(), kMax - 1);
    EXPECT_DEATH(tokens.next(), "");
}

TEST(ProfileKey, PostsItsListenerAndItsRelease) {
    std::vector<std::shared_ptr<CallbackRequest>> posted;
    auto key = std::make_shared<ProfileKey>(
        TechType::TECH_3GPP, 1, 42, [&posted](const std::shared_ptr<ClientRequest>& request) {
            posted.push_back(std::dynamic_pointer_cast<CallbackRequest>(request));
            return nullptr;
        });
    bool called = false;
    key->registerExpirationListener([&called] { called = true; });
    ASSERT_EQ(posted.size(), 1U);
    EXPECT_EQ(posted[0]->getExpirationToken(), 42U);
    EXPECT_EQ(posted[0]->getExpirationKey().lock(), key);
    posted[0]->getExpirationCb()();
    EXPECT_TRUE(called);

    LogCapture capture;
    key.reset();
    ASSERT_EQ(posted.size(), 2U);
    EXPECT_TRUE(posted[1]->hasReleaseToken());
    EXPECT_EQ(posted[1]->getReleaseToken(), 42U);
    EXPECT_TRUE(posted[0]->getExpirationKey().expired());
    EXPECT_THAT(capture.take(), ElementsAre(Pair(LogLevel::Debug, "~ProfileKey")));
}

TEST(ProfileKeyDeathTest, EmptyRequestFunction) {
    EXPECT_DEATH(
        {
            const auto key = std::make_shared<ProfileKey>(TechType::TECH_3GPP, 1, 1, nullptr);
            EXPECT_THROW(key->registerExpirationListener([] {}), std::bad_function_call);
        },
        "");
}

TEST(RequestLine, ClosingWaitsForPostsUnderWayAndRefusesLaterOnes) {
    std::promise<void> entered;
    std::promise<void> mayReturn;
    std::atomic<bool> answered{false};
    RequestLine line([&](const std::shared_ptr<ClientRequest>&) {
        entered.set_value();
        mayReturn.get_future().wait();
        answered = true;
        return std::make_shared<CallbackResponse>(Status::Success);
    });
    auto post = std::async(std::launch::async,
                           [&line] { return line.post(std::make_shared<CallbackRequest>()); });
    entered.get_future().wait();
    auto close = std::async(std::launch::async, [&line, &answered] {
        line.close();
        return answered.load();
    });
    mayReturn.set_value();
    EXPECT_TRUE(close.get());
    EXPECT_NE(post.get(), nullptr);
    EXPECT_EQ(line.post(std::make_shared<CallbackRequest>()), nullptr);
}

TEST(RequestLine, WhatARequestHeldMayCloseIt) {
    RequestLine line(
        [](const auto&) { return std::make_shared<CallbackResponse>(Status::Success); });
    std::shared_ptr<void> closer(nullptr, [&line](const void*) { line.close(); });
    auto request = std::make_shared<CallbackRequest>();
    request->setExpirationInfo([closer = std::move(closer)] {}, {}, 1);
    EXPECT_NE(line.post(std::move(request)), nullptr);
}

TEST(WorkerRoleDeathTest, EndsAProcessThatUsesTheCacheOffTheWorker) {
#ifdef NDEBUG
    GTEST_SKIP() << "checked in builds with assertions only";
#endif
    runDeathTestsAfresh();
    EventManager events;
    ProfileCache cache(events, 0, [](const auto&) { return nullptr; });
    cache.refresh();  // as long as there is no worker
    std::thread([&cache] { cache.assumeWorker(); }).join();
    FilterProfileParams all;
    AddProfileParams added(true, TechType::TECH_3GPP, false);
    ModifyProfileParams modified;
    EXPECT_DEATH(cache.add(added), "called off the worker");
    EXPECT_DEATH(cache.modify(modified, nullptr), "called off the worker");
    EXPECT_DEATH(cache.remove(nullptr), "called off the worker");
    EXPECT_DEATH(cache.get(nullptr), "called off the worker");
    EXPECT_DEATH(cache.filter(all), "called off the worker");
    EXPECT_DEATH(cache.match(all, nullptr), "called off the worker");
    EXPECT_DEATH(cache.refresh(), "called off the worker");
    EXPECT_DEATH(cache.onIndication({}), "called off the worker");
    EXPECT_DEATH(cache.releaseProfile(1), "called off the worker");
    EXPECT_DEATH(cache.registerExpirationListener({}, {}, 1), "called off the worker");
}

// The counter stands for what the worker owns: only the gate orders its plain accesses.
TEST(WorkerGate, HoldersTakeTurnsAndTheWorkerMakesAPassBetweenThem) {
    std::atomic<bool> running{true};
    WorkerGate gate([] {});
    int passes = 0;
    bool held = false;
    std::thread worker;
    {
        const WorkerGate::Hold hold(gate);  // before there is a worker
        worker = std::thread([&] {
            while (running) {
                gate.pass();
                EXPECT_FALSE(held);
                ++passes;
            }
        });
        gate.awaitWorker();
        EXPECT_EQ(passes, 0);
    }
    std::vector<std::thread> holders;
    int passesAtLastHold = 0;
    for (int i = 0; i < 4; ++i) {
        holders.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                const WorkerGate::Hold hold(gate);
                EXPECT_FALSE(std::exchange(held, true));
                EXPECT_GT(passes, passesAtLastHold);
                passesAtLastHold = passes;
                std::this_thread::yield();
                EXPECT_EQ(passes, passesAtLastHold);
                held = false;
            }
        });
    }
    for (std::thread& holder : holders) {
        holder.join();
    }
    running = false;
    worker.join();
}

}  // namespace
}  // namespace vela
