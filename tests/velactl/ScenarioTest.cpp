// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <iostream>
#include <regex>

#include "ToolRun.h"
#include "scenario/Operation.h"

namespace velactl {
namespace {

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
    const std::pair<const char*, const char*> cases[] = {
        {"atach a", "\"atach\" is not a statement; did you mean \"attach\"?"},
        {"forein create", "did you mean \"foreign create\"?"},
        {"service donw", "did you mean \"service down\"?"},
        {"expect nothing", "use expect ok"},
        {"add \"\"", "an empty word"},
        {"add --apn x --apn y", "--apn is given twice"},
        {"add --no-clat --clat", "--clat and --no-clat exclude each other"},
        {"add --clat=no", "--clat takes no value"},
        {"add a b", "write it as: add [KEY]"},
        {"add a --colour red", "\"--colour\" is not an option here; use --apn"},
        {"add a --apn", "--apn needs a value"},
        {"add a \"--apn\" b", "write it as: add [KEY]"},
        {"modify a", "nothing to change"},
        {"find a --index abc", "\"abc\" must be a whole number from 0 to 255"},
        {"add --ia --tech 3GPP2", "only 3GPP profiles serve the LTE attach"},
        {"fault bad-luck", "\"bad-luck\" is not a fault; use send-failure"},
        {"fault table-full --message list",
         "\"list\" means nothing for table-full; use any or create"},
        {"fault refuse --probability nan", "must be a number from 0 to 1"},
        {"fault refuse --first 0", "whole number from 1"},
        {"fault send-failure --value 7", "is not a messaging error; use -1"},
        {"foreign create colour=red", "is not of the form setting=value"},
        {"foreign create pdp_type=many", "use IPv4, IPv6 or IPv4v6"},
        {"foreign create --tech 3GPP2 --roam-ip IPv4", "has no such setting"},
        {"say \"half", "a quoted word without its closing"},
    };
    for (const auto& [line, error] : cases) {
        SCOPED_TRACE(line);
        const ToolRun result = play(std::string("say begun\n# a comment\n\n") + line + "\n");
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, AllOf(HasSubstr("story.scn:4: "), HasSubstr(error)));
    }
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
        "add k --password a\"b secret\"",
        "add k --user u --password=\"--secret\"",
        "foreign create \"password=a secret\"",
        "foreign create --tech 3GPP2 pdn_level_authentication_password=secret",
        "add k\nmodify k \"--password\" secret",
    };
    for (const char* statement : statements) {
        const ToolRun masked = play(statement);
        EXPECT_THAT(masked.out + masked.err, Not(HasSubstr("secret"))) << statement;
    }
    EXPECT_THAT(play(statements[0], {"--show-secrets"}).out,
                HasSubstr("> add k --password a\"b secret\"\n"));
}

TEST_F(Scenarios, AnExpectationHoldsOrEndsTheStoryAtItsLine) {
    const std::array<const char*, 3> cases[] = {
        {"expect ok", "expect refused", "the last operation was not refused"},
        {"expect modem 1 --apn \"my net\"", "expect modem 1 --apn mynet", "apn is my net"},
        {"expect library 2 --apn other", "expect library 3", "there is no profile 3"},
        {"expect key call --apn other", "expect key call --apn call", "apn is other"},
        {"expect key kept --password \"a secret\"", "expect key kept --class IMS",
         "class is absent"},
        {"expect expired call", "expect expired call 0", "its listener was called 1 time"},
        {"expect agree", "expect disagree", "library and modem agree"},
        {"expect pending 0", "expect pending 1", "the library expects 0 indications"},
        {"expect modem call --temporary", "expect no-modem call", "there is 3GPP profile 2"},
        {"expect library kept --persistent --made-by VELA", "expect modem 1 --made-by others",
         "made_by is vela"},
        {"expect key kept", "expect stale kept", "the key names a profile"},
    };
    for (const auto& [holds, fails, found] : cases) {
        SCOPED_TRACE(fails);
        const ToolRun holding = play(std::string(kSetting) + holds + "\n");
        EXPECT_EQ(holding.status, 0) << holding.err;
        EXPECT_THAT(holding.out, AllOf(HasSubstr("5 statements, all as expected"),
                                       HasSubstr("expired: call"), Not(HasSubstr("secret"))));
        const ToolRun failing = play(std::string(kSetting) + fails + "\nsay never\n");
        EXPECT_EQ(failing.status, 1);
        EXPECT_THAT(failing.err, AllOf(HasSubstr("story.scn:5: "), HasSubstr(found)));
        EXPECT_THAT(failing.out, Not(HasSubstr("never")));
    }
}

