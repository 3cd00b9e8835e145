// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/ScenarioCommands.h"

#include <unistd.h>

#include <iomanip>
#include <iostream>
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

void printHelp(std::ostream& out) {
    constexpr int kColumn = 24;
    for (const StatementKind& kind : statementKinds()) {
        const std::string form = std::string(kind.name) + " " + kind.usage;
        out << "  " << std::left << std::setw(kColumn) << form;
        if (form.size() >= kColumn) {
            out << "\n  " << std::string(kColumn, ' ');
        }
        out << kind.help << '\n';
    }
    out << "  fields are --apn, --user, --password, --auth, --home-ip, --roam-ip, --types, "
           "--class,\n"
           "  --[no-]clat, --[no-]emergency, --[no-]disabled, --max-conns, --max-conns-time, "
           "--wait-time\n"
           "  help, quit\n";
}

/** False when the line asks to end. */
bool play(Stage& stage, std::string_view line) {
    const auto words = splitStatement(line);
    if (words.empty()) {
        return true;
    }
    if (words.front().text == "quit" || words.front().text == "exit") {
        return false;
    }
    if (words.front().text == "help") {
        printHelp(stage.out());
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
    scenario.play(stage);
    if (isJournalWanted) {
        Statement({{"journal"}}).run(stage);
    }
    context.save(stage.workbench());
    context.output.line(file + ": " + counted(scenario.size(), "statement") + ", all as expected");
    context.output.document() = {{"file", file}, {"statements", scenario.size()}, {"passed", true}};
    return Exit::Done;
}

void ShellCommand::addOptions(CLI::App& app) {
    addNumber(app, "--seed", seed, "seed of the fault plan (1)");
}

Exit ShellCommand::run(const Context& context) {
    std::ostringstream unseen;
    std::ostream& out = context.output.isText() ? context.output.text() : unseen;
    Stage stage(seededModem(context, seed), context.output.showSecrets(), {out, out},
                context.logSink());
    LineEditor editor("velactl> ", ::isatty(STDIN_FILENO) != 0, [&stage](const std::string& line) {
        return completionsOf(line, stage.keyNames());
    });
    if (editor.isInteractive()) {
        stage.out() << "A simulated modem with the library connected. help tells the statements.\n";
    }
    Exit exit = Exit::Done;
    while (const auto line = editor.read()) {
        try {
            if (!play(stage, *line)) {
                break;
            }
        } catch (const ToolError& error) {
            context.err << "  " << error.what() << '\n';
            exit = editor.isInteractive() ? Exit::Done : error.status();
        }
    }
    context.save(stage.workbench());
    return exit;
}

}  // namespace velactl
