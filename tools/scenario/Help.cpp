// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Help.h"

#include "profiles/Text.h"

namespace velactl {

namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kMargin = 4;
constexpr std::size_t kColumn = 26;

/** Adds the pieces to the text, and begins another line at that column where one has no room. */
void append(std::string& text, const Names& pieces, std::size_t column) {
    for (const std::string& piece : pieces) {
        const std::size_t end = text.size() - (text.rfind('\n') + 1);
        const bool isFirst = text.empty() || text.back() == ' ';
        const std::size_t start = column + piece.size() < kWidth ? column : kMargin;
        text += end + piece.size() >= kWidth ? '\n' + std::string(start, ' ') : isFirst ? "" : " ";
        text += piece;
    }
}

/** What it is, and from a column on what it means. */
std::string entry(const Names& pieces, const std::string& meaning) {
    std::string text = "  ";
    append(text, pieces, kMargin);
    const std::size_t end = text.size() - (text.rfind('\n') + 1);
    text += end + 2 <= kColumn ? std::string(kColumn - end, ' ') : '\n' + std::string(kColumn, ' ');
    append(text, split(meaning, ' '), kColumn);
    return text + '\n';
}

/** Each section with what `line` makes of its operations. */
template <typename Line>
std::string bySection(const Operations& list, const std::string& mark, const std::string& start,
                      Line line) {
    std::string text;
    std::string section;
    for (const Operation& operation : list) {
        if (section != operation.section) {
            section = operation.section;
            text += (text.empty() ? "" : "\n") + mark + section + start;
        }
        text += line(operation);
    }
    return text;
}

std::string helpOfOne(const Operation& operation, Place place) {
    std::string text = place == kVerb ? "Usage: velactl [options] " : "";
    append(text, operation.usage(place), kMargin);
    text += "\n  ";
    append(text, split(operation.help, ' '), 2);
    text += '\n';
    Names places = operation.placeholders(place);
    places.emplace_back("M");
    for (const std::string& each : places) {
        const std::string choice = choicesIn(each).front();
        const Names values = operation.values != nullptr ? operation.values(choice) : Names();
        text += values.empty() ? "" : '\n' + entry({choice}, join(values, ", "));
    }
    return text + helpOf(optionsOf(operation.options));
}

std::string inTable(std::string text) {
    for (std::size_t at = text.find('|'); at != std::string::npos; at = text.find('|', at + 2)) {
        text.insert(at, "\\");
    }
    return text;
}

}  // namespace

std::string helpOf(const Operations& list, Place place) {
    return list.size() == 1 ? helpOfOne(list.front(), place)
                            : bySection(list, "", ":\n", [place](const Operation& operation) {
                                  return entry(operation.usage(place), operation.help);
                              });
}

std::string helpOf(const std::vector<Option>& options) {
    std::string text;
    std::string heading;
    for (const Option& option : options) {
        const std::string group = option.groupName();
        const std::string title = !group.empty()                      ? group
                                  : (option.groups & kEveryVerb) != 0 ? "options of every verb"
                                                                      : "options";
        text += title == heading ? "" : '\n' + title + ":\n";
        heading = title;
        text += entry({option.usage()}, option.help);
    }
    return text;
}

std::string tablesOf(const Operations& list, Place place) {
    return bySection(list, "### ", "\n\n| | |\n|---|---|\n", [place](const Operation& operation) {
        return "| `" + inTable(join(operation.usage(place), " ")) + "` | " + operation.help +
               " |\n";
    });
}

}  // namespace velactl
