// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Provisioning of every operator of a file, each on a fresh modem, as only a simulator can.

#include "ToolRun.h"
#include "operators/OperatorFile.h"
#include "profiles/Text.h"

namespace velactl {
namespace {

const std::string kOperators = VELACTL_OPERATORS;

/** What a run for one operator tells must also stand in the survey. */
TEST_F(OwnOperator, TheSurveyTellsWhatTheSingleRunTells) {
    struct Case {
        std::string entries;
        std::vector<std::string> options;
        int status;
        const char* told;
    };
    const std::string start = R"(<apn mcc="001" mnc="01" carrier="C" apn=)";
    const std::string inet = R"( type="default" modem_cognitive="true" )";
    const Case cases[] = {
        {start + R"("ims" type="ims,ia" modem_cognitive="true" profile_id="2"/>)",
         {"--capacity", "1"},
         1,
         "missing for line 1: the modem refused to create a profile: table full"},
        {start + R"("a")" + inet + "/>" + start + R"("b")" + inet + "/>",
         {},
         0,
         "its class is another entry's"},
        {start + R"("a" type="mms"/>)", {}, 0, "ttach not asked for"},
        {start + R"("a" type="mms" mmsc="x"/>)", {"--explain"}, 0, "no field for mmsc"},
        {start + R"("a" type="mms" mmsc="x"/>)", {"--json"}, 0, "\"not_sent\""},
        {start + R"("a" type="mms"/><other/>)", {}, 0, "line 1: element <other> left out"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.told);
        std::filesystem::remove(modem);
        auto options = each.options;
        const ToolRun single = provisionOwn(each.entries, options);
        EXPECT_EQ(single.status, each.status) << single.err;
        EXPECT_THAT(single.out, HasSubstr(each.told));
        EXPECT_EQ(single.err.find("attach missing") != std::string::npos, each.status == 1);
        options.emplace_back("--all");
        const ToolRun survey = provisionOwn(each.entries, options);
        EXPECT_EQ(survey.status, each.status) << survey.err;
        EXPECT_THAT(survey.out, HasSubstr(each.told));
    }
}

/** Why nothing of a file can be used is told, whoever asks. */
TEST_F(OwnOperator, AFileWithNothingUsableSaysWhy) {
    const std::pair<const char*, const char*> cases[] = {
        {R"(<apn mcc="" mnc="01" apn="a" type="ia"/><apn mcc="001" mnc="1"/>)",
         R"(left out: line 1 "a" (): mcc "" is not 3 digits: no operator; line 1 "")"},
        {R"(<APN mcc="001" mnc="01"/>)", "left out: line 1: element <APN> left out"},
        {R"(<apn mcc="001" mnc="01" apn="a" protocol="PPP"/>)",
         R"(protocol "PPP" is not IP, IPV6 or)"},
        {"", "no operator"},
    };
    for (const auto& [entries, reason] : cases) {
        SCOPED_TRACE(entries);
        const ToolRun single = provisionOwn(entries, {"--explain"});
        EXPECT_EQ(single.status, 1);
        EXPECT_THAT(single.err, HasSubstr(reason));
        EXPECT_THAT(provisionOwn(entries, {"--json"}).json()["error"], HasSubstr(reason));
        const ToolRun policy = run({"attach", "--apns", directory / "own.xml", "--plmn", "00101"});
        EXPECT_THAT(policy.err, HasSubstr(reason));
        const ToolRun all = provisionOwn(entries, {"--all"});
        EXPECT_THAT(all.out + all.err, HasSubstr(reason));
        EXPECT_EQ(all.status, all.out.find("PPP") == std::string::npos ? 1 : 0);
    }
}

/** Beyond a terminal's last column nothing is read. */
TEST(ProvisionAll, NoLineIsWiderThanTheTerminal) {
    for (const std::size_t width : {80U, 40U}) {
        for (const char* which : {"--plmn=00101", "--plmn=00104", "--all"}) {
            std::ostringstream out;
            std::ostringstream err;
            runVelactl({"provision", "--apns", kOperators, which}, {out, err, 0, width});
            for (const std::string& line : split(out.str(), '\n')) {
                EXPECT_LE(displayWidth(line), width) << line;
            }
            EXPECT_THAT(out.str(), testing::ContainsRegex("profile +1"));
        }
    }
}

TEST(ProvisionAll, CountsEveryEntryAndChangesNothingASecondTime) {
    const ToolRun result =
        runTool({"--json", "provision", "--apns", kOperators, "--all", "--twice"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");  // no progress bar: nobody watches
    const auto totals = result.json()["totals"];
    const std::size_t all = OperatorFile::load(kOperators).entryCount();
    EXPECT_EQ(totals["entries"].get<std::size_t>() + totals["without_operator"].get<std::size_t>(),
              all);
    EXPECT_EQ(
        totals["added"].get<int>() + totals["shared"].get<int>() + totals["refused"].get<int>(),
        totals["entries"].get<int>());
    EXPECT_EQ(totals["operators"], 5);
    EXPECT_EQ(totals["virtual_operators"], 1);
    EXPECT_EQ(totals["wrong"], 0);
}

TEST(Progress, StaysOnItsLineAndOutOfTheLog) {
    std::ostringstream out;
    std::ostringstream err;
    const std::vector<std::string> arguments{"provision", "--apns", VELACTL_OPERATORS, "--all"};
    runVelactl(arguments, {out, err, 30});
    for (const std::string& part : split(err.str(), '\r')) {
        EXPECT_LE(part.substr(0, part.find('\x1B')).size(), 29U) << part;
    }
    err.str("");
    runVelactl(arguments, {out, err, 200});
    EXPECT_THAT(err.str(), testing::AllOf(HasSubstr("100/100 % of "), HasSubstr("6/6 001/04")));
    err.str("");
    auto logged = arguments;
    logged.emplace_back("--log");
    runVelactl(logged, {out, err, 30});
    EXPECT_THAT(err.str(), Not(HasSubstr("\r")));
}

}  // namespace
}  // namespace velactl
