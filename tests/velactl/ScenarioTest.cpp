// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <fstream>
#include <iostream>
#include <regex>

#include "ToolRun.h"
#include "scenario/Completion.h"

namespace velactl {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Scenarios : public ModemFileTest {
  protected:
    ToolRun play(const std::string& text, std::vector<std::string> options = {}) const {
        const std::string path = directory / "story.scn";
        std::ofstream(path) << text;
        options.insert(options.begin(), {"run", path});
        return runTool(options);
    }
};

// Tokens go on counting for as long as the process lives.
std::string withoutTokens(const std::string& text) {
    return std::regex_replace(text, std::regex("token=[0-9]+"), "token");
}

TEST_F(Scenarios, TheStoriesThatAreShippedHoldAndRepeatThemselves) {
    std::size_t stories = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VELACTL_SCENARIOS)) {
        const std::vector<std::string> arguments{"run", "--journal", entry.path().string()};
        const ToolRun first = runTool(arguments);
        EXPECT_EQ(first.status, 0) << first.err;
        EXPECT_EQ(withoutTokens(runTool(arguments).out), withoutTokens(first.out)) << entry.path();
        ++stories;
    }
    EXPECT_GE(stories, 5U);
}

TEST_F(Scenarios, AFileThatMakesNoSenseIsRefusedBeforeItBegins) {
    struct Case {
        const char* line;
        const char* error;
    };
    const Case cases[] = {
        {"atach a", "unknown statement \"atach\"; did you mean \"attach\"?"},
        {"expect", "use expect ok, expect refused"},
        {"drop", "write it as: drop KEY"},
        {"add a b", "write it as: add KEY"},
        {"add a --home-ip v5", "use IPv4, IPv6 or IPv4v6"},
        {"add a --tech 5g", "--tech"},
        {"add a --colour red", "\"--colour\" is no option here; use --apn"},
        {"add a --apn", "--apn needs a value"},
        {"add a \"--apn\" b", "write it as: add KEY"},
        {"modify a", "nothing to change"},
        {"find a --id abc", "--id: \"abc\" must be a whole number from 0 to 255"},
        {"refresh later", "use started or completed"},
        {"fault bad-luck", "\"bad-luck\" is no fault; use send-failure"},
        {"fault refuse --message call", "use any, foreign, create"},
        {"fault table-full --message list",
         "means nothing for the message list; use any or create"},
        {"fault lose-indication --message list", "use any, foreign, create, modify or delete"},
        {"fault time-out --message foreign", "means nothing"},
        {"fault no-service-instance --message create", "means nothing"},
        {"fault refuse --probability nan", "must be a number from 0 to 1"},
        {"fault refuse --first 0", "whole number from 1"},
        {"fault refuse --value 010", "whole number"},
        {"fault send-failure --value 7", "is no messaging error; use -1"},
        {"foreign create colour=red", "is no setting=value"},
        {"foreign create pdp_type=many", "does not fit into pdp_type"},
        {"foreign modify 0 apn_name=a", "is no profile index; use a number from 1 to 255"},
        {"expect pending many", "is no count"},
        {"say \"half", "a quoted word without its closing"},
        {"say \x01", "a control character"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.line);
        const ToolRun result = play(std::string("say begun\n# a comment\n\n") + each.line + "\n");
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.out, IsEmpty());
        EXPECT_THAT(result.err, AllOf(HasSubstr("story.scn:4: "), HasSubstr(each.error)));
    }
    EXPECT_THAT(play(std::string(5000, 'x')).err, HasSubstr("story.scn:1: a line of 5000 bytes"));
    EXPECT_THAT(runTool({"run", directory / "none.scn"}).err, HasSubstr("cannot be read: No such"));
    EXPECT_THAT(runTool({"run", directory}).err, HasSubstr("is a directory; a scenario is needed"));
    EXPECT_THAT(runTool({"run", "/dev/zero"}).err, HasSubstr("larger than 1 MiB"));
    EXPECT_THAT(runTool({"--modem", "/dev/full", "list"}).err, HasSubstr("not a regular file"));
}

// A modem with profile 1 that both sides know, and the key of a temporary one that expired once.
constexpr const char* kSetting = R"(add kept --apn "my net" --password "a secret"
add call --temporary --apn call
listen call
foreign modify 2 apn_name=other
)";