TEST_F(Scenarios, AnOperationIsJudgedByItsOwnRequests) {
    const std::array<const char*, 3> cases[] = {
        {"fault send-failure --value -4\nadd a", "refused",
         "did not answer the request to create a profile: messaging error -4"},
        {"hold\nservice down\nadd a", "refused",
         "did not answer the request to create a profile: its"},
        {"fault refuse --message list\nrefresh completed", "refused",
         "refused to list the profiles"},
        {"add a --apn x\nmodify a --apn x", "ok", "reports success"},
        {"add a\nfault refuse --message read\nforeign modify 1 apn_name=y\nmodify a --apn x",
         "refused", "and sent nothing"},
        {"add a --temporary\nfault time-out --message delete\nadd a", "ok",
         "did not answer the request to delete a profile"},
        {"add a --temporary\nfault refuse --message delete\ndrop a", "refused",
         "refused to delete a profile"},
        {"fault time-out --message read\nforeign create apn_name=q\nmodify 1 --apn x", "refused",
         "the library could not read 3GPP profile 1: the modem did not answer"},
        {"fault refuse --message read\nforeign create apn_name=q\nfind --index 1", "refused",
         "no profile matches"},
        {"attach ia --apn a\nmatch-attach ia --apn nowhere", "refused", "no-match"},
        {"data-call a --apn a\nexpect modem a --temporary --made-by vela\ninit\nexpect stale a\n"
         "init --instance 1\nexpect profiles 0\nadd b",
         "ok", "b is 3GPP:1"},
        {"fault refuse --first 2 --value 72\nadd a\nadd b", "refused",
         "refused to create a profile: error 72"},
        {"fault refuse --probability 0\nadd a", "ok", "a is 3GPP:1"},
        {"fault restart-after-response --message create\ndata-call k --apn new", "refused",
         "it is not in the modem"},
        {"service down\nadd a\nservice up\nadd b\nexpect agree", "ok", "b is 3GPP:1"},
    };
    for (const auto& [story, outcome, told] : cases) {
        const ToolRun result = play(story + std::string("\nexpect ") + outcome);
        EXPECT_EQ(result.status, 0) << story << result.err;
        EXPECT_THAT(result.out, HasSubstr(told)) << story;
    }
}

TEST_F(Scenarios, WhatIsNotKnownIsNotExpected) {
    const std::pair<const char*, const char*> stories[] = {
        {"expect ok", "there has been no operation yet"},
        {"add a\nfault refuse\nadd a\nexpect key a", "no key is held as \"a\""},
        {"refresh started\nexpect no-library 1", "answers nothing until refresh completed"},
    };
    for (const auto& [story, error] : stories) {
        const ToolRun result = play(story);
        EXPECT_EQ(result.status, 1) << story;
        EXPECT_THAT(result.err, HasSubstr(error));
    }
    EXPECT_THAT(play("foreign create apn_name=BiG\nrefresh started\nshow\nrefresh completed\n"
                     "expect modem 1 --apn bIG\nexpect library 1 --apn Big\nexpect agree")
                    .out,
                AllOf(HasSubstr("  BiG\nThe library: answers nothing"), HasSubstr("as expected")));
}

TEST_F(Scenarios, TakeTextThatBeginsWithADashAndWordsForTheModemsNumbers) {
    const ToolRun result = play(R"(say the option --tech -- is
add a --user "--u" --password=-p
expect key a --user "--u" --password "-p"
fault send-failure --value -3 --first 9
foreign create
foreign modify 2 pdp_type=IPv4 override_home_pdp_type=255 apn_type_mask=default,mms clat_enabled=yes
expect library 2 --home-ip IPv4 --types default,mms --clat
foreign create --tech 3GPP2 --user me --types ia authentication_protocol=CHAP
expect modem 1 --tech 3GPP2 --user me --types ia --auth CHAP
expect agree
)");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("the option --tech -- is\n"));
}

TEST_F(Scenarios, AStoryThatFailsTellsItsJournal) {
    const std::string story = "add a\nkeys\nexpect refused";
    const ToolRun text = play(story, {"--quiet", "--journal"});
    EXPECT_EQ(text.status, 1);
    EXPECT_THAT(text.out, AllOf(testing::StartsWith("a is"), HasSubstr("\"create profile\"")));
    const ToolRun json = play(story, {"--json", "--journal"});
    EXPECT_EQ(json.status, 1);
    const auto file = json.json()["files"][0];
    EXPECT_THAT(file["error"], HasSubstr("story.scn:3: not as expected"));
    EXPECT_EQ(file["line"], 3);
    EXPECT_EQ(file["played"][0]["index"], 1);
    EXPECT_EQ(file["played"][2]["status"], 1);
    EXPECT_GT(file["journal"].size(), 10U);
}

TEST_F(Scenarios, SeveralFilesArePlayedEachOnAModemOfItsOwnAndReported) {
    const std::string report = directory / "report.xml";
    const std::string other = directory / "other.scn";
    const std::string empty = directory / "e<m>pty.scn";
    std::ofstream(other) << "\xEF\xBB\xBF"
                         << "expect profiles 0\r\n";
    std::ofstream(empty) << "# nothing\n";
    EXPECT_EQ(play("add a", {"--junit", ""}).status, 2);
    const ToolRun result = play("add a", {other, empty, "--json", "--junit", report});
    EXPECT_EQ(result.status, 1);
    const auto json = result.json();
    EXPECT_EQ(json["statements"], 2);
    EXPECT_EQ(json["files"][1]["passed"], true);
    EXPECT_THAT(json["files"][2]["error"], HasSubstr("without a statement"));
    EXPECT_THAT(
        contentOf(report),
        AllOf(HasSubstr("tests=\"3\" failures=\"1\""), HasSubstr("/e&lt;m&gt;pty.scn\" time="),
              HasSubstr("<failure message=\""), HasSubstr("</testsuite>")));
}

