// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <optional>

#include "SimClient.h"
#include "velasim/Simulator.h"

namespace velasim {
namespace {

constexpr auto k3gpp = Technology::ThreeGpp;
constexpr auto kCreate = RLINK_WDS_CREATE_PROFILE_REQ_V01;

// One create of a persistent profile under each fault: what the caller sees, whether the profile is
// there, and what callbacks see until the response and in all.
TEST(FaultsTest, EachFaultDoesWhatItSays) {
    using Answer = SimClient::Answer;
    const Answer done{0, ModemError::None, 1};
    const auto failed = [](int result) {  // which leaves no answer
        return Answer{result, static_cast<ModemError>(0xA5A5A5A5), 0xA5};
    };
    const std::string both = "Create 3GPP:1 Modify 3GPP:1 ";
    const std::tuple<Fault, std::uint32_t, Answer, bool, std::string, std::string> cases[] = {
        {Fault::SendFailure, 0, failed(RLINK_ERROR_INTERNAL), false, "", ""},
        {Fault::Timeout, 0, failed(RLINK_ERROR_TIMEOUT), false, "", ""},
        {Fault::TimeoutAfterEffect, 0, failed(RLINK_ERROR_TIMEOUT), true, "", both},
        {Fault::Refuse, 77, Answer{0, static_cast<ModemError>(77)}, false, "", ""},
        {Fault::TableFull, 0, Answer{0, ModemError::TableFull}, false, "", ""},
        {Fault::RestartBeforeEffect, 0, failed(RLINK_ERROR_SERVICE), false, "", "Error "},
        {Fault::RestartAfterEffect, 0, failed(RLINK_ERROR_SERVICE), true, "", "Error "},
        {Fault::RestartAfterResponse, 0, done, true, "", "Error "},
        {Fault::LoseIndication, 0, done, true, "", "Modify 3GPP:1 "},
        {Fault::DelayIndication, 0, done, true, "", "Modify 3GPP:1 Create 3GPP:1 "},
        {Fault::DelayIndication, 2, done, true, "", "Modify 3GPP:1 "},
        {Fault::DuplicateIndication, 2, done, true, "", "Create 3GPP:1 Create 3GPP:1 " + both},
        {Fault::IndicationBeforeResponse, 0, done, true, "Create 3GPP:1 ", both},
        {Fault::TruncateIndication, 0, done, true, "", "bad Modify 3GPP:1 "},
        {Fault::TruncateIndication, 3, done, true, "", "bad Modify 3GPP:1 "},
    };
    for (const auto& [fault, value, answer, isStored, early, all] : cases) {
        SCOPED_TRACE(toString(fault) + ' ' + std::to_string(value));
        Simulator simulator({.delivery = DeliveryMode::Stepped});
        SimClient client;
        simulator.faults().add({.fault = fault, .messageId = kCreate, .value = value});
        EXPECT_EQ(client.create(k3gpp, settingsWithApn("a")), answer);
        EXPECT_EQ(simulator.profiles(0, k3gpp).size(), isStored ? 1U : 0U);
        auto seen = client.take();
        EXPECT_EQ(seen, early);
        simulator.deliverAll();
        EXPECT_EQ(seen + client.take(), all);
        EXPECT_EQ(simulator.journal().count(JournalKind::FaultInjected), 1U);
        EXPECT_EQ(simulator.faults().strikes(0), 1U);
        EXPECT_EQ(simulator.isServiceUp(), true);
    }
}

TEST(FaultsTest, OrderAmongWaitingIndicationsAndWhatIsHeldBack) {
    Simulator simulator({.delivery = DeliveryMode::Stepped});
    SimClient client;
    client.create(k3gpp, {});
    simulator.faults().add({.fault = Fault::ReorderIndication, .messageId = kForeignChange});
    simulator.foreignDelete(0, k3gpp, 1);
    simulator.faults().add(
        {.fault = Fault::DelayIndication, .value = 9, .event = ChangeEvent::ProfileReady});
    simulator.profileReady(0);
    EXPECT_EQ(simulator.pendingDeliveries(), 3U);
    EXPECT_TRUE(simulator.deliverNext());
    EXPECT_EQ(client.take(), "Delete 3GPP:1 ");
    EXPECT_EQ(simulator.deliverAll(), 2U);
    EXPECT_FALSE(simulator.deliverNext());
    EXPECT_EQ(client.take(), "Create 3GPP:1 Modify 3GPP:1 ");
    EXPECT_EQ(simulator.releaseDelayed(), 1U);
    simulator.waitIdle();
    EXPECT_EQ(client.take(), "ProfileReady 3GPP:0 ");
}

// Otherwise the journal of a run would depend on how fast the delivering thread is.
TEST(FaultsTest, EarlyIndicationsAreAllQueuedBeforeOneIsDelivered) {
    Simulator simulator({.delivery = DeliveryMode::Stepped});
    SimClient client;
    simulator.faults().add({.fault = Fault::IndicationBeforeResponse, .count = 0});
    simulator.faults().add({.fault = Fault::DuplicateIndication, .count = 0, .value = 999});
    client.create(k3gpp, {});
    std::string order;
    for (const auto& entry : simulator.journal().snapshot()) {
        order += entry.kind == JournalKind::IndicationQueued      ? "q"
                 : entry.kind == JournalKind::IndicationDelivered ? "d"
                                                                  : "";
    }
    EXPECT_EQ(order, std::string(2000, 'q') + std::string(2000, 'd'));
}

TEST(FaultsTest, RulesCountOccurrences) {
    constexpr auto kDelete = RLINK_WDS_DELETE_PROFILE_REQ_V01;
    const auto fault = Fault::SendFailure;
    // With each rule: which of nine deletes fail.
    const std::pair<FaultRule, std::string> cases[] = {
        {{.fault = fault}, "1"},
        {{.fault = fault, .messageId = kDelete, .first = 4}, "4"},
        {{.fault = fault, .messageId = kCreate}, ""},
        {{.fault = fault, .first = 2, .every = 3, .count = 0}, "258"},
        {{.fault = fault, .first = 2, .every = 0, .count = 3}, "234"},
        {{.fault = fault, .count = 0, .probability = 0.0}, ""},
        {{.fault = fault, .instance = 1}, ""},
        {{.fault = Fault::TableFull, .count = 0}, ""},
    };
    for (const auto& [rule, expected] : cases) {
        Simulator simulator;
        SimClient client;
        simulator.faults().add(rule);
        std::string struck;
        for (int i = 1; i < 10; ++i) {
            struck += client.remove(k3gpp, 1).result == 0 ? "" : std::to_string(i);
        }
        EXPECT_EQ(struck, expected);
    }
}

TEST(FaultsTest, SpoiltResponsesKeepTheirSize) {
    Simulator simulator;
    SimClient client;
    Settings settings = settingsWithApn("a");
    setText(settings, "profile_name", "n");
    setNumber(settings, "pdp_type", 3);
    simulator.storeProfile(0, k3gpp, settings);
    simulator.faults().add({.fault = Fault::UnterminatedText, .count = 2});
    simulator.faults().add({.fault = Fault::GarbageEnumerators});
    simulator.faults().add({.fault = Fault::ListOverrun, .value = 256});
    wds_get_profile_settings_resp_msg_v01 read{};
    ASSERT_EQ(client.read(k3gpp, 1, read), 0);
    EXPECT_EQ(textOf(read.settings, "apn_name"), "a" + std::string(WDS_APN_NAME_MAX_V01, 'x'));
    EXPECT_EQ(read.settings.user_name_valid, 0);
    EXPECT_GT(*numberOf(read.settings, "pdp_type"), 255U);
    wds_get_profile_list_resp_msg_v01 list{};
    ASSERT_EQ(client.list(k3gpp, list), 0);
    EXPECT_EQ(list.profile_list_len, 256U);
    EXPECT_EQ(std::memchr(list.profile_list[0].profile_name, 0, WDS_PROFILE_NAME_MAX_V01 + 1),
              nullptr);
    ASSERT_EQ(client.read(k3gpp, 1, read), 0);
    EXPECT_TRUE(sameSettings(read.settings, settings, k3gpp));
}

TEST(FaultsTest, ConnectingFails) {
    constexpr auto kCode = static_cast<std::uint32_t>(-42);
    Simulator simulator({.faults = {{.fault = Fault::NoServiceInstance},
                                    {.fault = Fault::ClientInitFailure, .value = kCode},
                                    {.fault = Fault::ErrorCallbackFailure},
                                    {.fault = Fault::NotifierInitFailure}}});
    EXPECT_EQ(SimClient().found, RLINK_ERROR_SERVICE);
    EXPECT_EQ(SimClient().connected, -42);
    EXPECT_EQ(SimClient().watched, RLINK_ERROR_INTERNAL);
    EXPECT_EQ(SimClient().watched, 0);
    rlink_client_type notifier = nullptr;
    EXPECT_EQ(rlink_client_notifier_init(wds_get_service_object_internal_v01(1, 227, 6), nullptr,
                                         &notifier),
              RLINK_ERROR_INTERNAL);
    EXPECT_EQ(rlink_client_release(notifier), RLINK_ERROR_CLIENT);
    const Simulator without({.hasService = false});
    EXPECT_EQ(wds_get_service_object_internal_v01(1, 227, 6), nullptr);
}

TEST(FaultsTest, TimeOutsTakeTheirTimeOnlyWhenAsked) {
    for (const bool isReal : {false, true}) {
        Simulator simulator({.realTimeouts = isReal});
        SimClient client;
        simulator.faults().add({.fault = Fault::Timeout});
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(client.remove(k3gpp, 1).result, RLINK_ERROR_TIMEOUT);
        const auto taken = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(taken >= std::chrono::seconds(1), isReal);
    }
}

// A busy run with every fault at once, with some probability.
std::vector<JournalEntry> journalOf(std::uint64_t seed) {
    SimulatorOptions options{.delivery = DeliveryMode::Stepped, .seed = seed};
    for (const auto fault : allFaults()) {
        options.faults.push_back({.fault = fault, .count = 0, .probability = 0.1});
    }
    Simulator simulator(options);
    Random random(5);
    std::optional<SimClient> client;
    wds_get_profile_settings_resp_msg_v01 read{};
    const auto someIndex = [&random] { return static_cast<int>(1 + random.below(4)); };
    for (int step = 0; step < 60; ++step) {
        if (step % 4 == 0) {
            client.emplace();
        }
        client->create(k3gpp, settingsWithApn("a", random.chance(0.5)));
        client->modify(k3gpp, someIndex(), settingsWithApn("b"));
        client->remove(k3gpp, someIndex());
        client->read(k3gpp, someIndex(), read);
        simulator.foreignCreate(0, k3gpp, settingsWithApn("f"));
        simulator.deliverNext();
    }
    simulator.releaseDelayed();
    simulator.deliverAll();
    auto journal = simulator.journal().snapshot();
    for (JournalEntry& entry : journal) {
        if (entry.kind == JournalKind::Request) {
            entry.bytes.clear();  // between the members they are arbitrary
        }
    }
    return journal;
}

TEST(FaultsTest, TheSameSeedIsTheSameRun) {
    for (const std::uint64_t seed : {1U, 2U, 3U}) {
        const auto journal = journalOf(seed);
        EXPECT_GT(journal.size(), 500U);
        EXPECT_EQ(journal, journalOf(seed)) << seed;
        EXPECT_NE(journal, journalOf(seed + 1)) << seed;
    }
}

TEST(FaultsTest, JournalReadsAsTextAndKeepsSecrets) {
    Simulator simulator({.delivery = DeliveryMode::Stepped});
    SimClient client;
    simulator.journal().clear();
    Settings settings = settingsWithApn("in\xffternet");
    setText(settings, "password", "hush");
    client.create(k3gpp, settings);
    simulator.foreignDelete(1, k3gpp, 1);
    EXPECT_EQ(simulator.journal().text(),
              "8 request client=1 modem=0 \"create profile\" 3GPP persistence_flag=1 "
              "apn_name=\"in\\xffternet\" password=***\n"
              "9 response client=1 modem=0 \"create profile\" 3GPP index=1\n"
              "10 indication queued client=1 modem=0 \"profile changed\" Create 3GPP index=1\n"
              "11 indication queued client=1 modem=0 \"profile changed\" Modify 3GPP index=1\n");
}

TEST(FaultsTest, EveryFaultHasItsName) {
    for (const auto fault : allFaults()) {
        EXPECT_EQ(faultNamed(toString(fault)), fault);
    }
    EXPECT_FALSE(faultNamed("none"));
}

}  // namespace
}  // namespace velasim
