// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Modem3gppProfile.h"

#include <gtest/gtest.h>

#include <cstring>

#include "LogCapture.h"
#include "Modem3gpp2Profile.h"
#include "TextTables.h"

namespace vela {
namespace {

/** A profile of which the modem has told these settings, in its own numbers. */
Modem3gppProfile told(const std::string& settings) {
    wds_get_profile_settings_resp_msg_v01 response{};
    response.settings = settingsOf(settings);
    return Modem3gppProfile(4, response);
}

std::string dumpOf(const std::string& fields, int profileId = -1) {
    return "TechType=3GPP,ProfileId=" + std::to_string(profileId) + "," + fields;
}

// Rows: what the modem has | changes | what is written.
TEST(Modem3gppProfileTest, ChangesIPTypesTogether) {
    for (const auto& row : rowsOf(R"(
| home=1 roam=2 | CommonIPType=V4V6,OverrideHomeIPType=V4,LteRoamIP=V6,UmtsRoamIP=V6,;;
| home=2 roam=2 | CommonIPType=V6,LteRoamIP=V6,UmtsRoamIP=V6,;;
pdp=3 home=1 lte=0 umts=0 | home=1 roam=1 | CommonIPType=V4,OverrideHomeIPType=UNKNOWN,;;
pdp=3 home=0 lte=1 umts=1 | home=2 | CommonIPType=V6,OverrideHomeIPType=UNKNOWN,;;
pdp=0 lte=0 umts=0 | roam=2 |
    CommonIPType=V4V6,OverrideHomeIPType=V4,LteRoamIP=V6,UmtsRoamIP=V6,;;
lte=0 umts=0 | roam=2 | LteRoamIP=V6,UmtsRoamIP=V6,;;
pdp=0 lte=0 umts=1 | home=2 | CommonIPType=V6,;;
pdp=0 lte=0 umts=1 | roam=1 | UmtsRoamIP=V4,;;
pdp=0 lte=1 umts=0 | roam=1 | LteRoamIP=V4,;;
pdp=3 home=1 lte=0 umts=1 | | CommonIPType=V6,;;
pdp=0 home=255 lte=0 umts=0 | home=1 roam=1 | ;;)")) {
        const ProfileParams changes = paramsOf(row[1]);
        const auto difference =
            told(row[0] + " name=vela_profile").diff(ModifyProfileParams(changes));
        const std::string expected = row[2].empty() ? "" : dumpOf(row[2]);
        EXPECT_EQ(difference ? difference->dump() : "", expected) << row[0];
        if (row[0].empty()) {
            EXPECT_EQ(Modem3gppProfile(changes).dump(), expected);
        }
    }
}

// Rows: what the modem has | the filter | whether they match. Without roaming types it is the
// common type that counts, not the override; a UMTS type that is missing counts as UNKNOWN.
TEST(Modem3gppProfileTest, MatchesIPTypesThatAreOnlyPartlyThere) {
    for (const auto& row : rowsOf(R"(
pdp=0 | roam=1 | yes;;
pdp=2 lte=0 umts=0 | roam=1 | yes;;
pdp=0 lte=0 umts=1 | roam=1 | no;;
pdp=0 lte=0 | roam=1 | no;;
pdp=0 umts=0 | roam=1 | no;;
| home=1 criteria=16 | no;;
home=0 | home=1 criteria=1 | yes;;
| roam=1 criteria=32 | no;;
pdp=3 home=0 | roam=1 criteria=1 | no;;
pdp=3 home=0 | roam=3 criteria=1 | yes;;
pdp=0 lte=9 | roam=0 criteria=1 | yes;;
pdp=0 umts=9 | roam=0 criteria=1 | no;;)")) {
        const Modem3gppProfile profile = told(row[0]);
        EXPECT_EQ(profile.match(filterOf(row[1])), row[2] == "yes") << row[0] << row[1];
        EXPECT_EQ(profile.get().hasRoamIPType(), row[0] == "pdp=2 lte=0 umts=0") << row[0];
    }
}

TEST(Modem3gppProfileTest, ADifferenceChangesSettingsAndNothingElse) {
    const ModifyProfileParams changes(paramsOf("mask=4097"));
    Modem3gppProfile profile{changes};
    profile.setProfileId(4);
    profile.setProfileName("vela_profile");
    profile.setIsPersistent(true);
    profile.setIsVelaCreated(true);
    profile.incRefCount();
    const auto difference = profile.diff(changes);
    ASSERT_NE(difference, nullptr);  // bits that the modem cannot hold always differ
    const std::string before = profile.dump();
    profile.apply(difference);
    profile.apply(std::make_shared<Modem3gpp2Profile>(7, wds_get_profile_settings_resp_msg_v01{}));
    EXPECT_EQ(profile.dump(), before);
    EXPECT_TRUE(profile.getIsPersistent() && profile.getIsVelaCreated());
    EXPECT_EQ(profile.getRefCount(), 1);
}

TEST(Modem3gppProfileTest, NameTellsWhoseProfileItIs) {
    const std::tuple<const char*, bool, bool> table[] = {{"vela_profile", true, false},
                                                         {"vela_profile_ia", true, true},
                                                         {"VELA_PROFILE", false, false},
                                                         {"VELA_PROFILE_IA", false, false},
                                                         {"vela_profile_ia ", false, false},
                                                         {"my vela_profile", false, false},
                                                         {"", false, false}};
    for (const auto& [name, isVela, isIA] : table) {
        Modem3gppProfile profile{ProfileParams()};
        if (*name != '\0') {
            profile.setProfileName(name);
        }
        for (const bool wanted : {false, true}) {
            const char* const value = wanted ? "1" : "0";
            EXPECT_EQ(profile.match(filterOf(std::string("vela=") + value)), isVela == wanted);
            EXPECT_EQ(profile.match(filterOf(std::string("ia=") + value)), isIA == wanted) << name;
        }
        EXPECT_EQ(profile.get().getIsVelaProfile(), isVela) << name;
        EXPECT_EQ(profile.get().getIsIAProfile(), isIA) << name;
    }
}

TEST(Modem3gppProfileTest, CreateMessageHoldsWhatIsPresentAndZeroes) {
    ProfileParams params = paramsOf(
        "home=1 roam=2 apn=IMS auth=7 mask=65 class=4 clat=1 block=65541 timer=-1 wait=300 "
        "disabled=0 emergency=1 user=" +
        std::string(200, 'u'));
    params.setPassword(std::string("p\0q", 3));
    Modem3gppProfile profile(params);
    profile.setProfileName(std::string(60, 'n'));
    profile.setIsPersistent(true);

    wds_create_profile_req_msg_v01 expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.settings = settingsOf(
        "types=3 stays=1 clat_enabled=1 apn=ims password=p pdp=3 home=0 lte=1 umts=1 "
        "max_pdn_connections_per_block=5 max_pdn_connection_timer=65535 "
        "pdn_request_wait_interval=300 apn_disabled_flag=0 sos=1 authentication_preference=3 "
        "class=4 name=" +
        std::string(50, 'n') + " user=" + std::string(127, 'u'));
    EXPECT_TRUE(bytesOf(profile.constructAddRequest()) == bytesOf(expected));
}

TEST(Modem3gppProfileTest, EmptyTextsAndClassZeroGoThereAndBack) {
    const Modem3gppProfile profile(paramsOf("apn= user= pw= class=0"));
    wds_get_profile_settings_resp_msg_v01 response{};
    response.settings = profile.constructAddRequest().settings;
    EXPECT_EQ(Modem3gppProfile(5, response).dump(),
              dumpOf("ApnName=,UserName=,Password=,ApnClass=0,", 5));
}

TEST(Modem3gppProfileTest, ModifyMessageNamesTheProfileAndClearsTheOverride) {
    Modem3gppProfile changes{ProfileParams()};
    changes.setProfileId(0x1FE);
    changes.setOverrideHomeIPType(IPType::UNKNOWN);
    wds_modify_profile_settings_req_msg_v01 expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.profile.profile_index = 0xFE;
    expected.settings = settingsOf("home=255");
    EXPECT_TRUE(bytesOf(changes.constructModifyRequest()) == bytesOf(expected));
}

TEST(Modem3gppProfileTest, ReadsWhatTheModemSays) {
    LogCapture log;
    wds_get_profile_settings_resp_msg_v01 response{};
    auto& from = response.settings;
    std::memset(&from, 0x5A, sizeof(from));  // "Z", without an end, and every flag set
    from.apn_type_mask = std::uint64_t{1} << 40U;
    from.clat_enabled = 0;
    from.pdp_type = WDS_PDP_TYPE_IPV6_V01;
    from.override_home_pdp_type = WDS_COMMON_PDP_TYPE_UNSET_V01;
    from.lte_roaming_pdp_type = WDS_COMMON_PDP_TYPE_UNSET_V01;
    from.umts_roaming_pdp_type = static_cast<wds_common_pdp_type_enum_v01>(9);
    from.max_pdn_connection_timer = 65535;
    from.apn_disabled_flag = 0;
    std::memcpy(from.user_name, "B%n", 4);
    const Modem3gppProfile profile(5, response);
    EXPECT_TRUE(profile.getIsPersistent());
    EXPECT_EQ(profile.dump(),
              dumpOf("ApnName=" + std::string(151, 'z') +
                         ",UserName=B%n,Password=" + std::string(128, 'Z') +
                         ",AuthType=CHAP,CommonIPType=V6,ApnTypesMask=1099511627776,ApnClass=90,"
                         "IsClatEnabled=0,OverrideHomeIPType=UNKNOWN,UmtsRoamIP=UNKNOWN,"
                         "MaxPdnsConnPerBlock=23130,MaxPdnConnTimer=65535,"
                         "PdnReqWaitInterval=23130,IsApnDisabled=0,IsEmergencySupported=1,"
                         "ProfileName=" +
                         std::string(51, 'Z') + ",",
                     5));
    EXPECT_EQ(log.take(),
              (std::vector<LogCapture::Line>{{LogLevel::Debug, "Unknown pdp_type_enum 255"},
                                             {LogLevel::Debug, "Unknown pdp_type_enum 9"}}));
    wds_get_profile_settings_resp_msg_v01 flagOnly{};
    flagOnly.settings.persistence_flag = 1;
    EXPECT_FALSE(Modem3gppProfile(5, flagOnly).getIsPersistent());
}

}  // namespace
}  // namespace vela
