// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <histedit.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>

#include "profiles/ToolError.h"
#include "scenario/Help.h"
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
    if (place.is_relative() || (std::filesystem::create_directories(place, error), error)) {
        return {};
    }
    return place / "history";
}

/** Lines from a terminal, with completion and a history that is kept between runs. */
class LineEditor {
  public:
    explicit LineEditor(Stage& stage) : stage(stage) {
        constexpr int kHistoryLines = 1000;
        ::history(past, &event, H_SETSIZE, kHistoryLines);
        ::history(past, &event, H_SETUNIQUE, 1);
        ::history(past, &event, H_LOAD, historyFile().c_str());
        ::el_set(line, EL_CLIENTDATA, this);
        ::el_set(line, EL_PROMPT, &prompt);
        ::el_set(line, EL_EDITOR, "emacs");
        ::el_set(line, EL_HIST, ::history, past);
        // Wide: of other names it makes copies that are never freed.
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
        const std::string file = historyFile();
        const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
        if (fd >= 0 && ::fchmod(fd, S_IRUSR | S_IWUSR) == 0) {
            ::history(past, &event, H_SAVE, file.c_str());
        }
        ::close(fd);
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
    /** It takes the letters of the terminal's character set only with its locale; numbers stay as
     * they are. */
    static EditLine* open() {
        std::setlocale(LC_CTYPE, "");
        return ::el_init("velactl", stdin, stdout, stderr);
    }

    static char* prompt(EditLine* /*line*/) {
        static char text[] = "velactl> ";
        return text;
    }

    static unsigned char complete(EditLine* line, int /*key*/) {
        const LineInfo* info = ::el_line(line);
        void* self = nullptr;
        ::el_get(line, EL_CLIENTDATA, &self);
        try {
            return static_cast<LineEditor*>(self)->completeTyped({info->buffer, info->cursor});
        } catch (const ToolError&) {
            return CC_ERROR;  // what is typed makes no sense
        }
    }

    /** Completes as far as all candidates agree; lists them when they do not. */
    unsigned char completeTyped(const std::string& typed) {
        const Names fitting = completionsOf(
            typed, [this](const std::string& placeholder) { return present(placeholder); });
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

    Names present(const std::string& placeholder) {
        return placeholder == "KEY" ? stage.keyNames()
                                    : namesIn(stage.workbench().modemProfiles(), [](auto& each) {
                                          return std::to_string(each.index);
                                      });
    }

    Stage& stage;
    EditLine* const line = open();
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
