// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <set>

#include "support/ClientFixture.h"
#include "vela/Util.h"

namespace vela {
namespace {

const std::map<std::string, std::string> kLines{
    {"exact", "vela Found an exact match modem or VELA IA profile for attach"},
    {"loose", "vela Found a loose match profile for attach"},
    {"same", "vela Found a VELA IA profile that matches APN name for attach"},
    {"any IA", "vela Found any VELA IA profile for attach"},
    {"created", "vela VELA IA profile created for attach"},
    {"no APN", "vela NULL apn scenario"},
    {"found", "found existing setupDataCall profile"},
    {"rewritten", "Modifying profile with input parameters"},
    {"added", "setupDataCall profile added"},
    {"sos by name", "found an emergency profile by name"},
    {"any sos", "found a profile that supports emergency calls"},
    {"new sos", "emergency profile created"}};

class PolicyTest : public ClientFixture {
  protected:
    PolicyTest() : ClientFixture(Manager::getInstance()) { start(); }

    /** A modem with these profiles and no others; the policies' log starts here. */
    void provide(const std::string& profiles) {
        EXPECT_EQ(modem.restore({}), "");
        for (const std::string& line : split(profiles, ',')) {
            store(line);
        }
        reload();
        velasim::DiagLog::instance().clear();
        util.setProfileUpdateAllowed(false);
    }

    /** Rows: case | modem | request | updates | key | then stored there | logged | filters made |
     * profiles in the modem once the key is gone. */
    template <typename Policy>
    void check(const std::string& table, Policy policy) {
        for (const auto& row : rowsOf(table)) {
            SCOPED_TRACE(row[0]);
            provide(row[1]);
            util.setProfileUpdateAllowed(row[3] == "allowed");
            Key key = policy(paramsOf(row[2]));
            ASSERT_NE(key, nullptr);
            EXPECT_EQ(key->dump().substr(0, key->dump().find(' ')), row[4]);
            EXPECT_EQ(stored(key->getProfileId(), row[5]), row[5]);
            EXPECT_EQ(logged(kLines.at(row[6])), 1U);
            EXPECT_EQ(logged("Manager::filter > *"), std::stoul(row[7]));
            key.reset();
            EXPECT_EQ(profilesInModem(), std::stoul(row[8]));
            EXPECT_TRUE(agrees());
        }
    }

    /** Rows: case | modem | what the policy takes... | then stored, in the modem's order. */
    template <typename Policy>
    void checkUpdates(const std::string& table, Policy policy) {
        for (const auto& row : rowsOf(table)) {
            SCOPED_TRACE(row[0]);
            provide(row[1]);
            policy(row);
            std::map<Technology, int> indexes;
            const auto expected = split(row.back(), ',');
            for (const std::string& line : expected) {
                EXPECT_EQ(stored(++indexes[technologyOf(line)], line), line);
            }
            EXPECT_EQ(profilesInModem(), expected.size());
            EXPECT_TRUE(agrees());
        }
    }

    Key attach(const ProfileParams& params) { return util.findOrCreateProfileForLteAttach(params); }

