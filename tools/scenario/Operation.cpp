// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Operation.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "profiles/Text.h"
#include "profiles/ToolError.h"
#include "profiles/Words.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

constexpr int kMaxCount = 1000000;

Operations collect() {
    Operations all;
    for (auto [section, list] : {std::pair("Looking", lookOperations()),
                                 {"Profiles", profileOperations()},
                                 {"Policies", policyOperations()},
                                 {"The modem, and others", modemOperations()},
                                 {"Faults", faultOperations()},
                                 {"Expectations", expectOperations()}}) {
        for (Operation& operation : list) {
            operation.section = section;
            all.push_back(operation);
        }
    }
    return all;
}

bool isOptional(const std::string& placeholder) {
    return placeholder.front() == '[';
}

bool startsWith(const Names& words, const Names& start) {
    return words.size() >= start.size() && std::equal(start.begin(), start.end(), words.begin());
}

void verifyWord(const std::string& word, const std::string& placeholder) {
    const Names choices = choicesIn(placeholder);
    const bool isChoice = choices.front() == toLower(choices.front());
    if (isChoice && std::find(choices.begin(), choices.end(), word) == choices.end()) {
        throw badUsage(inQuotes(word) + ": use " + alternatives(choices));
    }
    const std::string error = choices == Names{"N"}    ? wrongNumber(word, 0, kMaxCount)
                              : choices == Names{"ID"} ? wrongNumber(word, 0, kMaxIndex)
                              : word.empty()           ? "an empty word stands for nothing"
                                                       : "";
    if (!error.empty()) {
        throw badUsage(placeholder + ": " + error);
    }
}

Names namesOf(const Operations& list) {
    Names names;
    std::transform(list.begin(), list.end(), std::back_inserter(names),
                   [](const Operation& operation) { return operation.name; });
    return names;
}

/** The name that the words may be slips of, as far as they go; empty: nothing is near. */
std::string nearestName(const Operations& list, const Names& words) {
    Names firsts;
    std::transform(list.begin(), list.end(), std::back_inserter(firsts),
                   [](const Operation& operation) { return operation.nameWords().front(); });
    const std::string first = nearestOf(firsts, words.front());
    Names seconds;
    for (const Operation& operation : list) {
        const Names name = operation.nameWords();
        if (name.size() > 1 && name.front() == first && words.size() > 1) {
            seconds.push_back(name.back());
        }
    }
    const std::string second = seconds.empty() ? "" : nearestOf(seconds, words[1]);
    return second.empty() ? first : first + ' ' + second;
}

}  // namespace

Names choicesIn(const std::string& placeholder) {
    std::string text = placeholder;
    text.erase(std::remove_if(text.begin(), text.end(),
                              [](char byte) { return byte == '[' || byte == ']' || byte == '.'; }),
               text.end());
    return split(text, '|');
}

Names Operation::nameWords() const {
    return split(name, ' ');
}

Names Operation::placeholders(Place place) const {
    Names pieces = split(words, ' ');
    if (place == kVerb) {
        std::erase(pieces, "[KEY]");
        for (std::string& piece : pieces) {
            const std::size_t key = piece.find("KEY|");
            piece.erase(std::min(key, piece.size()), key == std::string::npos ? 0 : 4);
        }
    }
    return pieces;
}

Names Operation::usage(Place place) const {
    Names pieces = placeholders(place);
    pieces.insert(pieces.begin(), name);
    for (const Option& option : optionsOf(options)) {
        const std::string group = option.groupName();
        const std::string piece = group.empty() ? option.usage() : group;
        pieces.push_back(group == "fields" && (options & kSomeField) != 0 ? piece
                                                                          : '[' + piece + ']');
    }
    // A group stands there once.
    pieces.erase(std::unique(pieces.begin(), pieces.end()), pieces.end());
    return pieces;
}

void Operation::verify(const Arguments& arguments, Place place) const {
    const Names all = placeholders(place);
    const auto fewest = std::count_if(all.begin(), all.end(), std::not_fn(isOptional));
    const bool isEndless = !all.empty() && all.back().find("...") != std::string::npos;
    const std::size_t given = arguments.words.size();
    if (given < static_cast<std::size_t>(fewest) || (given > all.size() && !isEndless)) {
        throw badUsage("write it as: " + join(usage(place), " "));
    }
    for (std::size_t i = 0; i < given && (options & kFreeText) == 0; ++i) {
        verifyWord(arguments.words[i], all[std::min(i, all.size() - 1)]);
    }
    if ((options & kSomeField) != 0 && !arguments.hasFields()) {
        throw badUsage(std::string(name) +
                       ": nothing to change; give at least one field, as --apn NAME");
    }
    if (check != nullptr) {
        check(arguments);
    }
}

Operations operationsAt(Place place) {
    static const Operations all = collect();
    Operations some;
    std::copy_if(all.begin(), all.end(), std::back_inserter(some),
                 [place](const Operation& each) { return (each.places & place) != 0; });
    return some;
}

Operations operationsNamed(const Operations& list, const Names& words) {
    Operations named;
    std::copy_if(list.begin(), list.end(), std::back_inserter(named),
                 [&words](const Operation& operation) {
                     const Names name = operation.nameWords();
                     return startsWith(name, words) || startsWith(words, name);
                 });
    return named;
}

Operation operationOf(const Operations& list, const Names& words, const std::string& kind) {
    const Operations family = operationsNamed(list, {words.begin(), words.begin() + 1});
    for (const Operation& operation : family) {
        if (startsWith(words, operation.nameWords())) {
            return operation;
        }
    }
    const std::string nearest = nearestName(list, words);
    throw badUsage(inQuotes(withoutSecret(words.front())) + " is no " + kind + "; " +
                   (!nearest.empty() && nearest != words.front()
                        ? "did you mean " + inQuotes(nearest) + "?"
                    : family.empty() ? "help lists them"
                                     : "use " + alternatives(namesOf(family))));
}

Statement::Statement(const Operation& operation, Place place, const ScenarioWords& words)
    : kind(operation) {
    const ScenarioWords given{std::next(words.begin(), std::ssize(kind.nameWords())), words.end()};
    if ((kind.options & kFreeText) != 0) {
        arguments.words = textsOf(given);
    } else {
        const unsigned groups = kind.options | (place == kVerb ? kEveryVerb : 0U);
        arguments = readArguments(optionsOf(groups), given);
    }
    kind.verify(arguments, place);
}

Statement::Statement(const ScenarioWords& words)
    : Statement(operationOf(operationsAt(kStatement), textsOf(words), "statement"), kStatement,
                words) {}

void Statement::play(Stage& stage) const {
    stage.begin(kind.name);
    kind.run(stage, arguments);
    stage.settle();
}

}  // namespace velactl
