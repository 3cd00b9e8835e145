// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Option.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <limits>

#include "operators/OperatorFile.h"
#include "profiles/Output.h"
#include "profiles/Text.h"
#include "scenario/Help.h"

namespace velactl {

namespace {

constexpr std::int64_t kMaxInstance = 15;
constexpr std::int64_t kMaxCapacity = 255;
constexpr std::int64_t kMaxWait = 86400;
constexpr std::int64_t kMaxNumber = std::numeric_limits<std::uint32_t>::max();

auto number(std::int64_t lowest, std::int64_t highest) {
    return [lowest, highest](const std::string& name, const std::string& text) {
        const std::string error = wrongNumber(text, lowest, highest);
        if (!error.empty()) {
            throw badUsage(name + ": " + error);
        }
    };
}

auto oneOf(const Names& words) {
    return
        [words](const std::string& name, const std::string& text) { readOneOf(name, text, words); };
}

void probability(const std::string& name, const std::string& text) {
    // Not std::from_chars, which libc++ has for whole numbers only.
    char* end = nullptr;
    errno = 0;
    const double number = std::strtod(text.c_str(), &end);
    const bool isNumber = !text.empty() && *end == '\0' && errno == 0 &&
                          text.find_first_not_of("0123456789.e-") == std::string::npos;
    if (!isNumber || !(number >= 0 && number <= 1)) {
        throw badUsage(name + ": " + inQuotes(text) + " must be a number from 0 to 1");
    }
}

void notEmpty(const std::string& name, const std::string& text) {
    if (text.empty()) {
        throw badUsage(name +
                       ": the value is empty; leave the option out, or say what it should be");
    }
}

unsigned groupsOf(ProfileField::Scope scope) {
    using Scope = ProfileField::Scope;
    return scope == Scope::Request  ? kFields | kSomeField | kSearch | kKept
           : scope == Scope::Filter ? kSearch | kKept
                                    : kKept;
}

Option optionOf(const ProfileField& field) {
    Option option{groupsOf(field.scope), field.option(), "", field.help};
    if (field.kind == ProfileField::Kind::Switch) {
        option.opposite = field.offOption();
        return option;
    }
    option.value = "TEXT";
    option.help += ": " + field.valuesText();
    option.check = [&field](const auto& name, const auto& text) { field.read(name, text); };
    option.choices = field.words;
    return option;
}

std::vector<Option> collect() {
    std::vector<Option> all{
        {kOperator, "--apns", "FILE",
         "operator file (Android's apns-conf.xml); - reads the standard input", notEmpty},
        {kOperator, "--plmn", "MCCMNC", "the operator: 26201 or 310/260",
         [](const std::string& name, const std::string& text) {
             notEmpty(name, text);
             Plmn::parse(text);
         }},
        {kOperator, "--mvno", "TYPE:DATA", "its virtual operator: gid:BAE0", notEmpty},
        {kSearch, "--index", "N", "only the profile of that index", number(0, kMaxIndex)},
        {kSearch, "--loose", "",
         "names and types may be contained, IP types may overlap either way"},
        {kLifetime, "--temporary", "", "a profile that ends with the last key to it"},
        {kLifetime, "--ia", "", "a profile for the LTE initial attach"},
        {kTech, "--tech", "T", "3GPP or 3GPP2", readTech, wordsOf<vela::TechType>().names},
        {kUpdate, "--allow-update", "",
         "the policy may rewrite profiles that the library did not make"},
        {kProvision, "--all", "", "every operator of the file, each on a fresh modem"},
        {kProvision, "--twice", "",
         "with --all: again on the same modem, which must change nothing"},
        {kProvision, "--explain", "", "also tell which attributes a profile has no field for"},
        {kRule, "--message", "M", "what it strikes; any unless said otherwise"},
        {kRule, "--first", "N", "the occurrence that it strikes first", number(1, kMaxNumber)},
        {kRule, "--every", "N", "then every so many", number(1, kMaxNumber)},
        {kRule, "--count", "N", "at most so often; 0: without end", number(0, kMaxNumber)},
        {kRule, "--probability", "P", "by chance, from 0 to 1", probability},
        {kRule, "--value", "V", "what it means depends on the fault",
         number(std::numeric_limits<std::int32_t>::min(), kMaxNumber)},
        {kSeed, "--seed", "N", "seed of the faults that strike by chance",
         number(0, std::numeric_limits<std::int64_t>::max())},
        {kTables, "--verbs", "", "all verbs, as a document's tables"},
        {kTables, "--statements", "", "all statements, likewise"},
        {kTables, "--man", "", "the manual page of the tool or of a verb, for groff"},
        {kTables, "--completion", "SHELL", "lets a shell complete lines: bash or zsh",
         oneOf(shellNames()), shellNames()},
        {kPlaying, "--quiet", "", "tell only what the scenario itself says and shows"},
        {kPlaying, "--journal", "", "all that crossed to the modem, at the end"},
        {kPlaying, "--junit", "FILE", "write a report in JUnit's format", notEmpty},
        {kEveryVerb, "--modem", "FILE", "file that keeps the simulated modem's memory between runs",
         notEmpty},
        {kInstance | kEveryVerb, "--instance", "N", "modem instance (subscription), from 0",
         number(0, kMaxInstance)},
        {kEveryVerb, "--capacity", "N",
         "profiles per technology of the simulated modem (16 when it is new)",
         number(1, kMaxCapacity)},
        {kEveryVerb, "--wait", "SECONDS",
         "for how many seconds others may keep the modem's file (10)", number(0, kMaxWait)},
        {kEveryVerb, "--json", "", "one JSON document instead of text"},
        {kEveryVerb, "--columns", "LIST",
         "of tables of profiles, as index,apn,types; all that fit when not given", readColumns,
         columnNames()},
        {kEveryVerb, "--show-secrets", "", "do not mask passwords"},
        {kEveryVerb, "--log", "", "the library's log lines on the error stream"},
        {kEveryVerb, "--help", "", "this help, or that of the verb; so does -h"},
        {kEveryVerb, "--version", "", "the version of the tool"},
    };
    const auto& fields = profileFields();
    std::transform(fields.begin(), fields.end(), std::inserter(all, all.begin()), optionOf);
    return all;
}

}  // namespace

std::vector<Option> optionsOf(unsigned groups) {
    static const std::vector<Option> all = collect();
    std::vector<Option> some = all;
    std::erase_if(some, [groups](const Option& each) { return (each.groups & groups) == 0; });
    return some;
}

const Option* findOption(const std::vector<Option>& options, const std::string& name) {
    const auto found = std::find_if(options.begin(), options.end(), [&name](const Option& option) {
        return name == option.name || (!name.empty() && name == option.opposite);
    });
    return found == options.end() ? nullptr : &*found;
}

}  // namespace velactl
