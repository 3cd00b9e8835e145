// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/LineEditor.h"

#include <histedit.h>

#include <clocale>
#include <cstdio>
#include <iostream>
#include <utility>

namespace velactl {

/** The terminal's line editor and its history. */
class LineEditor::Terminal {
  public:
    Terminal(std::string promptText, Completions completionsOf)
        : prompt(std::move(promptText)),
          completions(std::move(completionsOf)),
          editLine(openLine()),
          pastLines(::history_init()) {
        constexpr int kHistoryLines = 1000;
        ::history(pastLines, &event, H_SETSIZE, kHistoryLines);
        ::el_set(editLine, EL_CLIENTDATA, this);
        ::el_set(editLine, EL_PROMPT, &promptOf);
        ::el_set(editLine, EL_EDITOR, "emacs");
        ::el_set(editLine, EL_HIST, ::history, pastLines);
        ::el_set(editLine, EL_ADDFN, "complete", "complete the word", &complete);
        ::el_set(editLine, EL_BIND, "^I", "complete", nullptr);
        // While a line is typed, ^C gives up that line and not the modem with all that it holds.
        ::el_set(editLine, EL_SETTY, "-d", "-isig", nullptr);
        ::el_set(editLine, EL_BIND, "^C", "em-kill-line", nullptr);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() {
        ::el_end(editLine);
        ::history_end(pastLines);
    }

    std::optional<std::string> read() {
        int length = 0;
        const char* text = ::el_gets(editLine, &length);
        if (text == nullptr || length <= 0) {
            return std::nullopt;
        }
        std::string line(text, static_cast<std::size_t>(length));
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
            line.pop_back();
        }
        if (!line.empty()) {
            ::history(pastLines, &event, H_ENTER, line.c_str());
        }
        return line;
    }

  private:
    /** The editor takes the letters of the terminal's character set only with its locale; numbers
     * stay as they are. */
    static EditLine* openLine() {
        std::setlocale(LC_CTYPE, "");
        return ::el_init("velactl", stdin, stdout, stderr);
    }

    static Terminal& of(EditLine* line) {
        void* self = nullptr;
        ::el_get(line, EL_CLIENTDATA, &self);
        return *static_cast<Terminal*>(self);
    }

    static char* promptOf(EditLine* line) { return of(line).prompt.data(); }

    static unsigned char complete(EditLine* line, int /*key*/) {
        const LineInfo* info = ::el_line(line);
        return of(line).completeTyped(std::string(info->buffer, info->cursor));
    }

    /** Completes as far as all candidates agree; lists them when they do not. */
    unsigned char completeTyped(const std::string& typed) {
        const std::vector<std::string> fitting = completions(typed);
        if (fitting.empty()) {
            return CC_ERROR;
        }
        std::string common = fitting.front();
        for (const std::string& candidate : fitting) {
            common = commonPrefix(common, candidate);
        }
        std::string rest = common.substr(typed.size() - (typed.find_last_of(' ') + 1));
        if (fitting.size() == 1) {
            rest += ' ';
        }
        if (!rest.empty()) {
            ::el_insertstr(editLine, rest.c_str());
            return CC_REFRESH;
        }
        std::cout << '\n';
        for (const std::string& candidate : fitting) {
            std::cout << candidate << "  ";
        }
        std::cout << std::endl;
        return CC_REDISPLAY;
    }

    static std::string commonPrefix(const std::string& left, const std::string& right) {
        std::size_t length = 0;
        while (length < left.size() && length < right.size() && left[length] == right[length]) {
            ++length;
        }
        return left.substr(0, length);
    }

    std::string prompt;
    const Completions completions;
    EditLine* const editLine;
    History* const pastLines;
    HistEvent event{};
};

LineEditor::LineEditor(std::string prompt, bool isTerminal, Completions completions)
    : terminal(isTerminal ? std::make_unique<Terminal>(std::move(prompt), std::move(completions))
                          : nullptr) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::read() {
    if (terminal) {
        return terminal->read();
    }
    std::string line;
    return std::getline(std::cin, line) ? std::optional(line) : std::nullopt;
}

}  // namespace velactl
