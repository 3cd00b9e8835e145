// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/ScenarioText.h"

#include <algorithm>
#include <iterator>

#include "profiles/Text.h"
#include "profiles/ToolError.h"

namespace velactl {

namespace {

constexpr std::size_t kMaxLine = 4096;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r';
}

void checkByte(char byte) {
    if (static_cast<unsigned char>(byte) < ' ' && byte != '\t') {
        throw badUsage("a control character in the line; remove it");
    }
}

}  // namespace

bool ScenarioWord::isOption() const {
    return !isQuoted && text.size() > 1 && text[0] == '-' && (text[1] < '0' || text[1] > '9');
}

ScenarioWords splitStatement(std::string_view line) {
    if (line.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        line.remove_prefix(kByteOrderMark.size());
    }
    if (line.size() > kMaxLine) {
        throw badUsage("a line of " + std::to_string(line.size()) + " bytes; at most " +
                       std::to_string(kMaxLine) + " are read");
    }
    ScenarioWords words;
    bool isInWord = false;
    bool isInQuotes = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (!isInQuotes && isBlank(line[at])) {
            isInWord = false;
            continue;
        }
        if (!isInWord && line[at] == '#') {
            break;
        }
        if (!isInWord) {
            words.push_back({"", line[at] == '"'});
            isInWord = true;
        }
        const bool isEscaped = isInQuotes && line[at] == '\\' && at + 1 < line.size();
        at += isEscaped ? 1 : 0;
        checkByte(line[at]);
        if (line[at] == '"' && !isEscaped) {
            isInQuotes = !isInQuotes;
        } else {
            words.back().text += line[at];
        }
    }
    if (isInQuotes) {
        throw badUsage("a quoted word without its closing \"");
    }
    return words;
}

std::string shownStatement(const std::string& line, bool showSecrets) {
    if (showSecrets || !mayBeSecret(line)) {
        return printable(trim(line));
    }
    Names parts;
    bool isSecret = false;
    for (const ScenarioWord& word : splitStatement(line)) {
        parts.push_back(isSecret ? "***" : withoutSecret(word.text));
        isSecret = word.isOption() && word.text == "--password";
    }
    return printable(join(parts, " "));
}

bool mayBeSecret(std::string line) {
    line.erase(std::remove_if(line.begin(), line.end(),
                              [](char byte) { return byte == '"' || byte == '\\'; }),
               line.end());
    return toLower(line).find("pass") != std::string::npos;
}

std::string withoutSecret(const std::string& text) {
    // An APN that is written like a setting is taken for one: a word does not tell what it is.
    const std::size_t equals = std::min(text.find('='), text.size());
    const std::string name = toLower(text.substr(0, equals));
    const bool isName = std::all_of(name.begin(), name.end(), [](char letter) {
        return (letter >= 'a' && letter <= 'z') || letter == '_' || letter == '-';
    });
    const bool isSecret = isName && name.find("password") != std::string::npos;
    return isSecret && equals < text.size() ? text.substr(0, equals) + "=***" : text;
}

Names textsOf(const ScenarioWords& words) {
    Names texts;
    std::transform(words.begin(), words.end(), std::back_inserter(texts),
                   [](const ScenarioWord& word) { return word.text; });
    return texts;
}

}  // namespace velactl