    Util util;
};

TEST_F(PolicyTest, LteAttach) {
    check(R"(
exact | apn=net pdp=3 lte=2 umts=2 | apn=NET home=3 roam=3 user=bob pw=x auth=3 mask=1 wait=4 | |
    3GPP:1 | pdp=3 user=bob password=x authentication_preference=3 types=1 | exact | 1 | 1;;
secondary settings | apn=net | apn=net block=2 timer=3 class=2 clat=1 | | 3GPP:1 |
    max_pdn_connections_per_block=2 max_pdn_connection_timer=3 class=- clat_enabled=- |
    exact | 1 | 1;;
the library's | apn=net pdp=0 name=vela_profile_ia | apn=net home=1 | allowed |
    3GPP:1 | pdp=0 | exact | 1 | 1;;
not its other ones | apn=net pdp=3 name=vela_profile | apn=net home=3 class=2 | |
    3GPP:2 | apn=net class=2 name=vela_profile_ia stays=1 | created | 4 | 2;;
those too | apn=net pdp=3 name=vela_profile | apn=net home=3 user=bob | allowed |
    3GPP:1 | user=bob | loose | 2 | 1;;
subset | apn=net pdp=3 | apn=net home=1 user=bob | | 3GPP:1 | pdp=3 user=bob | loose | 2 | 1;;
superset | apn=net pdp=0 | apn=net home=3 roam=3 | | 3GPP:1 | pdp=0 lte=- | loose | 2 | 1;;
roaming subset | apn=net pdp=3 lte=2 umts=2 | apn=net home=3 roam=1 | | 3GPP:1 | lte=2 |
    loose | 2 | 1;;
rewritten | apn=net pdp=2 | apn=net home=1 roam=1 | allowed | 3GPP:1 | pdp=0 lte=0 | loose | 2 | 1;;
roaming | apn=net pdp=3 lte=1 umts=1 | apn=net home=1 roam=1 | | 3GPP:2 | pdp=0 lte=0 |
    created | 4 | 2;;
same APN | apn=net pdp=2 name=vela_profile_ia | apn=net home=1 | | 3GPP:1 | pdp=0 | same | 3 | 1;;
any APN | apn=other pdp=2 name=vela_profile_ia | apn=net home=1 roam=2 | |
    3GPP:1 | apn=net pdp=3 override_home_pdp_type=0 lte=1 | any IA | 4 | 1;;
no APN | apn=other pdp=0 | home=1 user=bob | | 3GPP:1 | apn=other user=bob | no APN | 1 | 1;;)",
          [this](const ProfileParams& params) { return attach(params); });
}

TEST_F(PolicyTest, DataCall) {
    const auto policy = [this](TechType techType) {
        return [this, techType](const ProfileParams& params) {
            return util.findOrCreateProfileForSetupDataCall(techType, params);
        };
    };
    check(R"(
exact | apn=net pdp=3, apn=net pdp=0 | apn=net home=1 roam=2 user=bob | | 3GPP:2 | user=- pdp=0 |
    found | 1 | 2;;
subset | apn=net pdp=3 | apn=net home=1 user=bob | | 3GPP:1 | user=- pdp=3 | found | 2 | 1;;
superset | apn=net pdp=0 | apn=net home=3 | | 3GPP:1 | pdp=0 | found | 2 | 1;;
other type | apn=net pdp=2 | apn=net home=1 class=3 user=bob | |
    3GPP:2 | pdp=0 class=3 user=bob stays=0 name=vela_profile | added | 2 | 1;;
rewritten | apn=net pdp=2 user=eve | apn=net home=1 user=bob class=3 clat=1 disabled=1 | allowed |
    3GPP:1 | pdp=0 user=bob class=3 clat_enabled=1 apn_disabled_flag=1 | rewritten | 1 | 1;;
other APN | apn=other | apn=net | allowed | 3GPP:2 | apn=net stays=0 | added | 1 | 1;;)",
          policy(TechType::TECH_3GPP));
    check(R"(
that user's | apn_string_3gpp2=net user_id=eve, apn_string_3gpp2=net user_id=bob |
    apn=net user=bob | | 3GPP2:2 | apn_string_3gpp2=net user_id=bob | found | 1 | 2;;
another's | apn_string_3gpp2=net user_id=eve | apn=net user=bob | |
    3GPP2:2 | apn_string_3gpp2=net user_id=bob stays=0 | added | 2 | 1;;)",
          policy(TechType::TECH_3GPP2));
}

TEST_F(PolicyTest, EmergencyCall) {
    check(R"(
by name | apn=a sos=0, apn=b sos=1 | apn=b mask=7 user=bob | allowed |
    3GPP:2 | types=- user=- | sos by name | 1 | 2;;
any | apn=a sos=0, apn=b sos=1 | apn=a mask=7 | allowed | 3GPP:2 | apn=b types=- | any sos | 2 | 2;;
no name | apn=b sos=1 | | | 3GPP:1 | apn=b | any sos | 1 | 1;;
created | apn=a | apn=a mask=7 emergency=0 | |
    3GPP:2 | types=512 sos=1 stays=1 name=vela_profile | new sos | 2 | 2;;)",
          [this](const ProfileParams& params) {
              return util.findOrCreateProfileForEmergencyDataCall(params);
          });
}

TEST_F(PolicyTest, OnlyTheFirstOfSeveralCounts) {
    const std::string modems = "apn=net pdp=3";
    const std::string velas = modems + " name=vela_profile";
    std::set<bool> seen;
    for (const int ofModem : {1, 2}) {
        provide(ofModem == 1 ? modems + "," + velas : velas + "," + modems);
        const int first = find("apn=net home=3").front()->getProfileId();
        seen.insert(first == ofModem);
        EXPECT_EQ(attach(paramsOf("apn=net home=3"))->getProfileId(), ofModem);
        EXPECT_EQ(logged("vela Found a loose match*"), first == ofModem ? 0U : 1U);
        util.setProfileUpdateAllowed(true);
        EXPECT_EQ(attach(paramsOf("apn=net home=3"))->getProfileId(), first);
    }
    EXPECT_EQ(seen.size(), 2U) << "one order only: the test has lost its point";
}

TEST_F(PolicyTest, WhatIsPassedOverIsReleased) {
    provide("");
    Key temporary = add("apn=net home=3", false);
    EXPECT_EQ(attach(paramsOf("apn=net home=3"))->getProfileId(), 2);
    temporary.reset();
    EXPECT_EQ(profilesInModem(), 1U) << "a key is left over";

    fault(velasim::Fault::TableFull, RLINK_WDS_CREATE_PROFILE_REQ_V01, 1, 2);
    EXPECT_EQ(util.findOrCreateProfileForEmergencyDataCall({}), nullptr);
    util.updateModemProfileByApnClass({paramsOf("class=1")}, {});
    EXPECT_EQ(logged("vela findOrCreateProfileForEmergencyDataCall < "), 1U);
    EXPECT_EQ(logged("Could not add profile by APN class"), 1U);
}

