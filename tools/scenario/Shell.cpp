// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <clocale>
#include <iostream>
#include <memory>

#include "scenario/LineEditor.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

/** The modem is kept whatever becomes of the statement. */
void play(const std::string& line, Stage& stage, LineEditor* editor) {
    const ScenarioWords words = splitStatement(line);
    if (words.empty()) {
        return;
    }
    const Statement statement(words, kShell);
    if (editor != nullptr && !mayBeSecret(line)) {
        editor->remember(line);
    }
    try {
        statement.play(stage);
    } catch (const ToolError&) {
        stage.save();
        throw;
    }
    stage.save();
}

}  // namespace

void runShell(Stage& stage, const Arguments& /*arguments*/) {
    if (!stage.story().isText()) {
        throw badUsage("a shell has no JSON document; velactl --json run FILE plays a scenario");
    }
    std::unique_ptr<LineEditor> editor;
    if (::isatty(STDIN_FILENO) != 0) {
        // The editor reads letters beyond ASCII only in the terminal's locale. Only the characters:
        // numbers are to be written as in every locale.
        std::setlocale(LC_CTYPE, "");
        editor = makeLineEditor(stage);
        stage.story().line("A modem with the library connected. help tells the statements.");
    }
    Exit exit = Exit::Done;
    std::string line;
    const auto read = [&] { return editor ? editor->read(line) : !!std::getline(std::cin, line); };
    for (std::size_t number = 1; !stage.isOver && read(); ++number) {
        try {
            play(line, stage, editor.get());
        } catch (const ToolError& error) {
            exit = error.status();
            stage.story().note((editor ? "" : "line " + std::to_string(number) + ": ") +
                               error.what());
        }
    }
    if (editor && !stage.isOver) {
        stage.story().line();  // for the shell that follows on the terminal
    } else if (!editor && exit != Exit::Done) {
        throw ToolError(exit, "");  // its errors have been told
    }
}

}  // namespace velactl
