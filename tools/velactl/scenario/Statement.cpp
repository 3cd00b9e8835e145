// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Statement.h"

#include <algorithm>
#include <limits>

#include "Text.h"
#include "ToolError.h"

namespace velactl {

namespace {

std::vector<StatementKind> collectKinds() {
    std::vector<StatementKind> all;
    for (auto* group : {clientStatements, modemStatements, faultStatements, expectStatements}) {
        const auto kinds = group();
        all.insert(all.end(), kinds.begin(), kinds.end());
    }
    return all;
}

std::vector<std::string> nameWords(const StatementKind& kind) {
    return split(kind.name, ' ');
}

bool startsWith(const std::vector<ScenarioWord>& words, const std::vector<std::string>& prefix) {
    return words.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), words.begin(),
                      [](const auto& name, const auto& word) { return name == word.text; });
}

std::size_t editDistance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    for (std::size_t column = 0; column < row.size(); ++column) {
        row[column] = column;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

/** The names of all kinds that begin with the first word, or a name that is much like it. */
std::string suggestion(const std::string& given) {
    std::vector<std::string> family;
    std::string nearest;
    std::size_t shortest = std::numeric_limits<std::size_t>::max();
    for (const StatementKind& kind : statementKinds()) {
        if (nameWords(kind).front() == given) {
            family.emplace_back(kind.name);
        }
        const std::size_t distance = editDistance(kind.name, given.substr(0, 40));
        if (distance < shortest) {
            shortest = distance;
            nearest = kind.name;
        }
    }
    if (!family.empty()) {
        return "use " + alternatives(family);
    }
    const bool isAlike = shortest <= nearest.size() / 2;
    return isAlike ? "did you mean " + inQuotes(nearest) + "?" : "help in velactl shell lists all";
}

const StatementKind& kindOf(const std::vector<ScenarioWord>& words) {
    const auto& kinds = statementKinds();
    const auto found = std::find_if(kinds.begin(), kinds.end(), [&words](const auto& kind) {
        return startsWith(words, nameWords(kind));
    });
    if (found == kinds.end()) {
        throw badUsage("unknown statement " + inQuotes(withoutSecret(words.front().text)) + "; " +
                       suggestion(words.front().text));
    }
    return *found;
}

}  // namespace

const std::vector<StatementKind>& statementKinds() {
    static const std::vector<StatementKind> kinds = collectKinds();
    return kinds;
}

std::vector<StatementKind> kindsNamed(const std::vector<ScenarioWord>& words) {
    std::vector<StatementKind> named;
    std::copy_if(
        statementKinds().begin(), statementKinds().end(), std::back_inserter(named),
        [&words](const StatementKind& kind) {
            const auto name = nameWords(kind);
            return std::equal(
                name.begin(),
                name.begin() + static_cast<std::ptrdiff_t>(std::min(name.size(), words.size())),
                words.begin(),
                [](const auto& part, const auto& word) { return part == word.text; });
        });
    return named;
}

Statement::Statement(const std::vector<ScenarioWord>& words) : kind(&kindOf(words)) {
    const auto nameLength = static_cast<std::ptrdiff_t>(nameWords(*kind).size());
    arguments.parse({words.begin() + nameLength, words.end()}, kind->optionGroups);
    if (arguments.words.size() < kind->fewestWords || arguments.words.size() > kind->mostWords) {
        throw badUsage("write it as: " + std::string(kind->name) + " " + kind->usage);
    }
    if (kind->check != nullptr) {
        kind->check(arguments);
    }
}

}  // namespace velactl
