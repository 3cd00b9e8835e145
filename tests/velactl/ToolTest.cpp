// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "LogMask.h"
#include "Text.h"
#include "ToolRun.h"

namespace velactl {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string contentOf(const std::string& path) {
    std::ifstream in(path);
    return {std::istreambuf_iterator<char>(in), {}};
}

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
                  "made_by": "vela", "apn": "web", "home_ip": "IPv4v6",
                  "types": ["default", "mms"], "class": "INET", "user": "u", "password": "***",
                  "clat": false, "wait_time": 7})"));
    EXPECT_EQ(profiles[1]["apn"], "cdma");

    EXPECT_EQ(run({"delete", "1"}).status, 0);
    EXPECT_EQ(runJson({"list"})["profiles"].size(), 1U);
    EXPECT_EQ(run({"match", "--apn", "CDM", "--loose"}).status, 0);
    EXPECT_EQ(run({"match", "--apn", "CDM"}).status, 1);
}

TEST_F(Tool, ATemporaryProfileIsGoneWhenTheToolEnds) {
    EXPECT_THAT(run({"add", "--apn", "a", "--temporary"}).out, HasSubstr("It is temporary"));
    EXPECT_EQ(runJson({"list"})["profiles"].size(), 0U);
}

TEST_F(Tool, MasksPasswordsEverywhereUnlessAskedNotTo) {
    run({"add", "--apn", "a", "--password", "geheim,AuthType"});
    const std::vector<std::vector<std::string>> verbs{
        {"list"},
        {"--json", "list"},
        {"show", "1"},
        {"dump"},
        {"--json", "dump"},
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
    EXPECT_EQ(withoutPassword("UserName=u,ApnTypesMask=5,"), "UserName=u,ApnTypesMask=5,");
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
        {{}, 2, "no verb; use list"},
        {{"lsit"}, 2, "\"lsit\" is no verb; use list"},
        {{"show", "7"}, 1, "no 3GPP profile 7: there is 1"},
        {{"delete", "1", "--tech", "3gpp2"}, 1, "the modem has no 3GPP2 profiles"},
        {{"modify", "1"}, 2, "nothing to change"},
        {{"show", "one"}, 2, "one"},
        {{"show", ""}, 2, "id: \"\" must be a whole number"},
        {{"modify", "1", "--clat=maybe"}, 2, "use --clat or --no-clat"},
        {{"modify", "1", "--wait-time", "010"}, 2, "\"010\" must be a whole number"},
        {{"modify", "1", "--wait-time", "0x10"}, 2, "\"0x10\" must be a whole number"},
        {{"provision", "--apns", "/proc/self/mem", "--plmn", "00101"}, 1, "mem: cannot be read"},
        {{"add", "--home-ip", "v5"}, 2, "use IPv4, IPv6 or IPv4v6"},
        {{"add", "--types", "default,tv"}, 2, "\"tv\" is no APN type"},
        {{"add", "--auth", "md5"}, 2, "use none, PAP, CHAP or PAP_CHAP"},
        {{"add", "--class", "web"}, 2, "use IMS, ADMN, INET or APP"},
        {{"add", "--max-conns", "70000"}, 2, "\"70000\" must be a whole number from 0 to 65535"},
        {{"add", "--apn", std::string(151, 'a')}, 2, "151 bytes; a profile holds 150"},
        {{"list", "--instance", "99"}, 2, "--instance"},
        {{"add", "--capacity", "0"}, 2, "--capacity"},
        {{"add", "--apn", "more"}, 1, "refused to create a profile: table full"},
        {{"provision", "--plmn", "00101"}, 2, "--apns"},
        {{"provision", "--apns", operators}, 2, "--plmn"},
        {{"provision", "--apns", operators, "--plmn", "0010"}, 2, "MCC (3 digits)"},
        {{"provision", "--apns", operators, "--plmn", "0011234"}, 2, "MCC (3 digits)"},
        {{"provision", "--apns", operators, "--plmn", "001003"}, 1, "001/03 (Klammfon), whose MNC"},
        {{"provision", "--apns", operators, "--plmn", "99901"}, 1, "it holds 5 operators"},
        {{"provision", "--apns", operators, "--plmn", "00177"}, 1, "of MCC 001: 001/04 (Modem 90)"},
        {{"provision", "--apns", operators, "--plmn", "00101", "--mvno", "spn:No"}, 1, "gid:BAE0"},
        {{"provision", "--apns", "none.xml", "--plmn", "00101"}, 1, "none.xml: cannot be read"},
        {{"provision", "--apns", broken, "--plmn", "00101"}, 1, "broken.xml:2:"},
        {{"attach", "--apns", operators, "--plmn", "00104", "--roam-ip", "NON-IP"}, 2, "--roam-ip"},
        {{"emergency", "--apns", operators, "--plmn", "00102"}, 1, "no entry for emergency call"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(join(each.arguments, " "));
        const ToolRun result = run(each.arguments);
        EXPECT_EQ(result.status, each.status);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, AllOf(HasSubstr(each.error), testing::StartsWith("velactl: ")));
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_EQ(contentOf(modem), before);
    }
    std::ofstream(modem) << "{\"modems\": 3}";
    EXPECT_EQ(run({"add", "--apn", "lost"}).status, 1);
    EXPECT_EQ(contentOf(modem), "{\"modems\": 3}");
}

