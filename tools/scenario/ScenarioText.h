// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

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

using Names = std::vector<std::string>;
using ScenarioWords = std::vector<ScenarioWord>;

/**
 * The words of one line: separated by blanks; in double quotes, with \" and \\, blanks belong to
 * the word; # starts a comment where a word would start. Throws ToolError.
 */
ScenarioWords splitStatement(std::string_view line);

/** Such a line for people; its passwords masked unless `showSecrets`. */
std::string shownStatement(const std::string& line, bool showSecrets);

/** Whether such a line may hold a password: it has "pass" somewhere, also with quotes in between.
 */
bool mayBeSecret(std::string line);

/** The text without what stands behind "password=", in whichever setting's name. */
std::string withoutSecret(const std::string& text);

Names textsOf(const ScenarioWords& words);

}  // namespace velactl
