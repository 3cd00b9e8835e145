// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "RandomSettings.h"
#include "SimClient.h"
#include "velasim/Simulator.h"

namespace velasim {
namespace {

constexpr auto k3gpp = Technology::ThreeGpp;
constexpr auto k3gpp2 = Technology::ThreeGpp2;

using Answer = SimClient::Answer;

TEST(ModemTest, LowestFreeIndexUntilTheTableIsFull) {
    Simulator simulator({.capacity = 3});
    SimClient client;
    SimClient other(1);
    const auto settings = settingsWithApn("a");
    for (int index = 1; index <= 3; ++index) {
        EXPECT_EQ(client.create(k3gpp, settings), (Answer{0, ModemError::None, index}));
    }
    EXPECT_EQ(client.create(k3gpp, settings), (Answer{0, ModemError::TableFull, 0}));
    EXPECT_EQ(client.create(k3gpp2, settings), (Answer{0, ModemError::None, 1}));
    EXPECT_EQ(other.create(k3gpp, settings), (Answer{0, ModemError::None, 1}));
    EXPECT_EQ(client.remove(k3gpp, 2), (Answer{0, ModemError::None}));
    EXPECT_EQ(client.create(k3gpp, settings), (Answer{0, ModemError::None, 2}));
    EXPECT_EQ(simulator.profiles(0, k3gpp).size(), 3U);
}

TEST(ModemTest, RefusalsHaveTheirErrorAndNoEffect) {
    Simulator simulator;
    SimClient client;
    const auto good = settingsWithApn("Keep.Me");
    ASSERT_EQ(simulator.storeProfile(0, k3gpp, good), 1);
    auto unterminated = good;
    std::memset(unterminated.apn_name, 'x', sizeof unterminated.apn_name);
    wds_configure_profile_event_list_req_msg_v01 overlong{};
    overlong.event_list_valid = 1;
    overlong.event_list_len = WDS_PROFILE_LIST_MAX_V01 + 1;
    wds_get_profile_settings_resp_msg_v01 read{};
    wds_get_profile_list_resp_msg_v01 list{};
    constexpr auto kOdd = static_cast<Technology>(2);
    EXPECT_EQ(client.create(kOdd, good).error, ModemError::UnknownProfileType);
    EXPECT_EQ(client.modify(kOdd, 1, good).error, ModemError::UnknownProfileType);
    EXPECT_EQ(client.remove(k3gpp, 2).error, ModemError::UnknownProfile);
    EXPECT_EQ(client.remove(k3gpp, 0).error, ModemError::UnknownProfile);
    EXPECT_EQ(client.modify(k3gpp2, 1, good).error, ModemError::UnknownProfile);
    EXPECT_EQ(client.create(k3gpp, unterminated).error, ModemError::Malformed);
    EXPECT_EQ(client.modify(k3gpp, 1, unterminated).error, ModemError::Malformed);
    EXPECT_EQ(client.bind(2).error, ModemError::UnknownInstance);
    EXPECT_EQ(client.bind(-1).error, ModemError::UnknownInstance);
    EXPECT_EQ(client.ask<wds_configure_profile_event_list_resp_msg_v01>(
                  RLINK_WDS_CONFIGURE_PROFILE_EVENT_LIST_REQ_V01, overlong),
              (Answer{0, ModemError::Malformed}));
    EXPECT_EQ(client.read(k3gpp, 255, read), 0);
    EXPECT_EQ(read.resp.result, 1U);
    EXPECT_EQ(client.list(kOdd, list), 0);
    EXPECT_EQ(list.resp.result, 1U);
    // Requests that no modem could have understood never arrive.
    EXPECT_EQ(client.call(RLINK_WDS_DELETE_PROFILE_REQ_V01, std::uint32_t{0}, read),
              RLINK_ERROR_INTERNAL);
    EXPECT_EQ(client.call(0x99, wds_delete_profile_req_msg_v01{}, read), RLINK_ERROR_INTERNAL);

    simulator.waitIdle();
    EXPECT_EQ(client.take(), "");
    ASSERT_EQ(simulator.profiles(0, k3gpp).size(), 1U);
    EXPECT_EQ(textOf(simulator.profile(0, k3gpp, 1)->settings, "apn_name"), "Keep.Me");
}

// What is written is read back, byte for byte; a modify replaces what it carries and no more;
// settings of the other technology are nowhere.
TEST(ModemTest, ReadBackIsWhatWasWritten) {
    Simulator simulator;
    SimClient client;
    Random random(7);
    for (int round = 0; round < 200; ++round) {
        const auto technology = random.chance(0.5) ? k3gpp : k3gpp2;
        const auto otherOne = technology == k3gpp ? k3gpp2 : k3gpp;
        auto expected = randomSettings(random, technology);
        auto sent = expected;
        setText(sent, technology == k3gpp ? "user_id" : "user_name", "stray");
        const auto index = client.create(technology, sent).index;
        ASSERT_GT(index, 0);
        const auto change = randomSettings(random, technology);
        ASSERT_EQ(client.modify(technology, index, change).error, ModemError::None);
        for (const auto& field : fieldNames(technology)) {
            if (const auto text = textOf(change, field)) {
                setText(expected, field, *text);
            } else if (const auto number = numberOf(change, field)) {
                setNumber(expected, field, *number);
            }
        }
        if (!numberOf(expected, "persistence_flag")) {
            setNumber(expected, "persistence_flag", 1);
        }
        wds_get_profile_settings_resp_msg_v01 response{};
        ASSERT_EQ(client.read(technology, index, response), 0);
        EXPECT_TRUE(sameSettings(response.settings, expected, technology))
            << describe(response.settings, technology) << '\n'
            << describe(expected, technology);
        EXPECT_FALSE(textOf(response.settings, technology == k3gpp ? "user_id" : "user_name"));
        EXPECT_TRUE(simulator.profiles(0, otherOne).empty());
        client.remove(technology, index);
    }
}

TEST(ModemTest, ListNamesTheProfilesOfItsType) {
    Simulator simulator({.capacity = 255});
    SimClient client;
    Settings settings{};
    setText(settings, "profile_name", std::string(50, 'n'));
    ASSERT_TRUE(simulator.storeProfile(0, k3gpp, settings, 255));
    ASSERT_TRUE(simulator.storeProfile(0, k3gpp2, {}, 7));
    ASSERT_FALSE(simulator.storeProfile(0, k3gpp2, {}, 256));
    wds_get_profile_list_resp_msg_v01 list{};
    ASSERT_EQ(client.list(k3gpp, list), 0);
    ASSERT_EQ(list.profile_list_len, 1U);
    EXPECT_EQ(list.profile_list[0].profile_index, 255);
    EXPECT_EQ(list.profile_list[0].profile_name, std::string(50, 'n'));
    ASSERT_EQ(
        client.call(RLINK_WDS_GET_PROFILE_LIST_REQ_V01, wds_get_profile_list_req_msg_v01{}, list),
        0);
    ASSERT_EQ(list.profile_list_len, 2U);
    EXPECT_EQ(list.profile_list[1].profile_type, WDS_PROFILE_TYPE_3GPP2_V01);
    EXPECT_EQ(list.profile_list[1].profile_index, 7);
}

TEST(ModemTest, APowerCycleForgetsVolatileProfilesOnly) {
    Simulator simulator;
    for (const bool isPersistent : {true, false, true}) {
        simulator.storeProfile(1, k3gpp2, settingsWithApn("a", isPersistent));
    }
    simulator.serviceDown();
    simulator.serviceUp();
    EXPECT_EQ(simulator.profiles(1, k3gpp2).size(), 3U);
    simulator.restart();
    EXPECT_EQ(simulator.profiles(1, k3gpp2).size(), 2U);
    EXPECT_FALSE(simulator.profile(1, k3gpp2, 2));
}

}  // namespace
}  // namespace velasim
