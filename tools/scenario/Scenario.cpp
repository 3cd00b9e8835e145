// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// Reads scenarios and plays them.
#include <algorithm>
#include <chrono>
#include <fstream>
#include <utility>

#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

/** The text as an attribute's value in XML; what that cannot hold is escaped as for a terminal. */
std::string attribute(const Json& text) {
    constexpr std::string_view kSpecial = "&<>\"";
    constexpr std::string_view kNames[] = {"&amp;", "&lt;", "&gt;", "&quot;"};
    std::string result = "\"";
    for (const char byte : printable(text.get<std::string>())) {
        const std::size_t place = kSpecial.find(byte);
        result += place == std::string_view::npos ? std::string_view(&byte, 1) : kNames[place];
    }
    return result + '"';
}

/** A file's part of a JUnit report. */
std::string testCase(const Json& story, std::chrono::duration<double> time) {
    return "  <testcase classname=\"scenario\" name=" + attribute(story["file"]) + " time=\"" +
           std::to_string(time.count()) + '"' +
           (story["passed"] == true
                ? "/>\n"
                : ">\n    <failure message=" + attribute(story["error"]) + "/>\n  </testcase>\n");
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

/** Takes the step's failure. */
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

/** Adds the document of each statement to `played`. Throws ToolError that names the line. */
void play(const Scenario& scenario, Stage& stage, Json& played) {
    for (const auto& [line, text, statement] : scenario.steps) {
        if (statement.operation().name() != "say") {
            stage.details().line("> " + shownStatement(text, stage.showSecrets()));
        }
        const auto keep = [&, number = line](Exit status, const std::string& error) {
            played.push_back(stage.takeDocument(status, error));
            played.back()["line"] = number;
        };
        try {
            statement.play(stage);
            keep(stage.refusal().empty() ? Exit::Done : Exit::Refused, stage.refusal());
        } catch (const ToolError& error) {
            keep(error.status(), error.what());
            throw atLine(scenario.name, line, error);
        }
    }
}

/** Plays a file in a stage of its own; returns what became of it. */
Json playFile(const Setting& outer, const Arguments& arguments, const std::string& file) {
    constexpr std::size_t kMaxFile = 1U << 20U;
    Json story{{"file", file},    {"statements", 0}, {"passed", true},         {"status", 0},
               {"error", Json()}, {"line", Json()},  {"played", Json::array()}};
    std::ostream unseen(nullptr);
    Output details(arguments.has("--quiet") ? unseen : outer.story.text(), outer.err, outer.form);
    Stage stage({outer.modem, outer.form, outer.story, details, outer.err});
    attempt(story, [&] {
        const Scenario scenario(readText(file, kMaxFile, "a scenario"), file);
        story["statements"] = scenario.steps.size();
        play(scenario, stage, story["played"]);
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
    int worst = 0;
    for (const std::string& file : arguments.words) {
        const auto start = std::chrono::steady_clock::now();
        const Json& story = stories.emplace_back(playFile(stage.options(), arguments, file));
        cases += testCase(story, std::chrono::steady_clock::now() - start);
        const auto count = story["statements"].get<std::size_t>();
        statements += count;
        worst = std::max(worst, story["status"].get<int>());
        if (story["passed"] == true) {
            stage.story().line(file + ": " + counted(count, "statement") + ", all as expected");
        } else if (++failures; arguments.words.size() > 1) {
            stage.story().note(story["error"].get<std::string>());
        }
    }
    stage.document().update(
        {{"statements", statements}, {"passed", failures == 0}, {"files", stories}});
    if (arguments.has("--junit")) {
        writeReport(arguments.text("--junit"), stories.size(), failures, cases);
    }
    if (failures != 0) {
        throw ToolError(static_cast<Exit>(worst),
                        stories.size() == 1 ? stories[0]["error"].get<std::string>()
                                            : std::to_string(failures) + " of " +
                                                  counted(stories.size(), "scenario") + " failed");
    }
}

}  // namespace

Scenario::Scenario(std::string_view text, std::string scenarioName)
    : name(std::move(scenarioName)) {
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        try {
            const ScenarioWords words = splitStatement(line);
            if (!words.empty()) {
                steps.push_back({number, std::string(line), Statement(words)});
            }
        } catch (const ToolError& error) {
            throw atLine(name, number, error);
        }
    }
    if (steps.empty()) {
        throw refused(name + ": a scenario without a statement; it proves nothing");
    }
}

Operations playOperations() {
    return {
        sectionOf("Scenarios"),
        {"run FILE [FILE...]", "play scenarios, each on a modem of its own", run, kSeed | kPlaying,
         kVerb},
        {"shell", "a prompt for the statements of scenarios", runShell, kSeed, kVerb},
    };
}

}  // namespace velactl
