// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "ToolRun.h"

namespace velactl {
namespace {

using testing::Contains;
using testing::HasSubstr;

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
    expect({"match-attach", "1", "--apn", "c"}, 1, "cannot serve", "no", 0);
    expect({"match-attach", "2", "--apn", "b"}, 1, "cannot serve", "no", 0);
    run({"add", "--apn", "plain"});
    expect({"match-attach", "2", "--apn", "plain"}, 1, "which is not an IA profile", "no", 0);
}

TEST_F(PolicyVerbs, DataCallsLeaveNoTraceAndEmergencyProfilesStay) {
    const std::vector<std::string> call{"data-call", "--apn", "a", "--home-ip", "IPv4v6"};
    expect(call, 0, "a temporary profile", "created: 3GPP profile 1 (a), temporary", 1, 1);
    run({"add", "--apn", "a", "--home-ip", "IPv4"});
    expect(call, 0, "a profile for the call exists", "found: 3GPP profile 1 (a)", 0);
    expect({"data-call", "--apn", "a", "--auth", "PAP", "--allow-update"}, 0, "updates are allowed",
           "found: 3GPP profile 1", 1);
    expect({"data-call", "--tech", "3gpp2", "--apn", "a"}, 0, "temporary", "3GPP2 profile 1", 1, 1);
    expect({"emergency", "--apn", "sos"}, 0, "no profile supports", "created: 3GPP profile 2", 1);
    expect({"emergency", "--apn", "sos"}, 0, "of this APN name", "found: 3GPP profile 2", 0);
    expect({"emergency", "--apn", "aid"}, 0, "some other profile", "found: 3GPP profile 2", 0);
}

TEST_F(PolicyVerbs, ClassesAndTypes) {
    expect({"apn-class", "--apn", "a", "--class", "IMS"}, 0, "one is created", "done", 1);
    expect({"apn-class", "--apn", "b", "--class", "IMS"}, 0, "all are brought in line", "done", 1);
    expect({"apn-class", "--apn", "b"}, 0, "is passed over", "done", 0);
    run({"add", "--apn", "w", "--home-ip", "IPv4"});
    expect({"type-mask", "--apn", "W", "--types", "mms"}, 0, "3GPP profile 2 gets the types mms",
           "done", 1);
    expect({"type-mask", "--apns", VELACTL_OPERATORS, "--plmn", "001/002"}, 0,
           "APN \"wind\": types of its IPv4 entries default", "done", 0);
}

TEST_F(PolicyVerbs, AFullModemIsARefusal) {
    run({"--capacity", "1", "add", "--apn", "a"});
    expect({"attach", "--apn", "b"}, 1, "the modem refuses to create it", "no profile", 0);
    EXPECT_THAT(run({"emergency"}).err, HasSubstr("refused to create a profile: table full"));
}

}  // namespace
}  // namespace velactl
