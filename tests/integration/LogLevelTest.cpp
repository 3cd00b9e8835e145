// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <regex>

#include "support/ClientFixture.h"
#include "support/LogCapture.h"

namespace vela {
namespace {

using LogLevelTest = ClientFixture;

/** Level and text of each line, "#" for tokens and source lines. A last blank is followed by "_".
 * Left out: level 0, what all requests say alike, and what is said in an order of no account. */
std::string transcript(LogCapture& capture) {
    static const std::regex omitted(
        "0 .*|1 :77:.*|2 Handling [DFGMR].*|.*~ModemProfile.*|5 Manager::[dfgmr].*|.*handleInd.*");
    static const std::regex numbers("(token=|Release |\\n1 :)[0-9]+( [0-9]+)?");
    std::string lines = "\n";
    for (const auto& [level, text] : capture.take()) {
        const std::string line = std::to_string(static_cast<int>(level)) + " " + text;
        lines += std::regex_match(line, omitted) ? "" : line + (line.back() == ' ' ? "_\n" : "\n");
    }
    return std::regex_replace(lines, numbers, "$1#");
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
    sim.restart();
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

}  // namespace
}  // namespace vela
