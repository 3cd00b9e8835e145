// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Modem3gpp2Profile.h"

#include <gtest/gtest.h>

#include <cstring>

#include "LogCapture.h"
#include "MessageBytes.h"

namespace vela {
namespace {

TEST(Modem3gpp2ProfileTest, MatchesNoSelectorAndCountsAnAbsentTypeAsNoBits) {
    const Modem3gpp2Profile profile{ProfileParams()};
    FilterProfileParams ia;
    ia.setFilterByIsIAProfile(false);
    EXPECT_FALSE(profile.match(ia));
    FilterProfileParams vela;
    vela.setFilterByIsVelaProfile(false);
    EXPECT_FALSE(profile.match(vela));
    FilterProfileParams home;
    home.setHomeIPType(IPType::V4);
    EXPECT_FALSE(profile.match(home));
    home.addFilterMatchCriteria(16);
    EXPECT_TRUE(profile.match(home));
}

TEST(Modem3gpp2ProfileTest, RoamingHasNoPlaceInIt) {
    ProfileParams params;
    params.setHomeIPType(IPType::V6);
    params.setRoamIPType(IPType::V4);
    const Modem3gpp2Profile profile(params);
    EXPECT_EQ(profile.get().dump(), "HomeIPType=V6,");
    ModifyProfileParams modify;
    modify.setRoamIPType(IPType::V6);
    EXPECT_FALSE(profile.diff(modify));
}

TEST(Modem3gpp2ProfileTest, CreateMessageWritesBothLevels) {
    for (const int auth : {3, 0, 4}) {
        ProfileParams params;
        params.setApnName(std::string(160, 'A'));
        params.setHomeIPType(IPType::V6);
        params.setAuthType(static_cast<AuthType>(auth));
        params.setApnClass(ApnClass::ADMN);
        params.setUserName("Bob");
        params.setPassword(std::string(128, 'p'));

        const int protocol = auth == 3 ? 3 : 0;
        wds_create_profile_req_msg_v01 expected;
        std::memset(&expected, 0, sizeof(expected));
        expected.profile_type = WDS_PROFILE_TYPE_3GPP2_V01;
        auto& to = expected.settings;
        to.persistence_flag_valid = 1;
        to.apn_string_3gpp2_valid = 1, std::memset(to.apn_string_3gpp2, 'a', 150);
        to.pdn_type_3gpp2_valid = 1, to.pdn_type_3gpp2 = WDS_PROFILE_PDN_TYPE_IPV6_V01;
        to.authentication_protocol_valid = to.pdn_level_authentication_protocol_valid = 1;
        std::memcpy(&to.authentication_protocol, &protocol, sizeof(protocol));
        std::memcpy(&to.pdn_level_authentication_protocol, &protocol, sizeof(protocol));
        to.apn_class_3gpp2_valid = 1, to.apn_class_3gpp2 = 2;
        to.user_id_valid = to.pdn_level_user_id_valid = 1;
        std::memcpy(to.user_id, "Bob", 3), std::memcpy(to.pdn_level_user_id, "Bob", 3);
        to.authentication_password_valid = to.pdn_level_authentication_password_valid = 1;
        std::memset(to.authentication_password, 'p', 127);
        std::memset(to.pdn_level_authentication_password, 'p', 127);
        const auto request = Modem3gpp2Profile(params).constructAddRequest();
        EXPECT_TRUE(bytesOf(request) == bytesOf(expected)) << auth;
    }
}

TEST(Modem3gpp2ProfileTest, ModifyMessageKeepsTheLowByteOfTheIndex) {
    Modem3gpp2Profile profile{ProfileParams()};
    profile.setProfileId(300);
    const auto request = profile.constructModifyRequest();
    EXPECT_EQ(bytesOf(request).substr(0, 8), std::string_view("\1\0\0\0\54\0\0\0", 8));
}

TEST(Modem3gpp2ProfileTest, ReadsWhatTheModemSaysButNoPassword) {
    LogCapture log;
    wds_get_profile_settings_resp_msg_v01 response{};
    EXPECT_EQ(Modem3gpp2Profile(6, response).dump(), "TechType=3GPP2,ProfileId=6,");
    std::memset(&response.settings, 0x5A, sizeof(response.settings));  // "Z", without an end
    EXPECT_EQ(Modem3gpp2Profile(6, response).dump(),
              "TechType=3GPP2,ProfileId=6,ApnName=" + std::string(151, 'z') +
                  ",UserName=" + std::string(128, 'Z') +
                  ",AuthType=NONE,CommonIPType=UNKNOWN,ApnTypesMask=6510615555426900570,"
                  "ApnClass=90,IsClatEnabled=1,");
    EXPECT_EQ(log.take().at(1),
              LogCapture::Line(LogLevel::Debug, "Unknown profile_pdn_type_enum 1515870810"));
}

}  // namespace
}  // namespace vela
