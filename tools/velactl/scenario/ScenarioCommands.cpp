// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/ScenarioCommands.h"

#include <unistd.h>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <optional>
#include <sstream>

#include "NumberOption.h"
#include "Text.h"
#include "scenario/Completion.h"
#include "scenario/LineEditor.h"
#include "scenario/Scenario.h"

namespace velactl {

namespace {

ModemOptions seededModem(const Context& context, std::uint64_t seed) {
    ModemOptions modem = context.options.modem;
    modem.seed = seed;
    return modem;
}

/** The statements whose names begin with these words. */
void printHelp(std::ostream& out, const std::vector<ScenarioWord>& words) {
    constexpr int kColumn = 24;
    const auto kinds = kindsNamed(words);
    if (kinds.empty()) {
        throw badUsage("no statement " + inQuotes(joinStatement(words, false)) +
                       "; help alone lists all");
    }
    for (const StatementKind& kind : kinds) {
        const std::string form = std::string(kind.name) + " " + kind.usage;
        out << "  " << std::left << std::setw(kColumn) << form;
        if (form.size() >= kColumn) {
            out << "\n  " << std::string(kColumn, ' ');
        }
        out << kind.help << '\n';
    }
    if (words.empty()) {
        out << "  help [STATEMENT], quit\n";
    }
    if (std::any_of(kinds.begin(), kinds.end(),
                    [](const StatementKind& kind) { return (kind.optionGroups & kFields) != 0; })) {
        out << "  fields are --apn, --user, --password, --auth, --home-ip, --roam-ip, --types, "
               "--class,\n"
               "  --[no-]clat, --[no-]emergency, --[no-]disabled, --max-conns, "
               "--max-conns-time, --wait-time\n";
    }
}

/** False when the line asks to end. */
bool play(Stage& stage, std::string_view line) {
    const auto words = splitStatement(line);
    if (words.empty()) {
        return true;
    }
    const std::string& first = words.front().text;
    if (first == "quit" || first == "exit") {
        if (words.size() > 1) {
            throw badUsage("write it as: " + first);
        }
        return false;
    }
    if (first == "help") {
        printHelp(stage.out(), {words.begin() + 1, words.end()});
        return true;
    }
    Statement(words).run(stage);
    stage.settle();
    return true;
}

}  // namespace

void RunCommand::addOptions(CLI::App& app) {
    app.add_option("file", file, "scenario file")->required();
    addNumber(app, "--seed", seed, "seed of the fault plan (1)");
    app.add_flag("--quiet", isQuiet, "tell only what the scenario itself says");
    app.add_flag("--journal", isJournalWanted, "print all that crossed to the modem at the end");
}

Exit RunCommand::run(const Context& context) {
    const Scenario scenario = Scenario::load(file);
    std::ostringstream unseen;
    std::ostream& story = context.output.isText() ? context.output.text() : unseen;
    Stage stage(seededModem(context, seed), context.output.showSecrets(),
                {story, isQuiet ? unseen : story}, context.logSink());
    std::optional<ToolError> failure;
    try {
        scenario.play(stage);
    } catch (const ToolError& error) {
        failure = error;
    }
    Json& document = context.output.document();
    document = {{"file", file}, {"statements", scenario.size()}, {"passed", !failure}};
    if (isJournalWanted) {
        document["journal"] = stage.journalLines();
        Statement({{"journal"}}).run(stage);
    }
    if (failure) {
        document["error"] = failure->what();
        context.output.note(failure->what());
        return failure->status();
    }
    context.save(stage.workbench());
    context.output.line(file + ": " + counted(scenario.size(), "statement") + ", all as expected");
    return Exit::Done;
}

void ShellCommand::addOptions(CLI::App& app) {
    addNumber(app, "--seed", seed, "seed of the fault plan (1)");
}

Exit ShellCommand::run(const Context& context) {
    if (!context.output.isText()) {
        throw badUsage("a shell has no JSON document; velactl --json run FILE plays a scenario");
    }
    std::ostream& out = context.output.text();
    Stage stage(seededModem(context, seed), context.output.showSecrets(), {out, out},
                context.logSink());
    LineEditor editor("velactl> ", ::isatty(STDIN_FILENO) != 0, [&stage](const std::string& line) {
        return completionsOf(line, stage.keyNames());
    });
    if (editor.isInteractive()) {
        stage.out() << "A simulated modem with the library connected. help tells the statements.\n";
    }
    Exit exit = Exit::Done;
    std::size_t number = 0;
    for (bool goesOn = true; goesOn;) {
        const auto line = editor.read();
        ++number;
        try {
            goesOn = line && play(stage, *line);
        } catch (const ToolError& error) {
            const std::string place =
                editor.isInteractive() ? "" : "line " + std::to_string(number) + ": ";
            context.err << "  " << place << error.what() << '\n';
            exit = editor.isInteractive() ? Exit::Done : error.status();
        }
        if (!line && editor.isInteractive()) {
            out << '\n';  // for the shell that follows on the terminal
        }
    }
    context.save(stage.workbench());
    return exit;
}

}  // namespace velactl
