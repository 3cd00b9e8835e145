// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "scenario/Arguments.h"
#include "scenario/ScenarioText.h"
#include "scenario/Stage.h"

namespace velactl {

/** One kind of statement. */
struct StatementKind {
    /** One or two words, as "foreign create". */
    const char* name;
    const char* usage;  // what follows the name
    const char* help;
    std::size_t fewestWords;
    std::size_t mostWords;
    unsigned optionGroups;
    /** Checks words that only this kind understands; null when there are none. Throws ToolError. */
    void (*check)(const Arguments& arguments);
    /** Plays it; throws ToolError when it cannot be played or an expectation does not hold. */
    void (*run)(Stage& stage, const Arguments& arguments);
};

/** All kinds, in the order of the help. */
const std::vector<StatementKind>& statementKinds();

/** Those that the words name, whole or begun; words behind a whole name do not count. */
std::vector<StatementKind> kindsNamed(const std::vector<ScenarioWord>& words);

/** A statement that has been read and can be played any number of times. */
class Statement {
  public:
    /** Throws ToolError that says what is wrong and what would be right. */
    explicit Statement(const std::vector<ScenarioWord>& words);

    void run(Stage& stage) const { kind->run(stage, arguments); }

  private:
    const StatementKind* kind;
    Arguments arguments;
};

// Groups of kinds, each in a file of its own.
std::vector<StatementKind> clientStatements();
std::vector<StatementKind> modemStatements();
std::vector<StatementKind> faultStatements();
std::vector<StatementKind> expectStatements();

}  // namespace velactl