// Rows: case | modem | request | updates | log line, "no" for the usual one.
TEST_F(PolicyTest, MatchLteAttachProfileId) {
    const std::string no = "vela matchLteAttachProfileId < did not match input params";
    const std::string yes = "vela matchLteAttachList < 1";
    for (const auto& row : rowsOf(R"(
no such id | apn_string_3gpp2=net | apn=net | | no;;
not for attach | apn=net name=vela_profile | apn=net | |
    Profile id 1 is a VELA profile which is not an IA profile, cannot be used for attach;;
both ways | apn=net pdp=3 | apn=net home=1 roam=2 | | yes;;
a smaller one | apn=net pdp=0 | apn=net home=3 roam=3 | | yes;;
authentication | apn=net authentication_preference=1 | apn=net auth=2 | | no;;
exactly | apn=net pdp=3 | apn=net home=1 | allowed | no;;
the library's | apn=net pdp=3 name=vela_profile_ia | apn=net home=1 | | no;;
credentials | apn=net user=bob password=x | apn=NET user=bob pw=x | allowed | yes;;
password | apn=net password=x | apn=net pw=y | | no;;
class, mask | apn=net | apn=net class=2 mask=1 | | yes;;)")) {
        SCOPED_TRACE(row[0]);
        provide(row[1]);
        util.setProfileUpdateAllowed(row[3] == "allowed");
        EXPECT_EQ(util.matchLteAttachProfileId(1, paramsOf(row[2])), row[4] == "yes");
        EXPECT_EQ(logged(no), row[4] == "no" ? 1U : 0U);
        EXPECT_EQ(logged(yes), row[4] == "yes" ? 1U : 0U);
        EXPECT_EQ(logged(row[4]), row[4].size() > 3 ? 1U : 0U);
    }
}

TEST_F(PolicyTest, ApnClasses) {
    checkUpdates(R"(
all of a class | apn=a class=1, apn=b class=1, apn=c class=2,
        apn_string_3gpp2=d apn_class_3gpp2=1 |
    apn=ims class=1 home=1 | apn=cdma class=1 |
    apn=ims pdp=0, apn=ims pdp=0, apn=c, apn_string_3gpp2=cdma;;
unknown class | apn=a class=1 | apn=net class=3 | |
    apn=a, apn=net class=3 stays=1 name=vela_profile;;
no class | apn=a class=1 | apn=net | | apn=a;;)",
                 [this](const std::vector<std::string>& row) {
                     util.updateModemProfileByApnClass(listOf(row[2]), listOf(row[3]));
                 });
    EXPECT_EQ(logged("vela either tech type or apn class is missing"), 1U);
}

// The bits are those that the modem has in the same places.
TEST_F(PolicyTest, ApnTypeMasks) {
    checkUpdates(R"(
each | apn=net pdp=0, apn=net pdp=2, apn=net pdp=3 |
    apn=net home=1 mask=1, apn=net home=2 mask=8, apn=net home=3 mask=128 | |
    types=1, types=8, types=128;;
case | apn=net pdp=3 | apn=NET home=3 mask=1, apn=nEt home=3 mask=8 | | types=9;;
nameless | apn= pdp=3 | apn= home=3 mask=1, home=3 mask=128 | | types=1;;
to dual | apn=net pdp=3 | apn=net home=1 mask=1, apn=net home=2 mask=8, apn=net mask=128 |
    | types=137;;
to single | apn=net pdp=0, apn=net pdp=2 |
    apn=net home=3 mask=1, apn=net home=1 mask=8, apn=net home=2 mask=128 | |
    types=9, types=129;;
to the other | apn=net pdp=0 | apn=net home=1 mask=1, apn=net home=2 mask=8 | |
    types=9;;
both | apn=net pdp=3, apn_string_3gpp2=net pdn_type_3gpp2=2 | apn=net home=1 mask=1 | |
    types=1, apn_string_3gpp2=net types=1;;
union | apn=net pdp=0, apn=net pdp=3, apn_string_3gpp2=net pdn_type_3gpp2=2 |
    apn=net home=1 mask=1, apn=net mask=8, apn=net home=2 mask=128 | allowed |
    types=137, types=137, apn_string_3gpp2=net types=137;;
no mask, union | apn=net types=8 | apn=net | allowed | types=0;;
no mask | apn=net pdp=3 types=8 | apn=net | | types=8;;)",
                 [this](const std::vector<std::string>& row) {
                     util.setProfileUpdateAllowed(row[3] == "allowed");
                     util.updateAPNTypeBitmaskOnModemProfile(listOf(row[2]));
                 });
    EXPECT_EQ(logged("vela APN type mask not present, setting to 0"), 1U);
    EXPECT_EQ(logged("vela Home IP type not present, setting to v4v6"), 1U);
}

}  // namespace
}  // namespace vela