TEST_F(Scenarios, TellsNoPasswordInWhicheverWayItIsWritten) {
    const char* const statements[] = {
        "add k --password secret",
        "add k --password a\"b secret\"",
        "add k --password=\"a secret\"",
        "add k --user u --password=\"--secret\"",
        "foreign create password=secret",
        "foreign create \"password=a secret\"",
        "foreign create --tech 3GPP2 authentication_password=secret",
        "foreign create --tech 3GPP2 pdn_level_authentication_password=secret",
        "add k\nmodify k \"--password\" secret",
        "say never\nexpect log \"Password=a secret\"",
    };
    for (const char* statement : statements) {
        const ToolRun masked = play(statement);
        EXPECT_THAT(masked.out + masked.err, Not(HasSubstr("secret"))) << statement;
    }
    EXPECT_THAT(play(statements[1], {"--show-secrets"}).out,
                HasSubstr("> add k --password \"ab secret\"\n"));
}

TEST_F(Scenarios, TakesTextThatBeginsWithADash) {
    const ToolRun result = play(
        "say the option --tech -- is\n"
        "add a --user \"--u\" --password=-p\n"
        "expect key a --user \"--u\" --password \"-p\"\n"
        "fault send-failure --value -3\n");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("the option --tech -- is\n"));
}

TEST_F(Scenarios, AnExpectationHoldsOrEndsTheStoryAtItsLine) {
    struct Case {
        const char* holds;
        const char* fails;
        const char* found;
    };
    const Case cases[] = {
        {"expect ok", "expect refused", "the last operation was not refused"},
        {"expect profiles 2", "expect profiles 3", "the modem holds 2 profiles"},
        {"expect modem 1 --apn \"my net\"", "expect modem 1 --apn mynet", "apn is my net"},
        {"expect no-modem 3", "expect no-modem 1", "there is 3GPP profile 1"},
        {"expect library 2 --apn other", "expect library 3", "there is no profile 3"},
        {"expect no-library 1 --tech 3GPP2", "expect no-library 2", "there is 3GPP profile 2"},
        {"expect key call --apn other", "expect key call --apn call", "apn is other"},
        {"expect key kept --password \"a secret\"", "expect key kept --class IMS",
         "class is absent"},
        {"expect expired call", "expect expired call 0", "its listener was called 1 time"},
        {"expect expired kept 0", "expect expired kept", "its listener was called 0 times"},
        {"expect agree", "expect disagree", "library and modem agree"},
        {"expect pending 0", "expect pending 1", "the library expects 0 indications"},
        {"expect log \"Added: \"", "expect log nonsense", "no log line holds"},
        {"expect key kept", "expect stale kept", "the key names a profile"},
        {"expect key kept", "expect key none", "held are call, kept"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.fails);
        const ToolRun holding = play(std::string(kSetting) + each.holds + "\n");
        EXPECT_EQ(holding.status, 0) << holding.err;
        EXPECT_THAT(holding.out, AllOf(HasSubstr("5 statements, all as expected"),
                                       HasSubstr("expired: call"), Not(HasSubstr("secret"))));
        const ToolRun failing = play(std::string(kSetting) + each.fails + "\nsay never\n");
        EXPECT_EQ(failing.status, 1);
        EXPECT_THAT(failing.err, AllOf(HasSubstr("story.scn:5: "), HasSubstr(each.found)));
        EXPECT_THAT(failing.out, Not(HasSubstr("never")));
    }
}

TEST_F(Scenarios, AnOperationIsJudgedByItsOwnRequests) {
    struct Case {
        const char* story;
        const char* outcome;
        const char* told;
    };
    const Case cases[] = {
        {"add a", "ok", "a is 3GPP:1"},
        {"fault refuse --value 72\nadd a", "refused", "refused to create a profile: error 72"},
        {"fault time-out-after-effect\nadd a", "refused",
         "the modem did not answer the request to create a profile\n"},
        {"fault send-failure --value -4\nadd a", "refused",
         "the request to create a profile was not sent: messaging error -4"},
        {"fault table-full --message create\nadd a\nservice down\nadd b", "refused",
         "was not sent: the library is not connected to the modem"},
        {"hold\nservice down\nadd a", "refused",
         "did not answer the request to create a profile: its"},
        {"fault refuse --message list\nrefresh completed", "refused",
         "refused to list the profiles"},
        {"add a\nfault time-out --message read\nrefresh completed", "refused", "to read a profile"},
        {"add a\nfault refuse --message modify\nmodify a --apn x", "refused", "reports success"},
        {"add a --apn x\nmodify a --apn x", "ok", "reports success"},
        {"add a\nfault refuse --message read\nforeign modify 1 apn_name=y\nmodify a --apn x",
         "refused", "and sent nothing"},
        {"add a --temporary\nfault time-out --message delete\nadd a", "ok",
         "did not answer the request to delete a profile"},
        {"add a --temporary\nfault refuse --message delete\ndrop a", "refused",
         "refused to delete a profile"},
    };
    for (const Case& each : cases) {
        const ToolRun result = play(each.story + std::string("\nexpect ") + each.outcome);
        EXPECT_EQ(result.status, 0) << each.story << result.err;
        EXPECT_THAT(result.out, HasSubstr(each.told)) << each.story;
    }
}

