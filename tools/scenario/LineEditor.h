// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

namespace velactl {

class Stage;

/** What the prompt asks for. */
inline constexpr char kPrompt[] = "velactl> ";

/** Lines that are typed on a terminal, after a prompt. */
class LineEditor {
  public:
    LineEditor() = default;
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;
    virtual ~LineEditor() = default;

    /** False at the end of the input. */
    virtual bool read(std::string& text) = 0;

    /** Offers the line again, now and in later runs, where lines are kept. */
    virtual void remember(const std::string& text) = 0;
};

/** The one that is linked in: libedit's, or none but the terminal's own. The stage outlives it. */
std::unique_ptr<LineEditor> makeLineEditor(Stage& stage);

}  // namespace velactl
