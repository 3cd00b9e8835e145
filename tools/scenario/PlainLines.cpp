// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "profiles/Text.h"
#include "scenario/LineEditor.h"

namespace velactl {

namespace {

/** As the terminal edits them; none is kept. */
class PlainLines : public LineEditor {
  public:
    bool read(std::string& text) override {
        std::cout << kPrompt << std::flush;
        const bool isRead = !!std::getline(std::cin, text);
        text = trim(text);
        return isRead;
    }

    void remember(const std::string& /*text*/) override {}
};

}  // namespace

std::unique_ptr<LineEditor> makeLineEditor(Stage& /*stage*/) {
    return std::make_unique<PlainLines>();
}

}  // namespace velactl
