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

    std::string word() {
        std::string result;
        while (!rest.empty() && !isBlank(rest.front())) {
            const char byte = take();
            if (byte == '"') {
                appendQuoted(result);
            } else {
                result += byte;
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

}  // namespace

std::vector<std::string> splitStatement(std::string_view line) {
    if (line.size() > kMaxLine) {
        throw badUsage("a line of " + std::to_string(line.size()) + " bytes; at most " +
                       std::to_string(kMaxLine) + " are read");
    }
    std::vector<std::string> words;
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
            ScenarioLine entry{number, std::string(trim(line)), splitStatement(line)};
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
