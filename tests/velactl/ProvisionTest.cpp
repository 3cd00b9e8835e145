// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <algorithm>

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
