// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include "ToolRun.h"
#include "operators/OperatorFile.h"

namespace velactl {
namespace {

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
    file.forEach([&](const Operator& candidate) {
        SCOPED_TRACE(candidate.name());
        std::filesystem::remove(modem);
        const auto first = provision(candidate.plmn.text(), candidate.mvno);
        const auto second = provision(candidate.plmn.text(), candidate.mvno);
        EXPECT_FALSE(first["changes"].empty());
        EXPECT_EQ(first["entries"].size(), candidate.entries.size());
        EXPECT_TRUE(second["changes"].empty()) << second["changes"];
        EXPECT_EQ(second["requests"], 0);
        EXPECT_EQ(second["after"], first["after"]);
        for (const auto& entry : second["entries"]) {
            EXPECT_THAT(entry["outcome"], testing::AnyOf("held", "refused")) << entry;
        }
    });
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

TEST_F(OwnOperator, ARewrittenProfileKeepsNothingInSilence) {
    run({"add", "--apn", "old", "--class", "INET", "--user", "joe", "--password", "pw",
         "--disabled"});
    const std::string entry =
        R"(<apn mcc="001" mnc="01" apn="new" type="default" modem_cognitive="true"/>)";
    const auto leftOver = nlohmann::json::parse(R"({"user": {"held": "joe", "asked": null},
        "password": {"held": "***", "asked": null}, "disabled": {"held": true, "asked": null}})");
    for (const char* outcome : {"rewritten", "held"}) {
        const auto first = provisionOwn(entry, {"--json"}).json()["entries"][0];
        EXPECT_EQ(first["outcome"], outcome);
        EXPECT_EQ(first["index"], 1);
        EXPECT_EQ(first["differences"], leftOver);
    }
}

/** What an attach profile that somebody else made keeps, and profiles that no entry asks for. */
TEST_F(OwnOperator, EveryProfileOfTheResultIsJudged) {
    run({"add", "--ia", "--apn", "old", "--user", "joe", "--max-conns", "9", "--home-ip", "IPv6",
         "--roam-ip", "IPv6"});
    run({"add", "--apn", "left", "--types", "default,emergency", "--class", "APP", "--emergency"});
    run({"add", "--apn", "new", "--types", "default", "--user", "other"});
    const std::string entries =
        R"(<apn mcc="001" mnc="01" apn="new" type="default"/>
           <apn mcc="001" mnc="01" apn="NEW" type="mms"/>)";
    const auto result = provisionOwn(entries, {"--json"}).json();
    EXPECT_EQ(result["attach"], nlohmann::json::parse(R"({"outcome": "found", "line": 1,
        "index": 1, "reason": null, "can_serve": true, "differences": {
            "user": {"held": "joe", "asked": null}, "max_conns": {"held": 9, "asked": null},
            "types": {"held": ["default", "mms", "hipri"], "asked": ["default", "hipri"]}}})"));
    EXPECT_EQ(result["profiles"], nlohmann::json::parse(R"([
        {"technology": "3GPP", "index": 1, "apn": "new", "lines": [], "attach": true,
         "like_line": null, "left_over": {}},
        {"technology": "3GPP", "index": 2, "apn": "left", "lines": [], "attach": false,
         "like_line": null, "left_over": {
            "types": {"held": ["default", "emergency"], "asked": null},
            "class": {"held": "APP", "asked": null}, "emergency": {"held": true, "asked": null}}},
        {"technology": "3GPP", "index": 3, "apn": "new", "lines": [], "attach": false,
         "like_line": null, "left_over": {"user": {"held": "other", "asked": null},
            "types": {"held": ["default"], "asked": null}}},
        {"technology": "3GPP", "index": 4, "apn": "new", "lines": [1, 2], "attach": false,
         "like_line": null, "left_over": {}}])"));
    const std::string text = provisionOwn(entries, {"--explain"}).out;
    EXPECT_THAT(text, HasSubstr("Attach serves: profile 1 for line 1, but the profile has "
                                "types=default,mms,hipri instead of default,hipri, user=joe, "
                                "max_conns=9."));
    EXPECT_THAT(text, HasSubstr("3GPP profile 2 (left) serves no entry: types=default,emergency, "
                                "class=APP, emergency=yes"));
}

}  // namespace
}  // namespace velactl
