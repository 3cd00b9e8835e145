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
#include <vector>

#include "LogCapture.h"
#include "ProfileKey.h"
#include "RequestLine.h"
#include "TokenGenerator.h"
#include "WorkerGate.h"

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

// The counter stands for what the worker owns: only the gate orders its plain accesses.
TEST(WorkerGate, WorkerAndHoldersExcludeEachOther) {
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
    std::mutex holdersMutex;
    for (int i = 0; i < 4; ++i) {
        holders.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                const std::lock_guard lock(holdersMutex);
                const WorkerGate::Hold hold(gate);
                held = true;
                const int before = passes;
                std::this_thread::yield();
                EXPECT_EQ(passes, before);
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
