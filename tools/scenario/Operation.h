// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "profiles/Text.h"
#include "scenario/Arguments.h"

namespace velactl {

class Stage;

/** One kind of statement, or of verb: all that is said of it is said here. */
struct Operation {
    /** As people write it: its name, of one or two words, and the words behind that: "KEY [ID]";
     * "[X...]" any number; "on|off" one of these. */
    const char* form;
    const char* help;
    /** Throws ToolError when it cannot be done or an expectation does not hold. */
    void (*run)(Stage& stage, const Arguments& arguments);
    unsigned options = kNoOptions;
    unsigned places = kStatement;
    /** Checks what only this one understands; may be null. Throws ToolError. */
    void (*check)(const Arguments& arguments) = nullptr;
    /** The heading under which help and documents have it. */
    const char* section = "";

    std::string name() const { return join(nameWords(), " "); }
    Names nameWords() const;
    /** Of the words behind the name. A verb holds no keys. */
    Names placeholders(unsigned place) const;
    /** As it is written at that place: "add", "[KEY]", "[fields]", "[--tech T]". */
    Names usage(unsigned place) const;
    /** Throws ToolError when these are not arguments for it. */
    void verify(const Arguments& arguments) const;
};

using Operations = std::vector<Operation>;

/** Those that can be given at one of the places, in the order of the help; if there are words,
 * whose names begin with them, or are begun by them. */
Operations operationsAt(unsigned places, const Names& words = {});

/** The one whose name the words begin with; throws ToolError with a suggestion. */
Operation operationOf(unsigned place, const Names& words);

/** "KEY|ID" in its parts, without brackets and dots. */
Names choicesIn(const std::string& placeholder);

/** What may stand for a placeholder, if that is always the same. */
Names valuesOf(const std::string& placeholder);

/** An operation with all that it was given, which can be played any number of times. */
class Statement {
  public:
    /** `words` begin with the operation's name. Throws ToolError that says what is wrong and what
     * would be right. */
    explicit Statement(const ScenarioWords& words, unsigned place = kScenario);

    /** Plays it and tells what it did to the modem. Throws ToolError when it cannot be played or an
     * expectation does not hold. */
    void play(Stage& stage) const;

    const Operation& operation() const { return kind; }
    const Arguments& given() const { return arguments; }

  private:
    Operation kind;
    Arguments arguments;
};

/** A scenario, which is read whole: every statement makes sense before the first is played. */
struct Scenario {
    struct Step {
        std::size_t line;
        std::string text;
        Statement statement;
    };

    /** `name` stands in messages. Throws ToolError that names it and the line. */
    Scenario(std::string_view text, std::string name);

    std::string name;
    std::vector<Step> steps = {};
};

// The parts of the list, each in a file of its own.

/** What begins a section of it. */
inline Operation sectionOf(const char* heading) {
    return {"", heading, nullptr};
}
Operations profileOperations();
Operations policyOperations();
/** What only a simulator can do; none when there is none. */
Operations simulatorOperations();
Operations expectOperations();
Operations playOperations();
Operations helpOperations();

/** What the verb shell does: a prompt for statements, on the standard input, until that ends or
 * asks to. Throws the status of the last error, but on a terminal whoever types has seen them. */
void runShell(Stage& stage, const Arguments& arguments);

/** What stands for KEY or ID now: the keys that are held, the numbers of profiles. */
using Present = std::function<Names(const std::string& placeholder)>;

/**
 * What may stand in place of the last word of an unfinished line, sorted: the next word of a
 * statement's name, what stands for its placeholders, its options and their values. Throws
 * ToolError when the line makes no sense so far.
 */
Names completionsOf(const std::string& line, const Present& present);

}  // namespace velactl
