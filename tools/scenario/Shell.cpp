// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <histedit.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>

#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

/** Where lines are kept, with its folders made; empty when there is no such place. */
std::string historyFile() {
    const auto folder = [](const char* variable) {
        const char* value = std::getenv(variable);
        return std::filesystem::path(value != nullptr && *value == '/' ? value : "");
    };
    const auto state = folder("XDG_STATE_HOME");
    const auto place = (state.empty() ? folder("HOME") / ".local/state" : state) / "velactl";
    std::error_code error;
    std::filesystem::create_directories(place.is_absolute() ? place : "", error);
    return error ? "" : place / "history";
}

/** None for a line that makes no sense. */
Names candidates(Stage& stage, const std::string& typed) {
    try {
        return completionsOf(typed, [&stage](const std::string& placeholder) {
            return placeholder == "KEY"
                       ? stage.keyNames()
                       : namesIn(stage.workbench().modemProfiles(),
                                 [](auto& each) { return std::to_string(each.index); });
        });
    } catch (const ToolError&) {
        return {};
    }
}

/** Lines from a terminal, with completion and a history that is kept between runs. */
class LineEditor {
  public:
    explicit LineEditor(Stage& stage) {
        constexpr int kHistoryLines = 1000;
        ::history(past, &event, H_SETSIZE, kHistoryLines);
        ::history(past, &event, H_SETUNIQUE, 1);
        ::history(past, &event, H_LOAD, historyFile().c_str());
        ::el_set(line, EL_CLIENTDATA, &stage);
        ::el_set(
            line, EL_PROMPT, +[](EditLine*) -> char* {
                static char text[] = "velactl> ";
                return text;
            });
        ::el_set(line, EL_EDITOR, "emacs");
        ::el_set(line, EL_HIST, ::history, past);
        // The wide version: el_set() would copy the names and never free them.
        ::el_wset(line, EL_ADDFN, L"complete", L"complete the word", &complete);
        ::el_set(line, EL_BIND, "^I", "complete", nullptr);
        // While a line is typed, ^C gives up that line and not the modem with all that it holds.
        ::el_set(line, EL_SETTY, "-d", "-isig", nullptr);
        ::el_set(line, EL_BIND, "^C", "em-kill-line", nullptr);
    }
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;
    /** Nobody else may read what was typed, from the file's first byte on. */
    ~LineEditor() {
        ::umask(S_IRWXG | S_IRWXO);
        ::history(past, &event, H_SAVE, historyFile().c_str());
        ::el_end(line);
        ::history_end(past);
    }

    /** False at the end of the input. */
    bool read(std::string& text) {
        int length = 0;
        const char* typed = ::el_gets(line, &length);
        text = typed == nullptr ? "" : trim(typed);
        return typed != nullptr && length > 0;
    }

    void remember(const std::string& text) { ::history(past, &event, H_ENTER, text.c_str()); }

  private:
    /** Completes as far as all candidates agree, and lists them where they differ. */
    static unsigned char complete(EditLine* line, int /*key*/) {
        void* stage = nullptr;
        ::el_get(line, EL_CLIENTDATA, &stage);
        const LineInfo* info = ::el_line(line);
        const std::string typed(info->buffer, info->cursor);
        const Names fitting = candidates(*static_cast<Stage*>(stage), typed);
        if (fitting.empty()) {
            return CC_ERROR;
        }
        // Of sorted ones the first and the last differ most.
        const auto parting = std::mismatch(fitting.front().begin(), fitting.front().end(),
                                           fitting.back().begin(), fitting.back().end());
        const std::string common(fitting.front().begin(), parting.first);
        const bool isWhole = fitting.size() == 1 && common.back() != '=' && common.back() != '/';
        const std::string rest =
            common.substr(typed.size() - (typed.find_last_of(' ') + 1)) + (isWhole ? " " : "");
        if (!rest.empty()) {
            ::el_insertstr(line, rest.c_str());
            return CC_REFRESH;
        }
        std::cout << '\n' << join(fitting, "  ") << std::endl;
        return CC_REDISPLAY;
    }

    EditLine* const line = ::el_init("velactl", stdin, stdout, stderr);
    History* const past = ::history_init();
    HistEvent event{};
};

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
    std::optional<LineEditor> editor;
    if (::isatty(STDIN_FILENO) != 0) {
        // The editor reads letters beyond ASCII only in the terminal's locale. Only the characters:
        // numbers are to be written as in every locale.
        std::setlocale(LC_CTYPE, "");
        editor.emplace(stage);
        stage.story().line("A modem with the library connected. help tells the statements.");
    }
    Exit exit = Exit::Done;
    std::string line;
    const auto read = [&] { return editor ? editor->read(line) : !!std::getline(std::cin, line); };
    for (std::size_t number = 1; !stage.isOver && read(); ++number) {
        try {
            play(line, stage, editor ? &*editor : nullptr);
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