TEST_F(Tool, NamesAModemThatItCannotKeep) {
    const std::pair<std::string, int> modems[] = {{"", 2}, {directory, 1}};
    for (const auto& [name, status] : modems) {
        const ToolRun result = runTool({"--modem", name, "add", "--apn", "a"});
        EXPECT_EQ(result.status, status);
        EXPECT_THAT(result.err, HasSubstr(status == 2 ? "name is empty" : "Is a directory"));
    }
}

TEST_F(Tool, KeepsACapacityThatIsGivenLater) {
    run({"add", "--apn", "a"});
    run({"--capacity", "1", "list"});
    EXPECT_EQ(run({"add", "--apn", "b"}).status, 1);
}

TEST_F(Tool, TellsAnAbsentValueFromOneThatIsNone) {
    run({"add", "--apn", "a"});
    EXPECT_THAT(run({"modify", "1", "--auth", "none", "--user", "", "--types", "none"}).out,
                HasSubstr("types (absent) -> none; auth (absent) -> none; user (absent) -> \"\""));
    const auto fields = runJson({"modify", "1", "--auth", "PAP"})["changes"][0]["fields"];
    EXPECT_EQ(fields["auth"], nlohmann::json::parse(R"({"before": "none", "after": "PAP"})"));
}

TEST_F(Tool, KeepsTheWorkWhenItsOutputCannotBeWritten) {
    std::ostream out(nullptr);
    std::ostringstream err;
    EXPECT_EQ(runVelactl({"--modem", modem, "add", "--apn", "kept"}, {out, err}), 1);
    EXPECT_THAT(err.str(), HasSubstr("velactl: the output could not be written"));
    EXPECT_EQ(runJson({"list"})["profiles"].size(), 1U);
}

TEST(Progress, StaysOnItsLineAndOutOfTheLog) {
    std::ostringstream out;
    std::ostringstream err;
    const std::vector<std::string> arguments{"provision", "--apns", VELACTL_OPERATORS, "--all"};
    runVelactl(arguments, {out, err, 30});
    for (const std::string& part : split(err.str(), '\r')) {
        EXPECT_LE(part.substr(0, part.find('\x1B')).size(), 29U) << part;
    }
    EXPECT_THAT(err.str(), HasSubstr("[####"));
    err.str("");
    auto logged = arguments;
    logged.emplace_back("--log");
    runVelactl(logged, {out, err, 30});
    EXPECT_THAT(err.str(), Not(HasSubstr("\r")));
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
    EXPECT_EQ(counted(1234567, "entry"), "1,234,567 entries");
}

TEST_F(Tool, DemoFollowsTheModemThroughForeignChangeAndRestart) {
    EXPECT_EQ(run({"demo"}).status, 1);
    run({"add", "--apn", "a"});
    const ToolRun demo = run({"--json", "demo"});
    EXPECT_EQ(demo.status, 0) << demo.err;
    const auto steps = demo.json()["steps"];
    ASSERT_EQ(steps.size(), 4U);
    const char* kinds[] = {"changed", "changed", "created", "deleted"};
    for (std::size_t i = 0; i < steps.size(); ++i) {
        ASSERT_EQ(steps[i]["changes"].size(), 1U);
        EXPECT_EQ(steps[i]["changes"][0]["change"], kinds[i]);
    }
    EXPECT_EQ(runJson({"show", "1"})["user"], "somebody");

    const ToolRun full = run({"--capacity", "1", "demo"});
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.out, HasSubstr("THIS DID NOT HAPPEN: the modem refused to create a profile"));
}

}  // namespace
}  // namespace velactl
