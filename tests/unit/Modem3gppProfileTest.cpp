// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Modem3gppProfile.h"

#include <gtest/gtest.h>

#include <cstring>

#include "LogCapture.h"
#include "MessageBytes.h"
#include "Modem3gpp2Profile.h"

namespace vela {
namespace {

constexpr int kNone = -1;

template <typename Target>
void set(Target& target, void (Target::*setter)(IPType), int value) {
    if (value != kNone) {
        (target.*setter)(static_cast<IPType>(value));
    }
}

ProfileParams ipTypes(int home, int roam) {
    ProfileParams params;
    set(params, &ProfileParams::setHomeIPType, home);
    set(params, &ProfileParams::setRoamIPType, roam);
    return params;
}

struct StoredIPTypes {
    int common, overrideHome, lte, umts;

    void store(Modem3gppProfile& profile) const {
        set<ModemProfile>(profile, &ModemProfile::setCommonIPType, common);
        set(profile, &Modem3gppProfile::setOverrideHomeIPType, overrideHome);
        set(profile, &Modem3gppProfile::setLteRoamIPType, lte);
        set(profile, &Modem3gppProfile::setUmtsRoamIPType, umts);
    }
};

std::string dumpOf(const std::string& fields, int profileId = -1) {
    return "TechType=3GPP,ProfileId=" + std::to_string(profileId) + "," + fields;
}

TEST(Modem3gppProfileTest, ChangesIPTypesTogether) {
    const std::string different =
        dumpOf("CommonIPType=V4V6,OverrideHomeIPType=V4,LteRoamIP=V6,UmtsRoamIP=V6,");
    EXPECT_EQ(Modem3gppProfile(ipTypes(1, 2)).dump(), different);
    EXPECT_EQ(Modem3gppProfile(ipTypes(2, 2)).dump(),
              dumpOf("CommonIPType=V6,LteRoamIP=V6,UmtsRoamIP=V6,"));
    const struct {
        StoredIPTypes stored;
        int home, roam;
        std::string difference;
    } table[] = {
        {{3, 2, 1, 1}, 1, 1, dumpOf("CommonIPType=V4,OverrideHomeIPType=UNKNOWN,")},
        {{3, 1, 2, 2}, 2, kNone, dumpOf("CommonIPType=V6,OverrideHomeIPType=UNKNOWN,")},
        {{1, kNone, 1, 1}, kNone, 2, different},
        {{kNone, kNone, 1, 1}, kNone, 2, dumpOf("LteRoamIP=V6,UmtsRoamIP=V6,")},
        {{1, kNone, 1, 2}, 2, kNone, dumpOf("CommonIPType=V6,")},
        {{1, kNone, 1, 2}, kNone, 1, dumpOf("UmtsRoamIP=V4,")},
        {{1, kNone, 2, 1}, kNone, 1, dumpOf("LteRoamIP=V4,")},
        // Roaming types that disagree are nothing to hold the override against.
        {{3, 2, 1, 2}, kNone, kNone, dumpOf("CommonIPType=V6,")},
        {{1, 0, 1, 1}, 1, 1, ""},
    };
    for (const auto& row : table) {
        Modem3gppProfile profile{ProfileParams()};
        profile.setProfileId(4);
        profile.setProfileName("vela_profile");
        row.stored.store(profile);
        const auto difference = profile.diff(ModifyProfileParams(ipTypes(row.home, row.roam)));
        EXPECT_EQ(difference ? difference->dump() : "", row.difference);
    }
}

TEST(Modem3gppProfileTest, RoamingIsKnownOnlyWhereBothRadiosAgree) {
    const struct {
        StoredIPTypes stored;
        bool matchesV4, givesV4;
    } table[] = {{{1, kNone, kNone, kNone}, true, false},
                 {{2, kNone, 1, 1}, true, true},
                 {{1, kNone, 1, 2}, false, false},
                 {{1, kNone, 1, kNone}, false, false},
                 {{1, kNone, kNone, 1}, false, false}};
    for (const auto& row : table) {
        Modem3gppProfile profile{ProfileParams()};
        row.stored.store(profile);
        EXPECT_EQ(profile.match(FilterProfileParams(ipTypes(kNone, 1))), row.matchesV4);
        EXPECT_EQ(profile.get().hasRoamIPType(), row.givesV4) << profile.dump();
    }
}

TEST(Modem3gppProfileTest, MatchesIPTypesThatAreOnlyPartlyThere) {
    const struct {
        StoredIPTypes stored;
        int home, roam;
        FilterMatchCriteria criteria;
        bool matches;
    } table[] = {
        {{kNone, kNone, kNone, kNone}, 1, kNone, FilterMatchCriteria::HomeIPSuperset, false},
        {{kNone, 1, kNone, kNone}, 1, kNone, FilterMatchCriteria::HomeIPSubset, true},
        {{kNone, kNone, kNone, kNone}, kNone, 1, FilterMatchCriteria::RoamIPSuperset, false},
        // Without roaming types it is the common type that counts, not the override.
        {{3, 1, kNone, kNone}, kNone, 1, FilterMatchCriteria::HomeIPSubset, false},
        {{3, 1, kNone, kNone}, kNone, 3, FilterMatchCriteria::HomeIPSubset, true},
        // The stored UMTS value of a profile without one is UNKNOWN.
        {{1, kNone, 0, kNone}, kNone, 0, FilterMatchCriteria::HomeIPSubset, true},
        {{1, kNone, kNone, 0}, kNone, 0, FilterMatchCriteria::HomeIPSubset, false},
    };
    for (const auto& row : table) {
        Modem3gppProfile profile{ProfileParams()};
        row.stored.store(profile);
        FilterProfileParams filter(ipTypes(row.home, row.roam));
        filter.addFilterMatchCriteria(toMask(row.criteria));
        EXPECT_EQ(profile.match(filter), row.matches) << profile.dump() << filter.dump();
    }
}

TEST(Modem3gppProfileTest, ADifferenceChangesSettingsAndNothingElse) {
    ModifyProfileParams changes;
    changes.setApnTypesMask(1 | 4096);
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
    const std::tuple<std::string, bool, bool> table[] = {{"vela_profile", true, false},
                                                         {"vela_profile_ia", true, true},
                                                         {"VELA_PROFILE", false, false},
                                                         {"VELA_PROFILE_IA", false, false},
                                                         {"vela_profile_ia ", false, false},
                                                         {"my vela_profile", false, false},
                                                         {"", false, false}};
    for (const auto& [name, isVela, isIA] : table) {
        Modem3gppProfile profile{ProfileParams()};
        if (!name.empty()) {
            profile.setProfileName(name);
        }
        const std::string flags = std::string("IsVelaProfile=") + (isVela ? "true" : "false") +
                                  ",IsIAProfile=" + (isIA ? "true" : "false") + ",";
        EXPECT_EQ(profile.get().dump(), flags);
        for (const bool wanted : {false, true}) {
            FilterProfileParams vela;
            vela.setFilterByIsVelaProfile(wanted);
            EXPECT_EQ(profile.match(vela), isVela == wanted) << name;
            FilterProfileParams ia;
            ia.setFilterByIsIAProfile(wanted);
            EXPECT_EQ(profile.match(ia), isIA == wanted) << name;
        }
    }
}

TEST(Modem3gppProfileTest, CreateMessageHoldsWhatIsPresentAndZeroes) {
    ProfileParams params = ipTypes(1, 2);
    params.setApnName("IMS");
    params.setUserName(std::string(200, 'u'));
    params.setPassword(std::string("p\0q", 3));
    params.setAuthType(static_cast<AuthType>(7));
    params.setApnTypesMask(1 | 64);
    params.setApnClass(ApnClass::APP);
    params.setIsClatEnabled(true);
    params.setMaxPdnsConnPerBlock(65536 + 5);
    params.setMaxPdnConnTimer(-1);
    params.setPdnReqWaitInterval(300);
    params.setIsApnDisabled(false);
    params.setIsEmergencySupported(true);
    Modem3gppProfile profile(params);
    profile.setProfileName(std::string(60, 'n'));
    profile.setIsPersistent(true);

    wds_create_profile_req_msg_v01 expected;
    std::memset(&expected, 0, sizeof(expected));
    auto& to = expected.settings;
    to.apn_type_mask_valid = 1, to.apn_type_mask = 1 | 2;
    to.persistence_flag_valid = 1, to.persistence_flag = 1;
    to.clat_enabled_valid = 1, to.clat_enabled = 1;
    to.profile_name_valid = 1, std::memset(to.profile_name, 'n', 50);
    to.apn_name_valid = 1, std::memcpy(to.apn_name, "ims", 3);
    to.user_name_valid = 1, std::memset(to.user_name, 'u', 127);
    to.password_valid = 1, to.password[0] = 'p';
    to.pdp_type_valid = 1, to.pdp_type = WDS_PDP_TYPE_IPV4V6_V01;
    to.override_home_pdp_type_valid = 1;  // IPv4 is 0
    to.lte_roaming_pdp_type_valid = 1, to.lte_roaming_pdp_type = WDS_COMMON_PDP_TYPE_IPV6_V01;
    to.umts_roaming_pdp_type_valid = 1, to.umts_roaming_pdp_type = WDS_COMMON_PDP_TYPE_IPV6_V01;
    to.max_pdn_connections_per_block_valid = 1, to.max_pdn_connections_per_block = 5;
    to.max_pdn_connection_timer_valid = 1, to.max_pdn_connection_timer = 65535;
    to.pdn_request_wait_interval_valid = 1, to.pdn_request_wait_interval = 300;
    to.apn_disabled_flag_valid = 1;
    to.emergency_calls_support_valid = 1, to.emergency_calls_support = 1;
    to.authentication_preference_valid = 1, to.authentication_preference = 3;
    to.apn_class_valid = 1, to.apn_class = 4;
    const wds_create_profile_req_msg_v01 request = profile.constructAddRequest();
    EXPECT_TRUE(bytesOf(request) == bytesOf(expected));
}

TEST(Modem3gppProfileTest, EmptyTextsAndClassZeroGoThereAndBack) {
    ProfileParams params;
    params.setApnName("");
    params.setUserName("");
    params.setPassword("");
    params.setApnClass(static_cast<ApnClass>(0));
    wds_get_profile_settings_resp_msg_v01 response{};
    response.settings = Modem3gppProfile(params).constructAddRequest().settings;
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
    expected.settings.override_home_pdp_type_valid = 1;
    expected.settings.override_home_pdp_type = WDS_COMMON_PDP_TYPE_UNSET_V01;
    const wds_modify_profile_settings_req_msg_v01 request = changes.constructModifyRequest();
    EXPECT_TRUE(bytesOf(request) == bytesOf(expected));
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
