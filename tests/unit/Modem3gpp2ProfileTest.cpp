// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Modem3gpp2Profile.h"

#include <gtest/gtest.h>

#include <cstring>

#include "LogCapture.h"
#include "TextTables.h"

namespace vela {
namespace {

TEST(Modem3gpp2ProfileTest, MatchesNoSelectorAndCountsAnAbsentTypeAsNoBits) {
    const Modem3gpp2Profile profile{ProfileParams()};
    for (const char* const filter : {"ia=0", "vela=0", "home=1"}) {
        EXPECT_FALSE(profile.match(filterOf(filter))) << filter;
    }
    EXPECT_TRUE(profile.match(filterOf("home=1 criteria=16")));
}

TEST(Modem3gpp2ProfileTest, RoamingHasNoPlaceInIt) {
    const Modem3gpp2Profile profile(paramsOf("home=2 roam=1"));
    EXPECT_EQ(profile.get().dump(), "HomeIPType=V6,");
    EXPECT_FALSE(profile.diff(ModifyProfileParams(paramsOf("roam=2"))));
}

TEST(Modem3gpp2ProfileTest, CreateMessageWritesBothLevels) {
    for (const int auth : {3, 0, 4}) {
        const Modem3gpp2Profile profile(
            paramsOf("home=2 class=2 user=Bob auth=" + std::to_string(auth) +
                     " apn=" + std::string(160, 'A') + " pw=" + std::string(128, 'p')));
        const std::string password(127, 'p');
        const std::string protocol = auth == 3 ? "3" : "0";
        wds_create_profile_req_msg_v01 expected;
        std::memset(&expected, 0, sizeof(expected));
        expected.profile_type = WDS_PROFILE_TYPE_3GPP2_V01;
        expected.settings = settingsOf(
            "stays=0 pdn_type_3gpp2=1 apn_class_3gpp2=2 user_id=Bob pdn_level_user_id=Bob "
            "authentication_protocol=" +
            protocol + " pdn_level_authentication_protocol=" + protocol +
            " authentication_password=" + password + " pdn_level_authentication_password=" +
            password + " apn_string_3gpp2=" + std::string(150, 'a'));
        EXPECT_TRUE(bytesOf(profile.constructAddRequest()) == bytesOf(expected)) << auth;
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
