// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <regex>

#include "support/ClientFixture.h"
#include "support/LogCapture.h"
#include "vela/Util.h"

namespace vela {
namespace {

using LogLevelTest = ClientFixture;

/** Level and text of each line that is wanted; a last blank is followed by "_". */
template <typename Wanted>
std::string linesOf(LogCapture& capture, Wanted isWanted) {
    std::string lines = "\n";
    for (const auto& [level, text] : capture.take()) {
        const std::string line = std::to_string(static_cast<int>(level)) + " " + text;
        lines += isWanted(line) ? line + (line.back() == ' ' ? "_\n" : "\n") : "";
    }
    return lines;
}

/** "#" stands for tokens and source lines. Left out: level 0, what all requests say alike, and what
 * is said in an order of no account. */
std::string transcript(LogCapture& capture) {
    static const std::regex omitted(
        "0 .*|1 :77:.*|2 Handling [DFGMR].*|.*~ModemProfile.*|5 Manager::[dfgmr].*|.*handleInd.*");
    static const std::regex numbers("(token=|Release |\\n1 :)[0-9]+( [0-9]+)?");
    const auto isWanted = [](const auto& line) { return !std::regex_match(line, omitted); };
    return std::regex_replace(linesOf(capture, isWanted), numbers, "$1#");
}

/** What the policies themselves say, but for what is said of 3GPP2 again. */
std::string policyLines(LogCapture& capture) {
    static const std::regex own(". ((vela|Profile|Could|Did) .*[^1]|  .*)");
    return linesOf(capture, [](const auto& line) { return std::regex_match(line, own); });
}

TEST_F(LogLevelTest, EveryOperation) {
    start();
    fault(velasim::Fault::Refuse, RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01, 2);
    fault(velasim::Fault::Refuse, RLINK_WDS_DELETE_PROFILE_REQ_V01);
    fault(velasim::Fault::LoseIndication, velasim::kAnyMessage, 1, 3);
    LogCapture capture;
    Key key = add("apn=Net home=3");
    modify("user=bob", key);
    modify("user=bob", key);
    modify("user=eve", key);
    manager.deleteProfile(key);
    find("apn=other");
    read(key);
    key->registerExpirationListener([] {});
    manager.refresh(PDCRefreshStatus::RefreshStarted);
    reload();
    modify("user=eve", key);
    manager.deleteProfile(key);
    read(key);
    key.reset();
    for (const char* user : {"user=joe", "user=ann", "user=sue"}) {
        change(1, user);
        settle();
    }
    modem.restart();
    settle();
    EXPECT_EQ(transcript(capture), R"(
5 Manager::addProfile > Add 3GPP persist=true: ApnName=Net,HomeIPType=V4V6,IsIAProfile=false,
2 Handling Add 3GPP persist=true: ApnName=Net,HomeIPType=V4V6,IsIAProfile=false,
5 RlinkWdsProxy RLINK_WDS_CREATE_PROFILE_REQ_V01 request successful!
5 Added: TechType=3GPP,ProfileId=1,ApnName=net,CommonIPType=V4V6,ProfileName=vela_profile,
5 Manager::addProfile < Add Success 3GPP:1 token=#
5 RlinkWdsProxy RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01 request successful!
5 Diff: TechType=3GPP,ProfileId=-1,UserName=bob,
5 ProfileCache: profile is unchanged
3 Unable send RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01 message
3 ProfileCache: failed to modify modem profile
3 Unable send RLINK_WDS_DELETE_PROFILE_REQ_V01 message
3 ProfileCache: Failed to remove profile
2 Handling Callback Register 3GPP:1 token=#
2 VELA refresh started
1 invoke callback
5 RlinkWdsProxy RLINK_WDS_GET_PROFILE_LIST_REQ_V01 request successful!
5 RlinkWdsProxy RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01 request successful!
5 RlinkWdsProxy RLINK_WDS_GET_PROFILE_LIST_REQ_V01 request successful!
5 Refreshed Profiles:
5 TechType=3GPP,ProfileId=1,ApnName=net,UserName=bob,CommonIPType=V4V6,ProfileName=vela_profile,
2 VELA refresh completed
5 ProfileCache: token is not present or expired
3 ProfileCache: token is not present or expired
3 ProfileCache: token is not present or expired
2 Handling Callback Release #
5 ProfileCache: releaseProfile token=#
3 ProfileCache: token is not present or expired
1 ~ProfileKey
1 RlinkWdsProxy ProfileChangedInd received!
5 ProfileCache: onIndication < 3GPP:1 Modify
5 ProfileCache: pending transaction confirmed
1 RlinkWdsProxy ProfileChangedInd received!
5 ProfileCache: onIndication < 3GPP:1 Modify
5 ProfileCache: pending transaction confirmed
1 RlinkWdsProxy ProfileChangedInd received!
5 ProfileCache: onIndication < 3GPP:1 Modify
5 ProfileCache: updating cache due to indication!
5 RlinkWdsProxy RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01 request successful!
1 :#:rlinkErrorCb
1 :#:handleError
2 Handling modem down
5 RlinkWdsProxy::registerRlinkSvcUp
1 RlinkWdsProxy service is up, trying to initialize svc client
1 rlink_client_register_error_cb result: 0
1 RlinkWdsProxy bind register request successful!
1 RlinkWdsProxy indication register request successful!
1 RlinkWdsProxy config register request successful!
)");
}

/** On the process-wide manager, which the policies use. */
class PolicyLogTest : public ClientFixture {
  protected:
    PolicyLogTest() : ClientFixture(Manager::getInstance()) {}
};

TEST_F(PolicyLogTest, EveryPolicy) {
    store("apn=net name=vela_profile");
    start();
    LogCapture capture;
    Util util;
    util.matchLteAttachProfileId(1, paramsOf("apn=net"));
    fault(velasim::Fault::Refuse, RLINK_WDS_CREATE_PROFILE_REQ_V01, 1, 3);
    util.findOrCreateProfileForLteAttach(paramsOf("apn=a"));
    util.updateModemProfileByApnClass(listOf("apn=b class=1, apn=c"), listOf("apn=d class=2"));
    util.updateAPNTypeBitmaskOnModemProfile(
        listOf("apn=e home=1 mask=1, apn=e home=2 mask=2, apn=e home=0 mask=4"));
    EXPECT_EQ(policyLines(capture), R"(
5 vela matchLteAttachProfileId > Profile id = 1 Input Params = ApnName=net,
3 Profile id 1 is a VELA profile which is not an IA profile, cannot be used for attach
5 vela findOrCreateProfileForLteAttach > ApnName=a,
5 vela VELA IA profile created for attach
5 vela findOrCreateProfileForLteAttach < _
5 vela updateModemProfileByApnClass > _
5   3gpp:
5     ApnName=b,ApnClass=IMS,
5     ApnName=c,
5   3gpp2:
5     ApnName=d,ApnClass=ADMN,
1 vela update 3gpp modem profile by APN class for ApnName=b,ApnClass=IMS,
1 Did not find a match for APN class and tech type, create a persistent profile
3 Could not add profile by APN class
1 vela update 3gpp modem profile by APN class for ApnName=c,
1 vela either tech type or apn class is missing
1 vela update 3gpp2 modem profile by APN class for ApnName=d,ApnClass=ADMN,
1 Did not find a match for APN class and tech type, create a persistent profile
3 Could not add profile by APN class
5 vela updateModemProfileByApnClass < OK
5 vela updateAPNTypeBitmaskOnModemProfile > _
5 vela update APN type bitmask on modem profile for ApnName=e,HomeIPType=V4,ApnTypesMask=DEFAULT|,
5 vela update APN type bitmask on modem profile for ApnName=e,HomeIPType=V6,ApnTypesMask=MMS|,
5 vela update APN type bitmask on modem profile for ApnName=e,HomeIPType=UNKNOWN,ApnTypesMask=SUPL|,
1 vela processing APN name e, V4 mask:0x1, v6 mask0x2:, v4v6 mask:0x4
1 vela no match found for apn name:e, ip type:1, tech type:0
1 vela no match found for apn name:e, ip type:2, tech type:0
1 vela no match found for apn name:e, ip type:3, tech type:0
1 vela no match found for apn name:e, ip type:1, tech type:0
1 vela no match found for apn name:e, ip type:2, tech type:0
5 vela updateAPNTypeBitmaskOnModemProfile < OK
)");
}

}  // namespace
}  // namespace vela
