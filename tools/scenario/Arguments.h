// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "profiles/ProfileField.h"
#include "scenario/Option.h"
#include "scenario/ScenarioText.h"

namespace velactl {

/** What an operation was given. A plain value once read. */
struct Arguments {
    Names words;  // without options
    /** By the options' names; of a switch's opposite as well. */
    std::map<std::string, std::string> options;

    bool has(const std::string& option) const { return options.count(option) != 0; }
    std::string text(const std::string& option, const std::string& otherwise = "") const;
    std::int64_t number(const std::string& option, std::int64_t otherwise) const;

    /** The word at a place; empty: it was not given. */
    std::string word(std::size_t place = 0) const;

    /** 3GPP unless another one was given. */
    vela::TechType tech() const;

    /** The option that was given for a field; empty: none was. */
    std::string givenFor(const ProfileField& field) const;
    /** The fields that were given, those that no request can ask for among them. */
    bool hasFields() const;
    Json fields() const;

    /** What is asked for by fields and by the options of searches; --tech only if it was given. */
    vela::FilterProfileParams filter() const;
};

/** Sorts words and options. Throws ToolError that says what would be right. */
Arguments readArguments(const std::vector<Option>& options, const ScenarioWords& given);

/** That of the words which `given` may be a slip of; empty: none is near. */
std::string nearestOf(const Names& words, const std::string& given);

}  // namespace velactl
