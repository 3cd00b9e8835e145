// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <histedit.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "scenario/LineEditor.h"
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

/** Completes words, and keeps a history between runs. */
class EditedLines : public LineEditor {
  public:
    explicit EditedLines(Stage& stage) {
        constexpr int kHistoryLines = 1000;
        ::history(past, &event, H_SETSIZE, kHistoryLines);
        ::history(past, &event, H_SETUNIQUE, 1);
        ::history(past, &event, H_LOAD, historyFile().c_str());
        ::el_set(line, EL_CLIENTDATA, &stage);
        ::el_set(
            line, EL_PROMPT, +[](EditLine*) -> char* {
                static std::string text = kPrompt;
                return text.data();
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
    /** Nobody else may read what was typed, from the file's first byte on. */
    ~EditedLines() override {
        ::umask(S_IRWXG | S_IRWXO);
        ::history(past, &event, H_SAVE, historyFile().c_str());
        ::el_end(line);
        ::history_end(past);
    }

    bool read(std::string& text) override {
        int length = 0;
        const char* typed = ::el_gets(line, &length);
        text = typed == nullptr ? "" : trim(typed);
        return typed != nullptr && length > 0;
    }

    void remember(const std::string& text) override {
        ::history(past, &event, H_ENTER, text.c_str());
    }

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

}  // namespace

std::unique_ptr<LineEditor> makeLineEditor(Stage& stage) {
    return std::make_unique<EditedLines>(stage);
}

}  // namespace velactl
