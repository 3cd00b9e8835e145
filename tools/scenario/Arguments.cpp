// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Arguments.h"

#include <algorithm>

#include "profiles/Text.h"

namespace velactl {

namespace {

/** How many letters must be put in, left out, replaced or exchanged with their neighbour. */
std::size_t distanceOf(const std::string& left, const std::string& right) {
    std::vector<std::vector<std::size_t>> table(left.size() + 1,
                                                std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            table[i][j] = i == 0 || j == 0
                              ? i + j
                              : std::min({table[i - 1][j] + 1, table[i][j - 1] + 1,
                                          table[i - 1][j - 1] + (left[i - 1] != right[j - 1])});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
            }
        }
    }
    return table[left.size()][right.size()];
}

/** What tells words apart: neither the dashes of options nor the case. */
std::string essenceOf(const std::string& word) {
    return toLower(word.substr(std::min(word.find_first_not_of('-'), word.size())));
}

const Option& optionNamed(const std::vector<Option>& options, const std::string& name) {
    if (const Option* option = findOption(options, name)) {
        return *option;
    }
    const Names names = namesIn(options, &Option::name);
    const std::string nearest = nearestOf(names, name);
    throw badUsage(inQuotes(name) + " is not an option here; " +
                   (names.empty()     ? "there are none"
                    : nearest.empty() ? "use " + alternatives(names)
                                      : "did you mean " + inQuotes(nearest) + "?"));
}

}  // namespace

ScenarioWords splitStatement(std::string_view line) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    line.remove_prefix(line.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    ScenarioWords words;
    bool isInWord = false;
    bool isInQuotes = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (!isInQuotes && std::string_view(" \t\r").find(line[at]) != std::string_view::npos) {
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
    std::erase_if(line, [](char byte) { return byte == '"' || byte == '\\'; });
    return toLower(line).find("pass") != std::string::npos;
}

std::string withoutSecret(const std::string& text) {
    // A single word does not tell whether it is a setting: an APN name written like one is masked,
    // too.
    const std::size_t equals = text.find('=');
    const std::string name = toLower(text.substr(0, equals));
    const bool isName = name.find_first_not_of("abcdefghijklmnopqrstuvwxyz_-") == std::string::npos;
    const bool isSecret = isName && name.find("password") != std::string::npos;
    return isSecret && equals != std::string::npos ? text.substr(0, equals) + "=***" : text;
}

Json Arguments::fields() const {
    Json given = Json::object();
    for (const ProfileField& field : profileFields()) {
        const bool isSwitch = field.kind == ProfileField::Kind::Switch;
        if (has(field.option())) {
            given[field.key] =
                isSwitch ? Json(true) : field.read(field.option(), text(field.option()));
        } else if (isSwitch && has(field.offOption())) {
            given[field.key] = false;
        }
    }
    return given;
}

vela::FilterProfileParams Arguments::filter() const {
    using vela::FilterMatchCriteria;
    vela::FilterProfileParams result(paramsOf(fields()));
    if (has("--tech")) {
        result.setFilterByTechType(tech());
    }
    if (has("--index")) {
        result.setFilterByProfileId(static_cast<int>(number("--index", 0)));
    }
    if (has("--loose")) {
        result.addFilterMatchCriteria(
            FilterMatchCriteria::HomeIPSubset | FilterMatchCriteria::RoamIPSubset |
            FilterMatchCriteria::ApnNameSubset | FilterMatchCriteria::ApnTypeBitmaskSubset |
            FilterMatchCriteria::HomeIPSuperset | FilterMatchCriteria::RoamIPSuperset);
    }
    return result;
}

Arguments readArguments(const std::vector<Option>& options, const ScenarioWords& given) {
    Arguments arguments;
    for (auto word = given.begin(); word != given.end(); ++word) {
        if (!word->isOption()) {
            arguments.words.push_back(word->text);
            continue;
        }
        const std::size_t equals = word->text.find('=');
        const bool hasValue = equals != std::string::npos;
        const std::string name = word->text.substr(0, equals);
        const Option& option = optionNamed(options, name);
        const bool hasOpposite = arguments.has(option.name) || arguments.has(option.opposite);
        const std::string error =
            arguments.has(name) ? name + " is given twice"
            : hasOpposite       ? option.name + " and " + option.opposite + " exclude each other"
            : option.value.empty() && hasValue ? name + " takes no value"
                                               : "";
        if (!error.empty()) {
            throw badUsage(error);
        }
        std::string value = hasValue ? word->text.substr(equals + 1) : "";
        if (!option.value.empty() && !hasValue) {
            if (++word == given.end() || word->isOption()) {
                throw badUsage(name + " needs a value");
            }
            value = word->text;
        }
        if (option.check) {
            option.check(name, value);
        }
        arguments.options[name] = value;
    }
    return arguments;
}

std::string nearestOf(const Names& words, const std::string& given) {
    constexpr std::size_t kLongest = 40;
    constexpr std::size_t kLettersPerSlip = 3;
    const std::string slip = essenceOf(given).substr(0, kLongest);
    std::string nearest;
    std::size_t shortest = kLongest;
    for (const std::string& word : words) {
        const std::string essence = essenceOf(word);
        const std::size_t distance = distanceOf(essence, slip);
        if (distance < shortest && distance * kLettersPerSlip <= essence.size() + 1) {
            shortest = distance;
            nearest = word;
        }
    }
    return nearest;
}

}  // namespace velactl
