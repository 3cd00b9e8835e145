// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Arguments.h"

#include <algorithm>

#include "profiles/ProfileField.h"
#include "profiles/Text.h"
#include "profiles/ToolError.h"
#include "profiles/Words.h"

namespace velactl {

namespace {

/** How many letters must be put in, left out, replaced or exchanged with their neighbour. */
std::size_t distanceOf(const std::string& left, const std::string& right) {
    std::vector<std::vector<std::size_t>> table(left.size() + 1,
                                                std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
                continue;
            }
            const std::size_t kept = table[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1, kept});
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
    const Option* option = findOption(options, name);
    if (option == nullptr) {
        Names names;
        for (const Option& each : options) {
            names.push_back(each.name);
        }
        const std::string nearest = nearestOf(names, name);
        throw badUsage(inQuotes(name) + " is no option here; " +
                       (names.empty()     ? "there are none"
                        : nearest.empty() ? "use " + alternatives(names)
                                          : "did you mean " + inQuotes(nearest) + "?"));
    }
    return *option;
}

/** An option is given once, and not with its opposite. */
void checkOnce(const Arguments& arguments, const Option& option, const std::string& name) {
    if (arguments.has(name)) {
        throw badUsage(name + " is given twice");
    }
    if (arguments.has(option.name) ||
        (!option.opposite.empty() && arguments.has(option.opposite))) {
        throw badUsage(option.name + " and " + option.opposite + " exclude each other");
    }
}

}  // namespace

std::string Arguments::text(const std::string& option, const std::string& otherwise) const {
    const auto found = options.find(option);
    return found == options.end() ? otherwise : found->second;
}

std::int64_t Arguments::number(const std::string& option, std::int64_t otherwise) const {
    return has(option) ? std::stoll(text(option)) : otherwise;
}

std::string Arguments::word(std::size_t place) const {
    return place < words.size() ? words[place] : std::string();
}

vela::TechType Arguments::tech() const {
    return has("--tech") ? readTech("--tech", text("--tech")) : vela::TechType::TECH_3GPP;
}

std::string Arguments::givenFor(const ProfileField& field) const {
    if (field.kind != ProfileField::Kind::Switch) {
        return has(field.option()) ? field.option() : "";
    }
    return has(field.option()) ? field.option() : has(field.offOption()) ? field.offOption() : "";
}

bool Arguments::hasFields() const {
    const auto& all = profileFields();
    return std::any_of(all.begin(), all.end(),
                       [this](const ProfileField& field) { return !givenFor(field).empty(); });
}

Json Arguments::fields() const {
    Json given = Json::object();
    for (const ProfileField& field : profileFields()) {
        const std::string option = givenFor(field);
        if (!option.empty()) {
            given[field.key] = field.kind == ProfileField::Kind::Switch
                                   ? Json(option == field.option())
                                   : field.read(option, text(option));
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
        const std::string name = word->text.substr(0, equals);
        const Option& option = optionNamed(options, name);
        checkOnce(arguments, option, name);
        std::string value;
        if (equals != std::string::npos) {
            value = word->text.substr(equals + 1);
        } else if (!option.value.empty()) {
            if (++word == given.end() || word->isOption()) {
                throw badUsage(name + " needs a value");
            }
            value = word->text;
        }
        if (option.value.empty() && equals != std::string::npos) {
            throw badUsage(name + " takes no value");
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
