// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0

#include "ToolRun.h"
#include "profiles/Output.h"
#include "profiles/Text.h"
#include "scenario/Arguments.h"

namespace velactl {
namespace {

class Tool : public ModemFileTest {};

TEST_F(Tool, KeepsProfilesBetweenRuns) {
    EXPECT_EQ(runJson({"add", "--apn", "Internet", "--types", "default,mms", "--home-ip", "ipv4v6",
                       "--user", "u", "--password", "geheim", "--class", "inet"})["index"],
              1);
    EXPECT_EQ(run({"add", "--apn", "cdma", "--tech", "3gpp2", "--auth", "PAP"}).status, 0);
    EXPECT_EQ(run({"modify", "1", "--apn", "web", "--no-clat", "--wait-time", "7"}).status, 0);

    const auto profiles = runJson({"list"})["profiles"];
    ASSERT_EQ(profiles.size(), 2U);
    EXPECT_EQ(profiles[0],
              nlohmann::json::parse(R"({"technology": "3GPP", "index": 1, "persistent": true,
                  "made_by": "vela", "apn": "web", "home_ip": "IPv4v6", "pdp_type": "IPv4v6",
                  "types": ["default", "mms"], "class": "INET", "user": "u", "password": "***",
                  "clat": false, "wait_time": 7})"));
    EXPECT_EQ(profiles[1]["apn"], "cdma");

    EXPECT_EQ(run({"delete", "1"}).status, 0);
    EXPECT_EQ(runJson({"list"})["profiles"].size(), 1U);
    EXPECT_EQ(run({"match", "--apn", "CDM", "--loose"}).status, 0);
    EXPECT_EQ(run({"match", "--apn", "CDM"}).status, 1);
}

TEST_F(Tool, MasksPasswordsEverywhereUnlessAskedNotTo) {
    run({"add", "--apn", "a", "--password", "geheim,AuthType"});
    const std::vector<std::vector<std::string>> verbs{
        {"list"},
        {"--json", "list"},
        {"dump"},
        {"--log", "modify", "1", "--password", "geheimer"},
        {"--log", "attach", "--apn", "b", "--password", "geheimst"},
        {"--json", "data-call", "--apn", "a", "--password", "geheim", "--allow-update"},
    };
    for (std::vector<std::string> verb : verbs) {
        const ToolRun masked = run(verb);
        EXPECT_THAT(masked.out + masked.err, Not(HasSubstr("geheim"))) << join(verb, " ");
        EXPECT_EQ(masked.status, 0) << masked.err;
        verb.insert(verb.begin(), "--show-secrets");
        const ToolRun shown = run(verb);
        EXPECT_THAT(shown.out + shown.err, HasSubstr("geheim")) << join(verb, " ");
    }
}

TEST(LogMask, MasksTheWholePasswordAndNoMore) {
    EXPECT_EQ(withoutPassword("x UserName=u,Password=a,b=c,AuthType=PAP,IsClatEnabled=true,"),
              "x UserName=u,Password=***,AuthType=PAP,IsClatEnabled=true,");
    EXPECT_EQ(withoutPassword("Password=p,AuthType=PAP,HomeIPTy"), "Password=***");
    for (const char* line : {"UserName=u,ApnTypesMask=5,", "ApnName=myPassword=x,UserName=u,"}) {
        EXPECT_EQ(withoutPassword(line), line);
    }
    EXPECT_EQ(shownStatement("add --apn q,Password=x password=y --password z", false),
              "add --apn q,Password=x password=*** --password ***");
}

TEST_F(Tool, BadInputGetsOneClearLineAndLosesNothing) {
    const std::string operators = VELACTL_OPERATORS;
    const std::string broken = directory / "broken.xml";
    std::ofstream(broken) << "<apns>\n<apn mcc=>\n</apns>";
    run({"--capacity", "1", "add", "--apn", "kept"});
    const std::string before = contentOf(modem);
    struct Case {
        std::vector<std::string> arguments;
        int status;
        const char* error;
    };
    const Case cases[] = {
        {{}, 2, "no verb; velactl help lists them"},
        {{"lsit"}, 2, "\"lsit\" is not a verb; did you mean \"list\"?"},
        {{"list", "--jsn"}, 2, "did you mean \"--json\"?"},
        {{"show", "7"}, 1, "no 3GPP profile 7: there is 1"},
        {{"show", ""}, 2, "[ID]: \"\" must be a whole number"},
        {{"attach", "--apn", "x", "--plmn", ""}, 2, "--plmn: the value is empty"},
        {{"provision", "--apns", "/proc/self/mem", "--plmn", "00101"}, 1, "mem: cannot be read"},
        {{"add", "--types", "default,tv"}, 2, "\"tv\" is not one of them; use default"},
        {{"add", "--max-conns", "70000"}, 2, "\"70000\" must be a whole number from 0 to 65535"},
        {{"add", "--apn", std::string(151, 'a')}, 2, "151 bytes; a profile holds 150"},
        {{"add", "--apn", "more"}, 1, "refused to create a profile: table full"},
        {{"provision", "--plmn", "00101"}, 2, "--apns"},
        {{"provision", "--apns", operators, "--plmn", "0010"}, 2, "MCC (3 digits)"},
        {{"provision", "--apns", operators, "--plmn", "001003"},
         1,
         "of MCC 001: 001/03 (Klammfon)"},
        {{"provision", "--apns", operators, "--plmn", "00101", "--mvno", "spn:No"}, 1, "gid:BAE0"},
        {{"provision", "--apns", broken, "--plmn", "00101"}, 1, "broken.xml:2:"},
        {{"emergency", "--apns", operators, "--plmn", "00102"}, 1, "no entry for emergency call"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(join(each.arguments, " "));
        const ToolRun result = run(each.arguments);
        EXPECT_EQ(result.status, each.status);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err,
                    AllOf(HasSubstr(asToldHere(each.error)), testing::StartsWith("velactl: ")));
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_EQ(contentOf(modem), before);
    }
}

TEST_F(Tool, TellsAnAbsentValueFromOneThatIsNone) {
    run({"add", "--apn", "a"});
    EXPECT_THAT(run({"modify", "1", "--auth", "none", "--user", "", "--types", "none"}).out,
                HasSubstr("types (absent) -> none; auth (absent) -> none; user (absent) -> \"\""));
    const auto fields = runJson({"modify", "1", "--auth", "PAP"})["changes"][0]["fields"];
    EXPECT_EQ(fields["auth"], nlohmann::json::parse(R"({"before": "none", "after": "PAP"})"));
}

TEST_F(Tool, AnswersInJsonWhateverBytesAModemHolds) {
    run({"add", "--apn", "a\xFF\x1B[31m", "--user", "Zoë"});
    const auto profile = runJson({"show", "1"});
    EXPECT_EQ(profile["apn_hex"], "61ff1b5b33316d");
    EXPECT_EQ(profile["user"], "Zoë");
    EXPECT_THAT(run({"list"}).out, AllOf(HasSubstr("a\\xff\\x1b[31m"), Not(HasSubstr("\x1B"))));
}

TEST(Text, ShowsWhatATerminalMayShowAndEscapesTheRest) {
    EXPECT_EQ(printable("Zoë ＫＬ"), "Zoë ＫＬ");
    EXPECT_EQ(displayWidth("Zoë ＫＬ"), 8U);
    // A control character, one that turns the writing, an overlong one, a surrogate, a cut one.
    EXPECT_EQ(printable("\x07\xE2\x80\xAE\xC0\xAF\xED\xA0\x80\xE2\x82"),
              "\\x07\\xe2\\x80\\xae\\xc0\\xaf\\xed\\xa0\\x80\\xe2\\x82");
    EXPECT_EQ(counted(1234567, "entry"), "1234567 entries");
}

TEST_F(Tool, AnswersWithOneDocumentHoweverItEnds) {
    const std::pair<std::vector<std::string>, int> lines[] = {
        {{"list"}, 0},  {{"show", "7"}, 1},       {{"lsit"}, 2},
        {{}, 2},        {{"--version"}, 0},       {{"data-call", "--apn", "a"}, 0},
        {{"shell"}, 2}, {{"run", "none.scn"}, 1}, {{"--modem", "", "list"}, 2},
    };
    for (const auto& [line, status] : lines) {
        const auto json = runJson(line);
        EXPECT_EQ(json["schema"], 1) << join(line, " ");
        EXPECT_EQ(json["status"], status) << join(line, " ");
        EXPECT_EQ(json["error"].is_null(), status == 0) << json["error"];
    }
}

TEST_F(Tool, HelpsWithEveryVerbAndOption) {
    const std::string all = runTool({"help"}).out;
    EXPECT_EQ(runTool({"--help"}).out, all);
    EXPECT_THAT(all, AllOf(HasSubstr("--show-secrets"), Not(HasSubstr("expect "))));
    EXPECT_EQ(runTool({"modify", "--help"}).out, runTool({"help", "modify"}).out);
    EXPECT_THAT(runTool({"--version"}).out, testing::StartsWith("velactl "));
    for (const char* word : {"add", "modify", "run", "list"}) {
        for (const std::string& line : split(runTool({"help", word}).out + all, '\n')) {
            EXPECT_LE(line.size(), 80U) << line;
        }
    }
    EXPECT_THAT(runTool({"help", "add"}).out, HasSubstr("  --clat, --no-clat  "));
    EXPECT_THAT(runTool({"help", "expect"}).out, HasSubstr("  expect stale KEY  "));
}

}  // namespace
}  // namespace velactl
