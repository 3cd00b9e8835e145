// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "OperatorFile.h"
#include "ToolRun.h"

namespace velactl {
namespace {

using testing::HasSubstr;

const std::string kOperators = VELACTL_OPERATORS;

class Provision : public ModemFileTest {
  protected:
    /** Provisions by JSON; `mvno` may be empty. */
    nlohmann::json provision(const std::string& plmn, const std::string& mvno = "") const {
        std::vector<std::string> arguments{"provision", "--apns", kOperators, "--plmn", plmn};
        if (!mvno.empty()) {
            arguments.insert(arguments.end(), {"--mvno", mvno});
        }
        return runJson(arguments);
    }
};

TEST_F(Provision, SetsClassesTypesAttachAndTheRest) {
    const auto result = provision("00101");
    nlohmann::json table;
    for (const auto& profile : result["after"]) {
        table[profile["made_by"].get<std::string>() + ' ' + profile["apn"].get<std::string>()] = {
            profile["types"], profile.value("class", ""), profile.value("emergency", false)};
    }
    EXPECT_EQ(table, nlohmann::json::parse(R"({
        "vela internet.alpenfunk.example": [["default", "supl", "hipri"], "INET", false],
        "vela ims": [["ims"], "IMS", false],
        "vela IA attach.alpenfunk.example": [["ia"], "", false],
        "vela mms.alpenfunk.example": [["mms"], "", false],
        "vela sos": [["emergency"], "", true]})"));
}

/** Every operator of the example file, the nonsense included: whatever the first run has done, the
 * second has nothing to do, and each entry is accounted for. */
TEST_F(Provision, ASecondRunChangesNothing) {
    const OperatorFile file = OperatorFile::load(kOperators);
    for (const Operator& candidate : file.operators()) {
        SCOPED_TRACE(candidate.name());
        std::filesystem::remove(modem);
        const std::string mvno =
            candidate.mvnoType.empty() ? "" : candidate.mvnoType + ':' + candidate.mvnoData;
        const auto first = provision(candidate.plmn.text(), mvno);
        const auto second = provision(candidate.plmn.text(), mvno);
        EXPECT_FALSE(first["changes"].empty());
        EXPECT_EQ(first["entries"].size(), candidate.entries.size());
        EXPECT_TRUE(second["changes"].empty()) << second["changes"];
        EXPECT_EQ(second["requests"], 0);
        EXPECT_EQ(second["after"], first["after"]);
        for (const auto& entry : second["entries"]) {
            EXPECT_THAT(entry["outcome"], testing::AnyOf("held", "refused")) << entry;
        }
    }
}

TEST_F(Provision, EntriesInEachOthersWayKeepWhatTheyAskFor) {
    const auto result = provision("00103");
    EXPECT_EQ(result["after"].size(), 6U);  // five profiles for seven entries, and the attach
    const auto holds = [&](const nlohmann::json& wanted) {
        return std::any_of(result["after"].begin(), result["after"].end(), [&](const auto& held) {
            return std::all_of(wanted.items().begin(), wanted.items().end(), [&](const auto& item) {
                return held.value(item.key(), nlohmann::json()) == item.value();
            });
        });
    };
    EXPECT_TRUE(holds({{"apn", "klamm"}, {"class", "INET"}, {"home_ip", "IPv4"}}));
    EXPECT_TRUE(holds({{"apn", "klamm.biz"}, {"user", "biz"}, {"class", nullptr}}));
    EXPECT_TRUE(holds({{"apn", "klamm"}, {"types", {"default", "hipri", "xcap"}}}));
    EXPECT_TRUE(holds({{"apn", "klamm"}, {"user", "guest"}, {"auth", "PAP_CHAP"}}));
    EXPECT_TRUE(holds({{"apn", "klamm"}, {"disabled", true}}));
    EXPECT_TRUE(holds({{"apn", ""}, {"made_by", "vela IA"}}));
}

TEST_F(Provision, AModemWithProfilesOfItsOwnIsBroughtInLine) {
    run({"add", "--apn", "old", "--class", "INET", "--home-ip", "IPv6"});
    const auto first = provision("00101");
    EXPECT_EQ(first["after"][0]["apn"], "internet.alpenfunk.example");
    EXPECT_TRUE(provision("00101")["changes"].empty());
    // Another operator's card: its attach profile takes over the one that is there.
    provision("00102");
    EXPECT_TRUE(provision("00102")["changes"].empty());
}

TEST_F(Provision, AFullModemIsSaidAndStillStable) {
    const std::vector<std::string> arguments{"--capacity", "3",      "provision", "--apns",
                                             kOperators,   "--plmn", "00101"};
    const ToolRun first = run(arguments);
    EXPECT_EQ(first.status, 1);
    EXPECT_THAT(first.err, HasSubstr("2 entries found no place in the modem"));
    EXPECT_THAT(run(arguments).out, HasSubstr("Nothing changed"));
}

/** What a run for one operator tells must also stand in the survey. */
class OwnOperator : public Provision {
  protected:
    ToolRun provisionOwn(const std::string& content, std::vector<std::string> arguments) const {
        const std::string file = directory / "own.xml";
        std::ofstream(file) << "<apns>" << content << "</apns>";
        arguments.insert(arguments.begin(), {"provision", "--apns", file});
        if (arguments.back() == "--all") {
            return runTool(arguments);
        }
        arguments.insert(arguments.end(), {"--plmn", "00101"});
        return run(arguments);
    }
};

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
         "no profile for it: the modem refused to create a profile: table full"},
        {start + R"("a")" + inet + "/>" + start + R"("b")" + inet + "/>",
         {},
         0,
         "class INET is another entry's"},
        {start + R"("a" type="mms"/>)", {}, 0, "no entry of type ia or default"},
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
        EXPECT_EQ(single.err.find("attach: no profile") != std::string::npos, each.status == 1);
        options.emplace_back("--all");
        const ToolRun survey = provisionOwn(each.entries, options);
        EXPECT_EQ(survey.status, each.status) << survey.err;
        EXPECT_THAT(survey.out, HasSubstr(each.told));
    }
}