TEST(Completion, OffersTheNextWordThatMakesSense) {
    const velatest::TempFolder folder;
    std::ofstream(folder.path() / "apns.xml").flush();
    std::filesystem::create_directory(folder.path() / "apart");
    const std::string files = folder.path().string() + '/';
    const auto present = [](const std::string& placeholder) {
        return placeholder == "KEY" ? Names{"call", "kept"} : Names{"1", "12"};
    };
    const std::pair<std::string, Names> lines[] = {
        {"re", {"refresh", "release", "restart"}},
        {"expect key k", {"kept"}},
        {"fault time", {"time-out", "time-out-after-effect"}},
        {"delete ", {"--tech", "1", "12", "call", "kept"}},
        {"fault refuse --message re", {"read", "register"}},
        {"foreign modify 1 --apn x pdp", {"pdp_type="}},
        {"bogus ", {}},
        {"qu", {"quit"}},
        {"attach --apns " + files + "ap", {files + "apart/", files + "apns.xml"}},
    };
    for (const auto& [line, words] : lines) {
        EXPECT_EQ(completionsOf(line, present), words) << line;
    }
}

TEST_F(Scenarios, TheShellReadsStatementsFromAPipe) {
    std::istringstream typed(
        "\xEF\xBB\xBF"
        "add a --temporary --apn shell\nexpect modem 1 --apn shell\nbogus\nquit now\n\n"
        "help fault\nhelp bogus\nkeys\nquit\nsay no\n");
    auto* const terminal = std::cin.rdbuf(typed.rdbuf());
    const ToolRun result = runTool({"shell"});
    std::cin.rdbuf(terminal);
    std::cin.clear();
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, AllOf(HasSubstr("a is "), HasSubstr("--probability"),
                                  Not(HasSubstr("no\n")), Not(HasSubstr("subscription-change"))));
    EXPECT_THAT(result.err, AllOf(HasSubstr("line 3: \"bogus\" is not a statement"),
                                  HasSubstr("line 4: write it as: quit"),
                                  HasSubstr("line 7: \"bogus\" is not a statement")));
    EXPECT_EQ(runTool({"--json", "shell"}).status, 2);
}

TEST_F(Scenarios, TheShellsHistoryKeepsWhatMakesSenseAndIsNoSecret) {
    const std::pair<const char*, bool> lines[] = {
        {"keys", true},
        {"help fault", true},
        {"ad a geheim", false},
        {"help geheim", false},
        {"add a --user u --password geheim", false},
        {"add a --pa\"ss\"word geheim", false},
        {"say last", true},
    };
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    std::string typed;
    for (const auto& line : lines) {
        typed += line.first + std::string("\n");
    }
    typed += "quit\n";
    ASSERT_EQ(::write(terminal, typed.data(), typed.size()), typed.size());
    const std::string shell = "XDG_STATE_HOME=" + directory.string() +
                              " " VELACTL_COMMAND " shell <" + ::ptsname(terminal) + " >" +
                              (directory / "out").string() + " 2>&1";
    EXPECT_EQ(std::system(shell.c_str()), 0);
    ::close(terminal);
    const std::string history =
        std::regex_replace(contentOf(directory / "velactl/history"), std::regex("\\\\040"), " ");
    EXPECT_THAT(history, Not(HasSubstr("gehe")));
    for (const auto& [line, isKept] : lines) {
        EXPECT_EQ(history.find(line) != std::string::npos, isKept) << line << history;
    }
}

TEST_F(Scenarios, TheShellSavesTheModemAfterEachStatement) {
    // What comes next waits until the file is what the statement before has made of it.
    const std::string await =
        "timeout 20 sh -c 'until test \"$(grep -c kept " + modem + ")\" $0; do sleep 0.02; done' ";
    const std::string shell = "(set -e; echo add a --apn kept; " + await + "'-gt 0'; " +
                              "echo delete a; " + await + "'-eq 0'; touch " + modem + ".seen) | " +
                              VELACTL_COMMAND " --modem " + modem + " shell >/dev/null 2>&1";
    EXPECT_EQ(std::system(shell.c_str()), 0);
    EXPECT_TRUE(std::filesystem::exists(modem + ".seen"));
}

/** Every line of the tables of operations, and no other, is in the documents. */
TEST(Documents, ListTheOperationsAsTheyAre) {
    for (const auto& [name, places] :
         {std::pair{"velactl.md", "verbs"}, {"scenarios.md", "statements"}}) {
        EXPECT_THAT(contentOf(std::string(VELACTL_DOCS) + "/" + name),
                    HasSubstr(runTool({"help", std::string("--") + places}).out))
            << name;
    }
}

}  // namespace
}  // namespace velactl
