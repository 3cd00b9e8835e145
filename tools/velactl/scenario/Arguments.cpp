// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Arguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>

#include "Limits.h"
#include "NumberOption.h"
#include "Text.h"
#include "ToolError.h"
#include "Words.h"

namespace velactl {

namespace {

constexpr std::int64_t kLowestValue = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHighestValue = std::numeric_limits<std::uint32_t>::max();

std::string wrongProbability(const std::string& text) {
    double number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool isRight =
        result.ec == std::errc() && result.ptr == end && number >= 0 && number <= 1;
    return isRight ? "" : inQuotes(text) + " must be a number from 0 to 1";
}

std::vector<std::string> optionNamesOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

const CLI::Option& optionNamed(const CLI::App& app, const std::string& name) {
    const CLI::Option* option = app.get_option_no_throw(name);
    if (option == nullptr) {
        const auto names = optionNamesOf(app);
        throw badUsage(inQuotes(name) + " is no option here; " +
                       (names.empty() ? "there are none" : "use " + alternatives(names)));
    }
    return *option;
}

}  // namespace

vela::TechType Arguments::tech() const {
    return readTech("--tech", techName);
}

int Arguments::number(std::size_t word, int lowest, int highest, const char* what) const {
    const std::string& text = words.at(word);
    int result = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), result);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || result < lowest ||
        result > highest) {
        throw badUsage(inQuotes(text) + " is no " + what + "; use a number from " +
                       std::to_string(lowest) + " to " + std::to_string(highest));
    }
    return result;
}

void Arguments::addTo(CLI::App& app, unsigned optionGroups) {
    app.set_help_flag();
    if ((optionGroups & kFields) != 0) {
        fields.addTo(app);
    }
    if ((optionGroups & kTech) != 0) {
        app.add_option("--tech", techName);
    }
    if ((optionGroups & kLifetime) != 0) {
        app.add_flag("--temporary", isTemporary);
        app.add_flag("--ia", isForAttach);
    }
    if ((optionGroups & kSearch) != 0) {
        addNumber(app, "--id", id, "", 0, kMaxIndex);
    }
    if ((optionGroups & kRule) != 0) {
        app.add_option("--message", message);
        addNumber(app, "--first", first, "", 1U);
        addNumber(app, "--every", every, "", 1U);
        addNumber(app, "--count", count, "");
        app.add_option("--probability", probability)->check(wrongProbability);
        addNumber(app, "--value", value, "", kLowestValue, kHighestValue);
    }
}

std::vector<std::string> Arguments::optionNames(unsigned optionGroups) {
    Arguments arguments;
    CLI::App app;
    arguments.addTo(app, optionGroups);
    return optionNamesOf(app);
}

/** Takes the options for the parser, each with its value in one piece, so that a value may begin
 * with a dash; the rest are words. */
std::vector<std::string> Arguments::takeOptions(const CLI::App& app,
                                                const std::vector<ScenarioWord>& given) {
    std::vector<std::string> options;
    for (auto word = given.begin(); word != given.end(); ++word) {
        if (!word->isOption()) {
            words.push_back(word->text);
            continue;
        }
        const std::size_t equals = word->text.find('=');
        const std::string name = word->text.substr(0, equals);
        const bool takesValue = optionNamed(app, name).get_items_expected_min() > 0;
        if (!takesValue) {
            options.push_back(word->text);
            continue;
        }
        if (equals == std::string::npos && (++word == given.end() || word->isOption())) {
            throw badUsage(name + " needs a value");
        }
        const std::string text =
            equals == std::string::npos ? word->text : word->text.substr(equals + 1);
        options.push_back(text.empty() ? name : name + '=' + text);
        if (text.empty()) {
            options.push_back(text);
        }
    }
    return options;
}

void Arguments::parse(const std::vector<ScenarioWord>& given, unsigned optionGroups) {
    if ((optionGroups & kFreeText) != 0) {
        std::transform(given.begin(), given.end(), std::back_inserter(words),
                       [](const ScenarioWord& word) { return word.text; });
        return;
    }
    CLI::App app;
    addTo(app, optionGroups);
    std::vector<std::string> options = takeOptions(app, given);
    std::reverse(options.begin(), options.end());
    try {
        app.parse(std::move(options));
    } catch (const CLI::ParseError& error) {
        std::string text = error.what();
        std::replace(text.begin(), text.end(), '\n', ' ');
        throw badUsage(printable(trim(text)));
    }
    tech();
    fields.params();
}

}  // namespace velactl
