// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Operation.h"

#include <algorithm>
#include <iterator>

#include "scenario/Stage.h"

namespace velactl {

namespace {

constexpr int kMaxCount = 1000000;

Operations collect() {
    Operations all;
    const char* section = "";
    for (auto* const list : {profileOperations, policyOperations, simulatorOperations,
                             expectOperations, playOperations, helpOperations}) {
        for (const Operation& operation : list()) {
            if (operation.run == nullptr) {
                section = operation.help;
            } else {
                all.push_back(operation);
                all.back().section = section;
            }
        }
    }
    return all;
}

/** Whether it is written as it stands, unlike a placeholder. */
bool isName(const std::string& piece) {
    return piece.find_first_of("[|") == std::string::npos && piece == toLower(piece);
}

bool startsWith(const Names& words, const Names& start) {
    return words.size() >= start.size() && std::equal(start.begin(), start.end(), words.begin());
}

void verifyWord(const std::string& word, const std::string& placeholder) {
    const Names choices = choicesIn(placeholder);
    if (isName(choices.front()) &&
        std::find(choices.begin(), choices.end(), word) == choices.end()) {
        throw badUsage(inQuotes(word) + ": use " + alternatives(choices));
    }
    const std::string error = choices == Names{"N"}    ? wrongNumber(word, 0, kMaxCount)
                              : choices == Names{"ID"} ? wrongNumber(word, 0, kMaxIndex)
                              : word.empty()           ? "an empty word means nothing here"
                                                       : "";
    if (!error.empty()) {
        throw badUsage(placeholder + ": " + error);
    }
}

/** The operation's name that was probably meant by misspelt words; empty when none is similar. */
std::string nearestName(const Operations& list, const Names& words) {
    const auto firstOf = [](const Operation& each) { return each.nameWords().front(); };
    const std::string first = nearestOf(namesIn(list, firstOf), words.front());
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
    std::erase_if(text, [](char byte) { return byte == '[' || byte == ']' || byte == '.'; });
    return split(text, '|');
}

Names Operation::nameWords() const {
    Names words = split(form, ' ');
    words.erase(std::find_if_not(words.begin(), words.end(), isName), words.end());
    return words;
}

Names Operation::placeholders(unsigned place) const {
    Names pieces = split(form, ' ');
    pieces.erase(pieces.begin(), std::find_if_not(pieces.begin(), pieces.end(), isName));
    if (place == kVerb) {
        std::erase(pieces, "[KEY]");
        for (std::string& piece : pieces) {
            const std::size_t key = piece.find("KEY|");
            piece.erase(std::min(key, piece.size()), key == std::string::npos ? 0 : 4);
        }
    }
    return pieces;
}

Names Operation::usage(unsigned place) const {
    Names pieces = placeholders(place);
    pieces.insert(pieces.begin(), name());
    for (const Option& option : optionsOf(options)) {
        const std::string group = option.groupName();
        const std::string piece = group.empty() ? option.usage() : group;
        const bool isNeeded = group == "fields" && (options & kSomeField) != 0;
        pieces.push_back(isNeeded ? piece : '[' + piece + ']');
    }
    // A group stands there once.
    pieces.erase(std::unique(pieces.begin(), pieces.end()), pieces.end());
    return pieces;
}

void Operation::verify(const Arguments& arguments) const {
    const Names all = placeholders(arguments.place);
    const auto fewest =
        std::count_if(all.begin(), all.end(), [](const auto& each) { return each.front() != '['; });
    const bool isEndless = !all.empty() && all.back().find("...") != std::string::npos;
    const std::size_t given = arguments.words.size();
    if (given < static_cast<std::size_t>(fewest) || (given > all.size() && !isEndless)) {
        throw badUsage("write it as: " + join(usage(arguments.place), " "));
    }
    for (std::size_t i = 0; i < given && (options & kFreeText) == 0; ++i) {
        verifyWord(arguments.words[i], all[std::min(i, all.size() - 1)]);
    }
    if ((options & kSomeField) != 0 && arguments.fields().empty()) {
        throw badUsage(name() + ": nothing to change; give at least one field, as --apn NAME");
    }
    if (check != nullptr) {
        check(arguments);
    }
}

Operations operationsAt(unsigned places, const Names& words) {
    static const Operations all = collect();
    Operations some = all;
    std::erase_if(some, [&](const Operation& each) {
        const Names name = each.nameWords();
        return (each.places & places) == 0 || !(startsWith(name, words) || startsWith(words, name));
    });
    return some;
}

Operation operationOf(unsigned place, const Names& words) {
    const Operations family = operationsAt(place, {words.front()});
    for (const Operation& operation : family) {
        if (startsWith(words, operation.nameWords())) {
            return operation;
        }
    }
    const std::string nearest = nearestName(operationsAt(place), words);
    throw badUsage(inQuotes(withoutSecret(words.front())) + " is not a " +
                   (place == kVerb ? "verb; " : "statement; ") +
                   (!nearest.empty() && nearest != words.front()
                        ? "did you mean " + inQuotes(nearest) + "?"
                    : family.empty() ? "help lists them"
                                     : "use " + alternatives(namesIn(family, &Operation::name))));
}

Statement::Statement(const ScenarioWords& words, unsigned place)
    : kind(operationOf(place, namesIn(words, &ScenarioWord::text))) {
    const ScenarioWords given{std::next(words.begin(), std::ssize(kind.nameWords())), words.end()};
    if ((kind.options & kFreeText) != 0) {
        arguments.words = namesIn(given, &ScenarioWord::text);
    } else {
        const unsigned groups = kind.options | (place == kVerb ? kEveryVerb : 0U);
        arguments = readArguments(optionsOf(groups), given);
    }
    arguments.place = place;
    kind.verify(arguments);
}

void Statement::play(Stage& stage) const {
    stage.begin(kind.name());
    kind.run(stage, arguments);
    stage.settle();
}

}  // namespace velactl
