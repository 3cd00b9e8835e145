// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velactl {

/** Reads lines: with history and completion from a terminal, plainly from a pipe. */
class LineEditor {
  public:
    /** What may stand in place of the last word of the line so far, which all begin with. */
    using Completions = std::function<std::vector<std::string>(const std::string& line)>;

    LineEditor(std::string prompt, bool isTerminal, Completions completions);
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;
    ~LineEditor();

    bool isInteractive() const { return terminal != nullptr; }

    /** The next line without its end; empty at the end of the input. */
    std::optional<std::string> read();

  private:
    class Terminal;

    std::unique_ptr<Terminal> terminal;
};

}  // namespace velactl
