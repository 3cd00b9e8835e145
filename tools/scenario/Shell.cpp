// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Shell.h"

#include <fcntl.h>
#include <histedit.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "profiles/Text.h"
#include "scenario/Completion.h"
#include "scenario/Help.h"

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

std::string commonStart(const Names& sorted) {
    // The first and the last differ most.
    const std::string& first = sorted.front();
    const std::string& last = sorted.back();
    return {first.begin(),
            std::mismatch(first.begin(), first.end(), last.begin(), last.end()).first};
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

    std::optional<std::string> read() {
        int length = 0;
        const char* text = ::el_gets(line, &length);
        return text == nullptr || length <= 0 ? std::nullopt
                                              : std::optional(std::string(trim(text)));
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
        const std::string common = commonStart(fitting);
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
        if (placeholder == "KEY") {
            return stage.keyNames();
        }
        Names numbers;
        for (const ProfileRecord& record : stage.workbench().modemProfiles()) {
            numbers.push_back(std::to_string(record.index));
        }
        return numbers;
    }

    Stage& stage;
    EditLine* const line = open();
    History* const past = ::history_init();
    HistEvent event{};
};

void help(Output& output, const ScenarioWords& words) {
    const Operations named = operationsNamed(operationsAt(kStatement), textsOf(words));
    if (named.empty()) {
        operationOf(operationsAt(kStatement), textsOf(words), "statement");
    }
    output.text() << helpOf(named, kStatement);
    if (words.empty()) {
        output.line("\nhelp STATEMENT explains one, with all its options; quit ends.\n" +
                    std::string(kLegend));
    }
}

/** The modem is kept whatever becomes of the statement. */
void playAndSave(const Statement& statement, Stage& stage) {
    try {
        statement.play(stage);
    } catch (const ToolError&) {
        stage.save();
        throw;
    }
    stage.save();
}

/** False when the line asks to end. */
bool play(const std::string& line, Stage& stage, LineEditor* editor) {
    const ScenarioWords words = splitStatement(line);
    const bool isQuit = !words.empty() && words.front().text == "quit";
    if (isQuit && words.size() > 1) {
        throw badUsage("write it as: quit");
    }
    std::optional<Statement> statement;
    if (!words.empty() && words.front().text == "help") {
        help(stage.story(), {words.begin() + 1, words.end()});
    } else if (!words.empty() && !isQuit) {
        statement.emplace(words);
    }
    if (editor != nullptr && !words.empty() && !mayBeSecret(line)) {
        editor->remember(line);
    }
    if (statement) {
        playAndSave(*statement, stage);
    }
    return !isQuit;
}

}  // namespace

Exit runShell(Stage& stage) {
    std::optional<LineEditor> editor;
    if (::isatty(STDIN_FILENO) != 0) {
        editor.emplace(stage);
        stage.story().line("A modem with the library connected. help tells the statements.");
    }
    Exit exit = Exit::Done;
    std::size_t number = 0;
    for (bool goesOn = true; goesOn;) {
        std::string text;
        const auto line = editor                         ? editor->read()
                          : std::getline(std::cin, text) ? std::optional(text)
                                                         : std::nullopt;
        ++number;
        try {
            goesOn = line && play(*line, stage, editor ? &*editor : nullptr);
        } catch (const ToolError& error) {
            exit = error.status();
            stage.story().note((editor ? "" : "line " + std::to_string(number) + ": ") +
                               error.what());
        }
        if (!line && editor) {
            stage.story().line();  // for the shell that follows on the terminal
        }
    }
    return editor ? Exit::Done : exit;
}

}  // namespace velactl
