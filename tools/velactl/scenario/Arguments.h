// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/ProfileTypes.h>
#include <velasim/Fault.h>

#include <optional>
#include <string>
#include <vector>

#include "ProfileOptions.h"
#include "scenario/ScenarioText.h"

namespace velactl {

/** What a statement takes besides its words; options of other statements are refused. */
enum OptionGroup : unsigned {
    kNoOptions = 0,
    kFields = 1,    // the fields of a profile
    kTech = 2,      // --tech
    kLifetime = 4,  // --temporary, --ia
    kSearch = 8,    // --id
    kRule = 16,     // when a fault strikes
    kFreeText = 32  // none: whatever it is given are words
};

/** What a statement was given. A plain value once parsed. */
struct Arguments {
    std::vector<std::string> words;  // without options
    ProfileOptions fields;
    bool isTemporary = false;
    bool isForAttach = false;
    std::optional<int> id;
    std::string techName = "3GPP";

    std::optional<std::string> message;
    std::uint32_t first = 1;
    std::uint32_t every = 1;
    std::uint32_t count = 1;
    double probability = 1.0;
    std::optional<std::int64_t> value;

    vela::TechType tech() const;

    /** A word as a number in a range; throws ToolError that says what it should be. */
    int number(std::size_t word, int lowest, int highest, const char* what) const;

    /** Parses `given`, the statement without its name. Throws ToolError. */
    void parse(const std::vector<ScenarioWord>& given, unsigned optionGroups);

    /** The options of these groups, as they are typed. */
    static std::vector<std::string> optionNames(unsigned optionGroups);

  private:
    void addTo(CLI::App& app, unsigned optionGroups);
    std::vector<std::string> takeOptions(const CLI::App& app,
                                         const std::vector<ScenarioWord>& given);
};

}  // namespace velactl
