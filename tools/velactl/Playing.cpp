// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velactl/Playing.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "profiles/Text.h"
#include "scenario/Help.h"
#include "scenario/Scenario.h"
#include "scenario/Shell.h"

namespace velactl {

namespace {

/** The text as an attribute's value in XML; what that cannot hold is escaped as for a terminal. */
std::string attribute(std::string_view text) {
    constexpr std::string_view kSpecial = "&<>\"";
    constexpr std::string_view kNames[] = {"&amp;", "&lt;", "&gt;", "&quot;"};
    std::string result = "\"";
    for (const char byte : printable(text)) {
        const std::size_t place = kSpecial.find(byte);
        result += place == std::string_view::npos ? std::string_view(&byte, 1) : kNames[place];
    }
    return result + '"';
}

/** A file's part of a JUnit report. */
std::string testCase(const Json& story, double seconds) {
    return "  <testcase classname=\"scenario\" name=" +
           attribute(story["file"].get<std::string>()) + " time=\"" + std::to_string(seconds) +
           '"' +
           (story["passed"] == true
                ? "/>\n"
                : ">\n    <failure message=" + attribute(story["error"].get<std::string>()) +
                      "/>\n  </testcase>\n");
}

void writeReport(const std::string& path, std::size_t count, std::size_t failures,
                 const std::string& cases) {
    std::ofstream file(path);
    file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"velactl\" tests=\""
         << count << "\" failures=\"" << failures << "\">\n"
         << cases << "</testsuite>\n";
    if (!file.flush()) {
        throw refused(path + ": the report cannot be written");
    }
}

/** A report over a scenario that it tells of is easily asked for: by leaving out its name. */
void checkReport(const Arguments& arguments) {
    const std::string report = arguments.text("--junit");
    for (const std::string& file : arguments.words) {
        std::error_code error;
        if (file == report || std::filesystem::equivalent(file, report, error)) {
            throw badUsage("--junit: " + inQuotes(report) +
                           " is a scenario to be played; name a file for the report");
        }
    }
}

/** Takes the first step's failure, and what that leaves to do. */
template <typename Step>
void attempt(Json& story, Step step) {
    try {
        step();
    } catch (const ToolError& error) {
        story["passed"] = false;
        story["status"] = static_cast<int>(error.status());
        story["error"] = error.what();
        story["line"] = error.line() == 0 ? Json() : Json(error.line());
    }
}

/** Plays a file in a stage of its own; returns what became of it. */
Json playFile(const Setting& outer, const Arguments& arguments, const std::string& file) {
    Json story{{"file", file},    {"statements", 0}, {"passed", true},         {"status", 0},
               {"error", Json()}, {"line", Json()},  {"played", Json::array()}};
    std::ostream unseen(nullptr);
    Output details(arguments.has("--quiet") ? unseen : outer.story.text(), outer.err, outer.form);
    Stage stage({outer.modem, outer.form, outer.story, details, outer.log, outer.err});
    attempt(story, [&] {
        const Scenario scenario = Scenario::load(file);
        story["statements"] = scenario.size();
        scenario.play(stage, story["played"]);
    });
    if (arguments.has("--journal") && story["statements"] != 0) {
        attempt(story, [&] {
            Statement({{"journal"}}).play(stage);
            story["journal"] = stage.document()["journal"];
        });
    }
    if (story["passed"] == true) {
        attempt(story, [&stage] { stage.save(); });
    }
    return story;
}

/** Plays the files, each with a modem of its own. */
void run(Stage& stage, const Arguments& arguments) {
    Json stories = Json::array();
    std::string cases;
    std::size_t statements = 0;
    std::size_t failures = 0;
    Exit worst = Exit::Done;
    for (const std::string& file : arguments.words) {
        const auto start = std::chrono::steady_clock::now();
        const Json& story = stories.emplace_back(playFile(stage.options(), arguments, file));
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        cases += testCase(story, time.count());
        const auto count = story["statements"].get<std::size_t>();
        statements += count;
        worst = std::max(worst, static_cast<Exit>(story["status"].get<int>()));
        if (story["passed"] == true) {
            stage.story().line(file + ": " + counted(count, "statement") + ", all as expected");
            continue;
        }
        ++failures;
        if (arguments.words.size() > 1) {
            stage.story().note(story["error"].get<std::string>());
        }
    }
    stage.document().update(
        {{"statements", statements}, {"passed", failures == 0}, {"files", stories}});
    if (arguments.has("--junit")) {
        writeReport(arguments.text("--junit"), arguments.words.size(), failures, cases);
    }
    if (failures != 0) {
        throw ToolError(worst, arguments.words.size() == 1
                                   ? stories[0]["error"].get<std::string>()
                                   : std::to_string(failures) + " of " +
                                         counted(arguments.words.size(), "scenario") + " failed");
    }
}

void shell(Stage& stage, const Arguments& /*arguments*/) {
    if (!stage.story().isText()) {
        throw badUsage("a shell has no JSON document; velactl --json run FILE plays a scenario");
    }
    const Exit exit = runShell(stage);
    if (exit != Exit::Done) {
        throw ToolError(exit, "");  // its errors have been told
    }
}

std::string overallHelp() {
    return "Reads and changes the data profiles of a cellular modem through libvelar.\n"
           "Usage: velactl [options] VERB ...\n\n" +
           helpOf(verbs(), kVerb) + helpOf(optionsOf(kEveryVerb)) +
           "\nThe options may stand before or behind the verb.\n" + kLegend +
           "\nExit status: 0 done, 1 refused or not found, 2 bad usage.\n";
}

/** Of a verb, or of statements that are none. */
std::string helpOn(const Names& words) {
    const Operations named = operationsNamed(verbs(), words);
    if (!named.empty()) {
        return helpOf(named, kVerb) + helpOf(optionsOf(kEveryVerb));
    }
    const Operations statements = operationsNamed(operationsAt(kStatement), words);
    if (statements.empty()) {
        operationOf(verbs(), words, "verb");
    }
    return helpOf(statements, kStatement);
}

void help(Stage& stage, const Arguments& arguments) {
    const std::string text = arguments.has("--verbs") ? tablesOf(verbs(), kVerb)
                             : arguments.has("--statements")
                                 ? tablesOf(operationsAt(kStatement), kStatement)
                             : arguments.words.empty() ? overallHelp()
                                                       : helpOn(arguments.words);
    answer(stage.story(), text);
}

}  // namespace

void answer(Output& output, const std::string& text) {
    if (output.isText()) {
        output.text() << text;
    }
    output.document()["text"] = text;
}

const Operations& verbs() {
    static const Operations all = [] {
        Operations list = operationsAt(kVerb);
        Operations own{
            {"run", "FILE [FILE...]", kSeed | kPlaying, kVerb,
             "play scenarios, each on a modem of its own", run, checkReport},
            {"shell", "", kSeed, kVerb, "a prompt for the statements of scenarios", shell},
            {"help", "[VERB...]", kTables, kVerb, "this help, or that of a verb", help},
        };
        for (Operation& operation : own) {
            operation.section = operation.run == help ? "Help" : "Scenarios";
            list.push_back(operation);
        }
        return list;
    }();
    return all;
}

}  // namespace velactl