TEST_F(Scenarios, WhatIsNotKnownIsNotExpected) {
    const std::pair<const char*, const char*> stories[] = {
        {"expect ok", "there has been no operation yet"},
        {"expect refused", "there has been no operation yet"},
        {"add a\nfault refuse\nadd a\nexpect key a", "no key is held as \"a\""},
        {"refresh started\nexpect no-library 1", "answers nothing until refresh completed"},
        {"add a\nrefresh started\nexpect stale a", "answers nothing until refresh completed"},
    };
    for (const auto& [story, error] : stories) {
        const ToolRun result = play(story);
        EXPECT_EQ(result.status, 1) << story;
        EXPECT_THAT(result.err, HasSubstr(error));
    }
    EXPECT_THAT(
        play("foreign create apn_name=BiG\nrefresh started\nshow\nrefresh completed\n"
             "expect modem 1 --apn bIG\nexpect library 1 --apn Big\nexpect agree")
            .out,
        AllOf(HasSubstr("  BiG\n  the library: answers nothing"), HasSubstr("as expected")));
}

TEST_F(Scenarios, AStoryThatFailsTellsItsJournal) {
    const std::string story = "add a\nkeys\nexpect refused";
    const ToolRun text = play(story, {"--quiet", "--journal"});
    EXPECT_EQ(text.status, 1);
    EXPECT_THAT(text.out, AllOf(testing::StartsWith("  a is"), HasSubstr("\"create profile\"")));
    const ToolRun json = play(story, {"--json", "--journal"});
    EXPECT_EQ(json.status, 1);
    EXPECT_EQ(json.json()["passed"], false);
    EXPECT_THAT(json.json()["error"], HasSubstr("story.scn:3: expected otherwise"));
    EXPECT_GT(json.json()["journal"].size(), 10U);
}

TEST_F(Scenarios, FaultsAndOrderAreTheWritersChoice) {
    const ToolRun result = play(R"(fault refuse --message create --first 2 --value 72
add a --temporary
add b
expect refused
no-faults
hold
foreign create apn_name=late
expect no-library 2
deliver
expect library 2 --apn late
release
service down
add c
expect refused
service up
drop a
expect no-modem 1
fault time-out --probability 0.5 --count 0
add x
add y
add z
)",
                                {"--json"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.json()["statements"], 21);
    EXPECT_EQ(result.json()["passed"], true);
}

TEST(Completion, OffersTheNextWordThatMakesSense) {
    const std::vector<std::string> keys{"call", "kept"};
    EXPECT_THAT(completionsOf("re", keys), ElementsAre("refresh", "release", "restart"));
    EXPECT_THAT(completionsOf("expect ke", keys), ElementsAre("key"));
    EXPECT_THAT(completionsOf("expect key ", keys), ElementsAre("call", "kept"));
    EXPECT_THAT(completionsOf("expect key kept ", keys), Contains("--apn"));
    EXPECT_THAT(completionsOf("fault time", keys),
                ElementsAre("time-out", "time-out-after-effect"));
    EXPECT_THAT(completionsOf("refresh ", keys), ElementsAre("completed", "started"));
    EXPECT_THAT(completionsOf("foreign modify 1 --", keys), ElementsAre("--tech"));
    EXPECT_THAT(completionsOf("drop k", keys), ElementsAre("kept"));
    EXPECT_THAT(completionsOf("bogus ", keys), IsEmpty());
    EXPECT_THAT(completionsOf("", keys), AllOf(Contains("quit"), Contains("expect")));
}

TEST_F(Scenarios, TheShellReadsStatementsFromAPipe) {
    std::istringstream typed(
        "add a --temporary --apn shell\nexpect modem 1 --apn shell\nbogus\nquit now\n\nhelp fault\n"
        "help bogus\nkeys\nquit\nsay no\n");
    auto* const terminal = std::cin.rdbuf(typed.rdbuf());
    const ToolRun result = runTool({"shell"});
    std::cin.rdbuf(terminal);
    std::cin.clear();
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, AllOf(HasSubstr("a is "), HasSubstr("--probability"),
                                  Not(HasSubstr("no\n")), Not(HasSubstr("subscription-change"))));
    EXPECT_THAT(result.err, AllOf(HasSubstr("line 3: unknown statement \"bogus\""),
                                  HasSubstr("line 4: write it as: quit"),
                                  HasSubstr("line 7: no statement \"bogus\"")));
    EXPECT_EQ(runTool({"--json", "shell"}).status, 2);
}

}  // namespace
}  // namespace velactl
