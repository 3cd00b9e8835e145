// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Arguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <charconv>

#include "Text.h"
#include "ToolError.h"
#include "Words.h"

namespace velactl {

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
        app.add_option("--id", id);
    }
    if ((optionGroups & kRule) != 0) {
        app.add_option("--message", message);
        app.add_option("--first", first)->check(CLI::PositiveNumber);
        app.add_option("--every", every)->check(CLI::PositiveNumber);
        app.add_option("--count", count);
        app.add_option("--probability", probability)->check(CLI::Range(0.0, 1.0));
        app.add_option("--value", value);
    }
}

std::vector<std::string> Arguments::optionNames(unsigned optionGroups) {
    Arguments arguments;
    CLI::App app;
    arguments.addTo(app, optionGroups);
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

void Arguments::parse(const std::vector<std::string>& given, unsigned optionGroups) {
    CLI::App app;
    addTo(app, optionGroups);
    app.add_option("words", words);
    std::vector<std::string> reversed(given.rbegin(), given.rend());
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::ParseError& error) {
        std::string text = error.what();
        std::replace(text.begin(), text.end(), '\n', ' ');
        throw badUsage(printable(trim(text)));
    }
    tech();
    fields.params();
}

}  // namespace velactl
