// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <fstream>

#include "ToolRun.h"

namespace velactl {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/** What the verbs say must be what happened: each is tried where the policy takes another way. */
class PolicyVerbs : public ModemFileTest {
  protected:
    void expect(std::vector<std::string> arguments, int status, const std::string& step,
                const std::string& result, std::size_t changes, std::size_t released = 0) {
        arguments.insert(arguments.begin(), "--json");
        const ToolRun answer = run(arguments);
        EXPECT_EQ(answer.status, status) << answer.err;
        const auto json = answer.json();
        EXPECT_THAT(json["steps"], Contains(HasSubstr(step))) << json;
        EXPECT_THAT(json["result"], HasSubstr(result));
        EXPECT_EQ(json["changes"].size(), changes) << json;
        EXPECT_EQ(json["released"].size(), released) << json;
    }
};

TEST_F(PolicyVerbs, Attach) {
    const std::vector<std::string> wanted{"attach", "--apn",  "a", "--home-ip",
                                          "IPv4",   "--user", "u"};
    expect(wanted, 0, "nothing fits", "created: 3GPP profile 1 (a)", 1);
    expect(wanted, 0, "exact match", "found: 3GPP profile 1", 0);
    expect({"attach", "--apn", "A", "--home-ip", "IPv6"}, 0, "has this APN name", "profile 1", 1);
    expect({"attach", "--apn", "b"}, 0, "for another APN is taken over", "profile 1 (b)", 1);
    expect({"match-attach", "1", "--apn", "b"}, 0, "can serve the attach", "done", 0);
    expect({"match-attach", "1", "--apn", "c"}, 1, "profile 1 is compared with apn=c: it differs",
           "no", 0);
    expect({"match-attach", "2", "--apn", "b"}, 1, "there is no 3GPP profile 2", "no", 0);
    run({"add", "--apn", "plain"});
    expect({"match-attach", "2", "--apn", "plain"}, 1, "made it, and not for", "no", 0);
}

TEST_F(PolicyVerbs, DataCallsLeaveNoTraceAndEmergencyProfilesStay) {
    const std::vector<std::string> call{"data-call", "--apn", "a", "--home-ip", "IPv4v6"};
    expect(call, 0, "a temporary profile", "created: 3GPP profile 1 (a), temporary", 1, 1);
    run({"add", "--apn", "a", "--home-ip", "IPv4"});
    expect(call, 0, "a profile for the call exists", "found: 3GPP profile 1 (a)", 0);
    expect({"data-call", "--apn", "a", "--auth", "PAP", "--allow-update"}, 0, "updates are allowed",
           "found: 3GPP profile 1", 1);
    expect({"data-call", "--tech", "3gpp2", "--apn", "a"}, 0, "temporary", "3GPP2 profile 1", 1, 1);
    expect({"emergency", "--apn", "sos"}, 0, "nothing fits: a profile is created",
           "created: 3GPP profile 2", 1);
    expect({"emergency", "--apn", "sos"}, 0, "of this APN name", "found: 3GPP profile 2", 0);
    expect({"emergency", "--apn", "aid"}, 0, "some other profile", "found: 3GPP profile 2", 0);
}

TEST_F(PolicyVerbs, ClassesAndTypes) {
    expect({"apn-class", "--apn", "a", "--class", "IMS"}, 0, "no profile has this APN class",
           "done", 1);
    expect({"apn-class", "--apn", "b", "--class", "IMS"}, 0, "all are brought in line", "done", 1);
    expect({"apn-class", "--apn", "b"}, 0, "is passed over", "done", 0);
    run({"add", "--apn", "w", "--home-ip", "IPv4"});
    expect({"type-mask", "--apn", "W", "--types", "mms"}, 0, "3GPP profile 2 gets types=mms",
           "done", 1);
    expect({"type-mask", "--apns", VELACTL_OPERATORS, "--plmn", "001/002"}, 0,
           "APN \"wind\": types of its IPv4 entries default", "done", 0);
}

TEST_F(PolicyVerbs, AFullModemIsARefusal) {
    run({"--capacity", "1", "add", "--apn", "a"});
    expect({"attach", "--apn", "b"}, 1, "the modem refuses to create an attach profile",
           "no profile", 0);
    EXPECT_THAT(run({"emergency"}).err, HasSubstr("refused to create a profile: table full"));
    for (const std::vector<std::string>& verb : {std::vector<std::string>{"attach", "--apn", "b"},
                                                 {"data-call", "--apn", "b"},
                                                 {"emergency"},
                                                 {"apn-class", "--apn", "b", "--class", "APP"}}) {
        const ToolRun answer = run(verb);
        EXPECT_EQ(answer.status, 1);
        EXPECT_THAT(answer.out, Not(AnyOf(HasSubstr("created"), HasSubstr("Result: done"))));
        EXPECT_THAT(answer.out, HasSubstr("the modem refuses to create"));
    }
}

/** Every step in the tool's own words, and with its reason. */
TEST_F(PolicyVerbs, TheStepsTellWhyAndHowMany) {
    run({"--capacity", "60", "add", "--apn", "a,b", "--home-ip", "IPv4"});
    expect({"attach", "--apn", "a,b", "--home-ip", "IPv4", "--user", "u,Password=x"}, 0,
           "3GPP profile 1 is passed over: the library made it, and not for the attach",
           "created: 3GPP profile 2", 1);
    expect({"attach", "--apn", "a,b", "--home-ip", "IPv4", "--auth", "none"}, 0,
           "3GPP profile 2 gets auth=none", "found: 3GPP profile 2", 1);
    expect({"attach", "--apn", "a,b", "--home-ip", "IPv4", "--auth", "none"}, 0,
           "3GPP profile 2 has auth=none already: nothing is sent", "found: 3GPP profile 2", 0);
    expect({"attach", "--apn", "a,b", "--home-ip", "IPv4v6", "--roam-ip", "IPv6", "--allow-update"},
           0, "updates are allowed: the IP types may be rewritten", "found: 3GPP profile", 1);
    expect({"data-call", "--apn", "a,b", "--home-ip", "IPv6"}, 0,
           "searched for 3GPP profiles with apn=a,b, home_ip=IPv6, where one IP type may", "", 0);
    for (int i = 0; i < 42; ++i) {
        run({"add", "--apn", "many"});
    }
    expect({"data-call", "--apn", "many"}, 0, "with apn=many: at least ", "found", 0);
}

TEST_F(PolicyVerbs, CallsPassOverDisabledEntries) {
    const std::string file = directory / "own.xml";
    std::ofstream(file)
        << R"(<apns><apn mcc="001" mnc="01" apn="off" type="*,emergency" carrier_enabled="false"/>
              <apn mcc="001" mnc="01" apn="on" type="default"/></apns>)";
    EXPECT_EQ(runJson({"data-call", "--apns", file, "--plmn", "00101"})["asked"][0]["apn"], "on");
    EXPECT_THAT(run({"emergency", "--apns", file, "--plmn", "00101"}).err,
                HasSubstr("no entry for emergency call"));
}

}  // namespace
}  // namespace velactl
