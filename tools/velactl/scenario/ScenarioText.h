// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velactl {

/** One word of a statement, without its quotes. */
struct ScenarioWord {
    std::string text;
    bool isQuoted = false;  // from its beginning: it is no option, whatever it begins with

    /** Whether it begins with a dash and is no number either. */
    bool isOption() const;
};

/** One statement as it was written. */
struct ScenarioLine {
    std::size_t number = 0;  // from 1
    std::vector<ScenarioWord> words;
};

/**
 * The words of one line: separated by blanks; in double quotes, with \" and \\, blanks belong to
 * the word; # starts a comment where a word would start. Throws ToolError.
 */
std::vector<ScenarioWord> splitStatement(std::string_view line);

/** Such a line again, for people; its passwords masked unless `showSecrets`. */
std::string joinStatement(const std::vector<ScenarioWord>& words, bool showSecrets);

/** The text without what stands behind "password=", in whichever setting's name. */
std::string withoutSecret(const std::string& text);

/** The lines that hold a statement. Throws ToolError that starts with "name:line: ". */
std::vector<ScenarioLine> readScenarioText(std::string_view text, std::string_view name);

}  // namespace velactl