TEST_F(OwnOperator, ARewrittenProfileKeepsNothingInSilence) {
    run({"add", "--apn", "old", "--class", "INET", "--user", "joe", "--password", "pw",
         "--disabled"});
    const std::string entry =
        R"(<apn mcc="001" mnc="01" apn="new" type="default" modem_cognitive="true"/>)";
    const auto first = provisionOwn(entry, {"--json"}).json()["entries"][0];
    EXPECT_EQ(first["outcome"], "rewritten");
    EXPECT_EQ(first["text"], "rewritten: profile 1, class INET");
    const nlohmann::json leftOver{"but profile 1 has user=joe, password=***, disabled=yes"};
    EXPECT_EQ(first["oddities"], leftOver);
    const auto second = provisionOwn(entry, {"--json"}).json()["entries"][0];
    EXPECT_EQ(second["outcome"], "held");
    EXPECT_EQ(second["oddities"], leftOver);
}

TEST(ProvisionAll, CountsEveryEntryAndChangesNothingASecondTime) {
    const ToolRun result =
        runTool({"--json", "provision", "--apns", kOperators, "--all", "--twice"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");  // no progress bar: nobody watches
    const auto totals = result.json()["totals"];
    const std::size_t all = OperatorFile::load(kOperators).entries().size();
    EXPECT_EQ(totals["entries"].get<std::size_t>() + totals["without_operator"].get<std::size_t>(),
              all);
    EXPECT_EQ(totals["added"].get<int>() + totals["shared"].get<int>() +
                  totals["not_possible"].get<int>(),
              totals["entries"].get<int>());
    EXPECT_EQ(totals["operators"], 5);
    EXPECT_EQ(totals["virtual_operators"], 1);
    EXPECT_EQ(totals["wrong"], 0);
}

}  // namespace
}  // namespace velactl
