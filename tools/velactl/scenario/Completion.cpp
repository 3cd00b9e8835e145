// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Completion.h"

#include <algorithm>
#include <set>

#include "Text.h"
#include "scenario/Statement.h"

namespace velactl {

namespace {

bool startsWith(const std::vector<std::string>& words, const std::vector<std::string>& start) {
    return words.size() >= start.size() && std::equal(start.begin(), start.end(), words.begin());
}

/** The words before the one that is being typed. */
std::vector<std::string> finishedWords(const std::string& line) {
    const std::size_t end = line.find_last_of(' ');
    std::vector<std::string> words;
    if (end != std::string::npos) {
        words = split(line.substr(0, end), ' ');
        std::erase(words, "");
    }
    return words;
}

/** What may stand first behind a statement's name; its usage tells. */
std::vector<std::string> firstWords(const StatementKind& kind,
                                    const std::vector<std::string>& keyNames) {
    const std::string first = split(kind.usage, ' ').empty() ? "" : split(kind.usage, ' ').front();
    if (first == "KEY") {
        return keyNames;
    }
    if (first != "NAME") {
        return first.find('|') == std::string::npos ? std::vector<std::string>()
                                                    : split(first, '|');
    }
    std::vector<std::string> names;
    for (const velasim::Fault fault : velasim::allFaults()) {
        names.push_back(velasim::toString(fault));
    }
    return names;
}

}  // namespace

std::vector<std::string> completionsOf(const std::string& line,
                                       const std::vector<std::string>& keyNames) {
    const std::vector<std::string> finished = finishedWords(line);
    const std::string begun = line.substr(line.find_last_of(' ') + 1);
    std::set<std::string> fitting;
    const auto offer = [&](const std::string& word) {
        if (word.compare(0, begun.size(), begun) == 0) {
            fitting.insert(word);
        }
    };
    for (const StatementKind& kind : statementKinds()) {
        const std::vector<std::string> name = split(kind.name, ' ');
        if (startsWith(finished, name)) {
            const std::size_t given = finished.size() - name.size();
            const auto words = given == 0 ? firstWords(kind, keyNames) : std::vector<std::string>();
            std::for_each(words.begin(), words.end(), offer);
            if (given >= kind.fewestWords || begun.rfind('-', 0) == 0) {
                const auto options = Arguments::optionNames(kind.optionGroups);
                std::for_each(options.begin(), options.end(), offer);
            }
        } else if (startsWith(name, finished)) {
            offer(name.at(finished.size()));
        }
    }
    if (finished.empty()) {
        offer("help");
        offer("quit");
    }
    return {fitting.begin(), fitting.end()};
}

}  // namespace velactl
