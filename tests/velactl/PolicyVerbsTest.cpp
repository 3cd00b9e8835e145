// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0

#include "ToolRun.h"

namespace velactl {
namespace {

/** What the verbs say must be what happened: each is tried where the policy takes another way. */
class PolicyVerbs : public ModemFileTest {
  protected:
    /** Runs the verb for people on a copy, then as JSON. */
    void expect(std::vector<std::string> arguments, int status, const std::string& step,
                const std::string& result, std::size_t changes, std::size_t released = 0) {
        const std::string copy = directory / "copy.json";
        if (std::filesystem::exists(modem)) {
            std::filesystem::copy_file(modem, copy,
                                       std::filesystem::copy_options::overwrite_existing);
        }
        const std::string told = runOnModem(copy, arguments).out;
        EXPECT_THAT(told, HasSubstr(asToldHere(step)));
        EXPECT_THAT(told, HasSubstr("Result: " + result));
        arguments.insert(arguments.begin(), "--json");
        const ToolRun answer = run(arguments);
        EXPECT_EQ(answer.status, status) << answer.err;
        const auto json = answer.json();
        if (json["decision"]["table_seen"] == true) {
            EXPECT_EQ(json["changes"].size(), changes) << json;
            EXPECT_EQ(json["released"].size(), released) << json;
        }
    }
};

TEST_F(PolicyVerbs, Attach) {
    const std::vector<std::string> wanted{"attach", "--apn",  "a", "--home-ip",
                                          "IPv4",   "--user", "u"};
    expect(wanted, 0, "a persistent 3GPP profile for the attach is to be created",
           "created: 3GPP profile 1 (a)", 1);
    expect(wanted, 0, "nothing is sent: nothing to change", "found: 3GPP profile 1 (a)", 0);
    expect({"attach", "--apn", "A", "--home-ip", "IPv6"}, 0, "home_ip is IPv4, asked for IPv6",
           "found: 3GPP profile 1", 1);
    expect({"attach", "--apn", "b"}, 0, "is to get apn=b", "found: 3GPP profile 1 (b)", 1);
    run({"add", "--apn", "plain"});
    expect({"attach", "--apn", "plain", "--user", "u,Password=x"}, 0,
           "profile 2 (plain) is looked at: made by vela, and so passed over",
           "found: 3GPP profile 1 (plain)", 1);
}

TEST_F(PolicyVerbs, DataCallsLeaveNoTraceAndEmergencyProfilesStay) {
    const std::vector<std::string> call{"data-call", "--apn", "a", "--home-ip", "IPv4v6"};
    expect(call, 0, "a temporary 3GPP profile is to be created",
           "created: 3GPP profile 1 (a)\n  made just now, temporary", 1, 1);
    run({"add", "--apn", "a", "--home-ip", "IPv4"});
    expect(call, 0, "home_ip=IPv4v6 (or wider or narrower): 1 of 1", "found: 3GPP profile 1 (a)",
           0);
    expect({"data-call", "--apn", "a", "--auth", "PAP", "--allow-update"}, 0, "may be rewritten",
           "found: 3GPP profile 1", 1);
    expect({"data-call", "--tech", "3gpp2", "--apn", "a"}, 0, "temporary",
           "created: 3GPP2 profile 1", 1, 1);
    expect({"emergency", "--apn", "sos"}, 0, "a persistent 3GPP profile is to be created",
           "created: 3GPP profile 2", 1);
    expect({"emergency", "--apn", "aid"}, 0, "apn is sos, asked was aid (not compared)",
           "found: 3GPP profile 2", 0);
}

TEST_F(PolicyVerbs, ClassesAndTypes) {
    expect({"apn-class", "--apn", "a", "--class", "IMS"}, 0, "class=IMS: none of 0", "done", 1);
    expect({"apn-class", "--apn", "b", "--class", "IMS"}, 0, "profile 1 (a) is to get apn=b",
           "done", 1);
    run({"add", "--apn", "w", "--home-ip", "IPv4"});
    expect({"type-mask", "--apn", "W", "--types", "mms"}, 0,
           "3GPP profile 2 (w) is to get types=mms", "done", 1);
    expect({"type-mask", "--apns", VELACTL_OPERATORS, "--plmn", "001/002"}, 0,
           "apn=WIND, home_ip=IPv4, roam_ip=IPv4, types=mms", "done", 0);
}

TEST_F(PolicyVerbs, CallsPassOverDisabledEntries) {
    const std::string file = directory / "own.xml";
    std::ofstream(file)
        << R"(<apns><apn mcc="001" mnc="01" apn="off" type="*,emergency" carrier_enabled="false"/>
              <apn mcc="001" mnc="01" apn="on" type="default"/></apns>)";
    EXPECT_EQ(
        runJson({"data-call", "--apns", file, "--plmn", "00101"})["decision"]["asked"][0]["apn"],
        "on");
    EXPECT_THAT(run({"emergency", "--apns", file, "--plmn", "00101"}).err,
                HasSubstr("no entry for emergency call"));
}

}  // namespace
}  // namespace velactl
