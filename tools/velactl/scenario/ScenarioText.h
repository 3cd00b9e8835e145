// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velactl {

/** One statement as it was written. */
struct ScenarioLine {
    std::size_t number = 0;  // from 1
    std::string text;        // trimmed
    std::vector<std::string> words;
};

/**
 * The words of one line: separated by blanks; in double quotes, with \" and \\, blanks belong to
 * the word; # starts a comment where a word would start. Throws ToolError.
 */
std::vector<std::string> splitStatement(std::string_view line);

/** The lines that hold a statement. Throws ToolError that starts with "name:line: ". */
std::vector<ScenarioLine> readScenarioText(std::string_view text, std::string_view name);

}  // namespace velactl
