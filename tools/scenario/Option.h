// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The one table of options. Reading, usages, help and completion follow from it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "profiles/ProfileField.h"

namespace velactl {

/** What an operation takes besides its words; options of other operations are refused. */
enum OptionGroup : unsigned {
    kNoOptions = 0,
    kFields = 1U << 0U,     // the fields of a profile
    kSomeField = 1U << 1U,  // the same, of which at least one must be given
    kSearch = 1U << 2U,     // the same, and what else can be searched for
    kKept = 1U << 3U,       // the same, and what is only known of a profile that is there
    kOperator = 1U << 4U,   // an operator's entries
    kLifetime = 1U << 5U,   // of a profile to be made
    kTech = 1U << 6U,
    kUpdate = 1U << 7U,  // what a policy may do
    kProvision = 1U << 8U,
    kRule = 1U << 9U,  // when a fault strikes
    kInstance = 1U << 10U,
    kSeed = 1U << 11U,       // of the faults that strike by chance
    kTables = 1U << 12U,     // help in other forms: of documents, manuals, shells
    kPlaying = 1U << 13U,    // how scenarios are played
    kEveryVerb = 1U << 14U,  // of the command line
    kFreeText = 1U << 15U    // none: whatever it is given are words
};

/** One option: all that is said of it is said here. */
struct Option {
    /** Those to which it belongs. */
    unsigned groups;
    std::string name;
    /** What stands behind it, as "FILE"; empty: nothing. */
    std::string value;
    std::string help;
    /** Throws ToolError, which begins with `name`, for a value that is none; may be empty. */
    std::function<void(const std::string& name, const std::string& text)> check = {};
    /** What its value may be, if these are words. */
    Names choices = {};
    /** Of a switch: the name of its opposite. */
    std::string opposite = {};

    /** "fields" and other names of groups; empty: usages tell the option itself. */
    const char* groupName() const {
        return (groups & kKept) != 0 ? "fields" : (groups & kOperator) != 0 ? "operator" : "";
    }
    /** "--clat, --no-clat", "--tech T" */
    std::string usage() const {
        return name + (opposite.empty() ? "" : ", " + opposite) +
               (value.empty() ? "" : ' ' + value);
    }
};

/** The options of these groups, in the order of usages. */
std::vector<Option> optionsOf(unsigned groups);

/** The one of that name, or of that opposite; null when there is none. */
const Option* findOption(const std::vector<Option>& options, const std::string& name);

/** The name that each has. */
template <typename List, typename Name>
Names namesIn(const List& list, Name name) {
    Names names;
    for (const auto& each : list) {
        names.push_back(std::invoke(name, each));
    }
    return names;
}

}  // namespace velactl
