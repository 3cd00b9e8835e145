// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The words of a line, and what they give to an operation.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "profiles/ProfileField.h"
#include "scenario/Option.h"

namespace velactl {

/** One word of a statement, without its quotes. */
struct ScenarioWord {
    std::string text;
    bool isQuoted = false;  // from its beginning: it is no option, whatever it begins with

    /** Whether it begins with a dash and is no number either. */
    bool isOption() const {
        return !isQuoted && text.size() > 1 && text[0] == '-' && (text[1] < '0' || text[1] > '9');
    }
};

using ScenarioWords = std::vector<ScenarioWord>;

/**
 * The words of one line: separated by blanks; in double quotes, with \" and \\, blanks belong to
 * the word; # starts a comment where a word would start. Throws ToolError.
 */
ScenarioWords splitStatement(std::string_view line);

/** Such a line for people; its passwords masked unless `showSecrets`. */
std::string shownStatement(const std::string& line, bool showSecrets);

/** Whether it may hold a password: it has "pass" somewhere, also with quotes in between. */
bool mayBeSecret(std::string line);

/** The text without what stands behind "password=", in whichever setting's name. */
std::string withoutSecret(const std::string& text);

/** Where an operation can be given. */
enum Place : unsigned {
    kScenario = 1,
    kShell = 2,
    kStatement = kScenario | kShell,
    kVerb = 4,  // on the command line, where it is a statement run once
    kEverywhere = kStatement | kVerb,
    kLooking = 8  // changes nothing, so that others may use the modem's file meanwhile
};

/** What an operation was given. A plain value once read. */
struct Arguments {
    unsigned place = kScenario;
    Names words;  // without options
    /** By the options' names; of a switch's opposite as well. */
    std::map<std::string, std::string> options;

    bool has(const std::string& option) const { return options.count(option) != 0; }
    std::string text(const std::string& option, const std::string& otherwise = "") const {
        return has(option) ? options.at(option) : otherwise;
    }
    std::int64_t number(const std::string& option, std::int64_t otherwise) const {
        return has(option) ? std::stoll(text(option)) : otherwise;
    }
    /** The word at a place; empty: it was not given. */
    std::string word(std::size_t at = 0) const {
        return at < words.size() ? words[at] : std::string();
    }

    /** 3GPP unless another one was given. */
    vela::TechType tech() const {
        return has("--tech") ? readTech("--tech", text("--tech")) : vela::TechType::TECH_3GPP;
    }

    /** The fields that were given, those that no request can ask for among them. */
    Json fields() const;

    /** What is asked for by fields and by the options of searches; --tech only if it was given. */
    vela::FilterProfileParams filter() const;
};

/** Sorts words and options. Throws ToolError that says what would be right. */
Arguments readArguments(const std::vector<Option>& options, const ScenarioWords& given);

/** That of the words which `given` may be a slip of; empty: none is near. */
std::string nearestOf(const Names& words, const std::string& given);

}  // namespace velactl
