// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/ScenarioText.h"

#include "Text.h"
#include "ToolError.h"

namespace velactl {

namespace {

constexpr std::size_t kMaxLine = 4096;

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r';
}

/** Takes words off the front of a line. */
class WordReader {
  public:
    explicit WordReader(std::string_view line) : rest(line) {}

    /** Whether another word starts; what lies before it is skipped. */
    bool hasWord() {
        while (!rest.empty() && isBlank(rest.front())) {
            rest.remove_prefix(1);
        }
        return !rest.empty() && rest.front() != '#';
    }

    ScenarioWord word() {
        ScenarioWord result{"", rest.front() == '"'};
        while (!rest.empty() && !isBlank(rest.front())) {
            const char byte = take();
            if (byte == '"') {
                appendQuoted(result.text);
            } else {
                result.text += byte;
            }
        }
        return result;
    }

  private:
    char take() {
        const char byte = rest.front();
        rest.remove_prefix(1);
        if (static_cast<unsigned char>(byte) < ' ' && byte != '\t') {
            throw badUsage("a control character in the line; remove it");
        }
        return byte;
    }

    void appendQuoted(std::string& result) {
        while (!rest.empty()) {
            char byte = take();
            if (byte == '"') {
                return;
            }
            if (byte == '\\' && !rest.empty()) {
                byte = take();
            }
            result += byte;
        }
        throw badUsage("a quoted word without its closing \"");
    }

    std::string_view rest;
};

/** As it could be written: what needs quotes has them, but for an option's or setting's name. */
std::string written(const ScenarioWord& word) {
    const std::string& text = word.text;
    const bool isPlain =
        !text.empty() && text.front() != '#' && text.find_first_of(" \t\"") == std::string::npos;
    if (isPlain && !(word.isQuoted && text.front() == '-')) {
        return text;
    }
    const std::size_t equals = word.isQuoted ? std::string::npos : text.find('=');
    const std::size_t start = equals == std::string::npos ? 0 : equals + 1;
    std::string result = text.substr(0, start) + '"';
    for (const char byte : text.substr(start)) {
        result += byte == '"' || byte == '\\' ? std::string("\\") + byte : std::string(1, byte);
    }
    return result + '"';
}

}  // namespace

bool ScenarioWord::isOption() const {
    return !isQuoted && text.size() > 1 && text[0] == '-' && (text[1] < '0' || text[1] > '9');
}

std::string withoutSecret(const std::string& text) {
    const std::size_t name = toLower(text).find("password");
    const std::size_t equals = name == std::string::npos ? name : text.find('=', name);
    return equals == std::string::npos ? text : text.substr(0, equals + 1) + "***";
}

std::string joinStatement(const std::vector<ScenarioWord>& words, bool showSecrets) {
    std::vector<std::string> parts;
    bool isSecret = false;
    for (ScenarioWord word : words) {
        if (!showSecrets) {
            word.text = isSecret ? "***" : withoutSecret(word.text);
        }
        parts.push_back(written(word));
        isSecret = word.isOption() && word.text == "--password";
    }
    return join(parts, " ");
}

std::vector<ScenarioWord> splitStatement(std::string_view line) {
    if (line.size() > kMaxLine) {
        throw badUsage("a line of " + std::to_string(line.size()) + " bytes; at most " +
                       std::to_string(kMaxLine) + " are read");
    }
    std::vector<ScenarioWord> words;
    WordReader reader(line);
    while (reader.hasWord()) {
        words.push_back(reader.word());
    }
    return words;
}

std::vector<ScenarioLine> readScenarioText(std::string_view text, std::string_view name) {
    std::vector<ScenarioLine> lines;
    std::size_t number = 0;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        ++number;
        try {
            ScenarioLine entry{number, splitStatement(line)};
            if (!entry.words.empty()) {
                lines.push_back(std::move(entry));
            }
        } catch (const ToolError& error) {
            throw atLine(name, number, error);
        }
    }
    return lines;
}

}  // namespace velactl
