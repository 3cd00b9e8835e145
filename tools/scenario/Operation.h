// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "scenario/Arguments.h"

namespace velactl {

class Stage;

/** Where an operation can be given. */
enum Place : unsigned {
    kStatement = 1,  // in a scenario and in the shell
    kVerb = 2,       // on the command line, where it is a statement run once
    kEverywhere = kStatement | kVerb,
    kLooking = 4  // changes nothing, so that others may use the modem's file meanwhile
};

/** One kind of statement, or of verb: all that is said of it is said here. */
struct Operation {
    /** One or two words, as "foreign create". */
    const char* name;
    /** The words behind it: "KEY [ID]"; "[X...]" any number; "on|off" one of these. */
    const char* words;
    unsigned options;
    unsigned places;
    const char* help;
    /** Throws ToolError when it cannot be done or an expectation does not hold. */
    void (*run)(Stage& stage, const Arguments& arguments);
    /** Checks what only this one understands; may be null. Throws ToolError. */
    void (*check)(const Arguments& arguments) = nullptr;
    /** What may stand for a placeholder, of an option's value as well; may be null. */
    Names (*values)(const std::string& placeholder) = nullptr;
    /** The heading under which help and documents have it. */
    const char* section = "";

    Names nameWords() const;
    /** Of the words behind the name. A verb holds no keys. */
    Names placeholders(Place place) const;
    /** As it is written at that place: "add", "[KEY]", "[fields]", "[--tech T]". */
    Names usage(Place place) const;
    /** Throws ToolError when these are not arguments for it. */
    void verify(const Arguments& arguments, Place place) const;
};

using Operations = std::vector<Operation>;

/** Those that can be given at that place, in the order of the help. */
Operations operationsAt(Place place);

/** Those of the list whose names begin with the words, or are begun by them. */
Operations operationsNamed(const Operations& list, const Names& words);

/** The one whose name the words begin with; throws ToolError with a suggestion. `kind` is what the
 * list is of, as "verb". */
Operation operationOf(const Operations& list, const Names& words, const std::string& kind);

/** "KEY|ID" in its parts, without brackets and dots. */
Names choicesIn(const std::string& placeholder);

/** An operation with all that it was given, which can be played any number of times. */
class Statement {
  public:
    /** `words` begin with the operation's name. Throws ToolError that says what is wrong and what
     * would be right. */
    Statement(const Operation& operation, Place place, const ScenarioWords& words);

    /** A statement of a scenario. */
    explicit Statement(const ScenarioWords& words);

    /** Plays it and tells what it did to the modem. Throws ToolError when it cannot be played or an
     * expectation does not hold. */
    void play(Stage& stage) const;

    const Operation& operation() const { return kind; }
    const Arguments& given() const { return arguments; }

  private:
    Operation kind;
    Arguments arguments;
};

// The parts of the list, each in a file of its own.
Operations lookOperations();
Operations profileOperations();
Operations policyOperations();
Operations expectOperations();
// What only a simulator can do; none when there is none.
Operations modemOperations();
Operations faultOperations();

}  // namespace velactl
