// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <latch>
#include <optional>

#include "SimClient.h"
#include "velasim/Simulator.h"

namespace velasim {
namespace {

constexpr auto k3gpp = Technology::ThreeGpp;
constexpr auto k3gpp2 = Technology::ThreeGpp2;

class Notifier {
  public:
    Notifier() {
        rlink_client_os_params params{};
        const auto service = wds_get_service_object_internal_v01(1, 227, 6);
        result = rlink_client_notifier_init(service, &params, &handle);
        rlink_client_register_notify_cb(handle, &onEvent, this);
    }
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;
    ~Notifier() { rlink_client_release(handle); }

    static void onEvent(rlink_client_type /*notifier*/, rlink_service_object_type /*service*/,
                        rlink_notify_event_type event, void* data) {
        static_cast<Notifier*>(data)->events += std::to_string(event);
    }

    rlink_client_type handle = nullptr;
    int result = 0;
    std::string events;  // read when the simulator is idle
};

TEST(RuntimeTest, IndicationsGoToThoseWhoSubscribed) {
    using Subscription = SimClient::Subscription;
    const auto only = SimClient::name(k3gpp, 1);
    const auto allOf3gpp2 = SimClient::name(k3gpp2, WDS_PROFILE_INDEX_ALL_V01);
    const std::string all = "Create 3GPP:1 Modify 3GPP:1 Modify 3GPP:1 Delete 3GPP:1 ";
    const std::string all2 = "Create 3GPP2:1 Modify 3GPP2:1 ";
    const std::tuple<const char*, Subscription, std::string, std::string> cases[] = {
        {"all", {}, all, all2},
        {"not bound", {.bind = false}, "", ""},
        {"not registered", {.wantsChanges = false}, "", ""},
        {"not its own", {.wantsOwnChanges = false}, "", all2},
        {"no list", {.events = {}}, "", ""},
        {"one profile", {.events = {only}}, all, ""},
        {"other technology", {.events = {allOf3gpp2}}, "", all2},
    };
    for (const auto& [name, subscription, own, foreign] : cases) {
        SCOPED_TRACE(name);
        Simulator simulator;
        SimClient client(0, subscription);
        SimClient elsewhere(1);
        client.create(k3gpp, settingsWithApn("a"));
        client.modify(k3gpp, 1, settingsWithApn("b"));
        client.remove(k3gpp, 1);
        simulator.waitIdle();
        EXPECT_EQ(client.take(), own);
        simulator.foreignCreate(0, k3gpp2, settingsWithApn("c"));
        simulator.waitIdle();
        EXPECT_EQ(client.take(), foreign);
        EXPECT_EQ(elsewhere.take(), "");
        EXPECT_EQ(simulator.subscribedClients(0), foreign.empty() && own.empty() ? 0U : 1U);
    }
}

TEST(RuntimeTest, OthersAtWorkAndInjectedBytesAreIndicated) {
    Simulator simulator;
    SimClient client(1);
    EXPECT_FALSE(simulator.foreignModify(1, k3gpp, 1, {}));
    EXPECT_FALSE(simulator.foreignCreate(2, k3gpp, {}));
    simulator.foreignCreate(1, k3gpp, settingsWithApn("a"));
    simulator.foreignModify(1, k3gpp, 1, settingsWithApn("b"));
    simulator.foreignDelete(1, k3gpp, 1);
    simulator.subscriptionChange(1);
    simulator.profileReady(1, k3gpp2, 9);
    simulator.injectIndication({0x77, 0, 0});
    simulator.injectIndication({1, 2}, RLINK_WDS_PROFILE_CHANGED_IND_V01, 2);
    simulator.waitIdle();
    EXPECT_EQ(client.take(),
              "Create 3GPP:1 Modify 3GPP:1 Modify 3GPP:1 Delete 3GPP:1 SubscriptionChange 3GPP:0 "
              "ProfileReady 3GPP2:9 empty bad bad ");
    EXPECT_NE(client.callbackThread, std::this_thread::get_id());
}

TEST(RuntimeTest, ServiceComesAndGoes) {
    Simulator simulator({.serviceUp = false});
    Notifier notifier;
    simulator.waitIdle();
    EXPECT_EQ(notifier.events, "");
    {
        SimClient early;
        EXPECT_EQ(early.found, RLINK_ERROR_SERVICE);
        EXPECT_NE(early.connected, 0);
    }
    simulator.serviceUp();
    SimClient client;
    EXPECT_EQ(client.connected, 0);
    simulator.restart();
    simulator.waitIdle();
    EXPECT_EQ(notifier.events, "010");
    EXPECT_EQ(client.take(), "Error ");
    EXPECT_EQ(client.create(k3gpp, {}).result, RLINK_ERROR_SERVICE);
    EXPECT_EQ(rlink_client_register_error_cb(
                  client.handle, [](auto...) {}, nullptr),
              0);
    Notifier late;
    simulator.waitIdle();
    EXPECT_EQ(late.events, "0");
    EXPECT_EQ(simulator.journal().count(JournalKind::ErrorDelivered), 2U);
    EXPECT_EQ(simulator.subscribedClients(), 0U);
    EXPECT_EQ(simulator.openHandles(), 3U);  // the dead client is one
}

TEST(RuntimeTest, BadHandlesFailAndReleasedOnesStillDecode) {
    std::optional<Simulator> simulator(std::in_place);
    SimClient left;
    std::optional<SimClient> client(std::in_place);
    const auto released = client->handle;
    client.reset();
    Notifier notifier;
    const std::uint8_t change[] = {0x10, 9, 0, 1, 0, 0, 0, 5, 2, 0, 0, 0};
    wds_profile_changed_ind_msg_v01 out{};
    const auto expectDead = [&](rlink_client_type handle) {
        char bytes[8] = {};
        EXPECT_EQ(rlink_client_send_msg_sync(handle, RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01, bytes, 4,
                                             bytes, 8, 1),
                  RLINK_ERROR_CLIENT);
        EXPECT_EQ(rlink_client_register_error_cb(handle, nullptr, nullptr), RLINK_ERROR_CLIENT);
    };
    for (const auto handle : {rlink_client_type{}, released, notifier.handle}) {
        expectDead(handle);
    }
    EXPECT_EQ(rlink_client_release(released), RLINK_ERROR_CLIENT);
    EXPECT_EQ(rlink_client_register_notify_cb(left.handle, nullptr, nullptr), RLINK_ERROR_CLIENT);
    simulator.reset();
    expectDead(left.handle);
    EXPECT_EQ(wds_get_service_object_internal_v01(1, 227, 6), nullptr);

    const auto decode = [&](unsigned size, unsigned outSize = sizeof out) {
        return rlink_client_message_decode(released, RLINK_MESSAGE_INDICATION,
                                           RLINK_WDS_PROFILE_CHANGED_IND_V01, change, size, &out,
                                           outSize);
    };
    ASSERT_EQ(decode(sizeof change), 0);
    EXPECT_EQ(out.profile_changed.profile_type, WDS_PROFILE_TYPE_3GPP2_V01);
    EXPECT_EQ(out.profile_changed.profile_index, 5);
    EXPECT_EQ(out.profile_changed.change_event, WDS_PROFILE_CHANGE_EVENT_DELETE_V01);
    EXPECT_EQ(decode(sizeof change, sizeof out - 1), RLINK_ERROR_DECODE);
    for (unsigned size = 1; size < sizeof change; ++size) {
        EXPECT_EQ(decode(size), RLINK_ERROR_DECODE) << size;
    }
}

TEST(RuntimeTest, ReleaseWaitsForTheCallbackInFlight) {
    Simulator simulator;
    std::latch entered(1);
    std::latch leave(1);
    std::atomic<bool> isOver = false;
    auto client = std::make_unique<SimClient>();
    client->inCallback = [&] {
        entered.count_down();
        leave.wait();
        isOver = true;
    };
    simulator.foreignCreate(0, k3gpp, {});
    entered.wait();
    auto released = std::async(std::launch::async, [&] {
        client.reset();
        return isOver.load();
    });
    // What waits for the client goes at once, before the callback has returned.
    EXPECT_TRUE(simulator.journal().waitFor(
        [](const auto& entries) { return entries.back().kind == JournalKind::IndicationDropped; }));
    leave.count_down();
    EXPECT_TRUE(released.get());
    EXPECT_EQ(simulator.journal().count(JournalKind::IndicationDelivered), 1U);
}

TEST(RuntimeTest, CallbacksMayCallBack) {
    Simulator simulator;
    SimClient client;
    client.inCallback = [&] {
        client.create(k3gpp2, {});
        rlink_client_release(client.handle);
    };
    simulator.foreignCreate(0, k3gpp, {});
    simulator.waitIdle();
    EXPECT_EQ(client.take(), "Create 3GPP:1 ");
    EXPECT_EQ(simulator.profiles(0, k3gpp2).size(), 1U);
}

TEST(RuntimeTest, SimulatorsShareNothing) {
    Simulator first;
    SimClient ofFirst;
    {
        Simulator second;
        SimClient ofSecond;
        ofSecond.create(k3gpp, settingsWithApn("second"));
        ofFirst.create(k3gpp2, settingsWithApn("first"));
        EXPECT_TRUE(first.profiles(0, k3gpp).empty());
        EXPECT_TRUE(second.profiles(0, k3gpp2).empty());
        second.serviceDown();
    }
    first.waitIdle();
    EXPECT_EQ(ofFirst.take(), "Create 3GPP2:1 Modify 3GPP2:1 ");
    EXPECT_EQ(SimClient().connected, 0);
}

// Threads that connect, change and go while the service restarts: for the sanitizers, and no hang.
TEST(RuntimeTest, ManyThreads) {
    Simulator simulator({.capacity = 255, .journalLimit = 100});
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round) {
                Notifier notifier;
                SimClient client;
                const auto index = client.create(k3gpp, {}).index;
                client.remove(k3gpp, index);
            }
        });
    }
    for (int i = 0; i < 50; ++i) {
        simulator.restart();
    }
    for (auto& thread : threads) {
        thread.join();
    }
    simulator.waitIdle();
    EXPECT_EQ(simulator.pendingDeliveries(), 0U);
    EXPECT_LE(simulator.journal().snapshot().size(), 200U);
}

}  // namespace
}  // namespace velasim
