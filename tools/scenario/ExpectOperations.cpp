// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What must hold. An expectation that does not hold ends the scenario.

#include <algorithm>

#include "profiles/ProfileField.h"
#include "profiles/Text.h"
#include "profiles/ToolError.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

void require(bool holds, const std::string& found) {
    if (!holds) {
        throw refused("expected otherwise: " + found);
    }
}

/** What the library does not say is neither there nor not there. */
void requireAnswers(const Stage& stage) {
    require(!stage.isRefreshing, "the library answers nothing until refresh completed");
}

/** The fields asked for that differ, as "apn is ims". */
std::string differences(const Json& wanted, const Json& actual) {
    std::vector<std::string> texts;
    for (const ProfileField& field : profileFields()) {
        if (!field.of(wanted).is_null() && !isSame(field, wanted, actual)) {
            const bool isKnown = field.scope == ProfileField::Scope::Request;
            const std::string text = valueText(field, field.of(actual), false);
            texts.push_back(std::string(field.key) + " is " +
                            (!text.empty() ? text
                             : isKnown     ? "absent"
                                           : "unknown"));
        }
    }
    return join(texts, ", ");
}

void requireFields(const Json& wanted, const Json& actual) {
    const std::string found = differences(wanted, actual);
    require(found.empty(), found);
}

/** One of the modem's or the library's profiles; null when it is not among them. */
const ProfileRecord* recordIn(const ProfileRecords& records, Stage& stage,
                              const Arguments& arguments) {
    const KeyName profile = stage.profileOf(arguments.word(), arguments.tech());
    return findRecord(records, profile.tech, profile.index);
}

void requireRecord(const ProfileRecords& records, Stage& stage, const Arguments& arguments) {
    const ProfileRecord* record = recordIn(records, stage, arguments);
    require(record != nullptr, "there is no profile " + arguments.word());
    requireFields(arguments.fields(), record->fields);
}

void requireNoRecord(const ProfileRecords& records, Stage& stage, const Arguments& arguments) {
    const ProfileRecord* record = recordIn(records, stage, arguments);
    require(record == nullptr, "there is " + (record == nullptr ? "" : title(*record)));
}

template <auto require>
void ofModem(Stage& stage, const Arguments& arguments) {
    require(stage.workbench().modemProfiles(), stage, arguments);
}

template <auto require>
void ofLibrary(Stage& stage, const Arguments& arguments) {
    requireAnswers(stage);
    require(stage.workbench().libraryProfiles(), stage, arguments);
}

/** Of things there are as many as the word at a place says. */
void requireCount(std::size_t number, const Arguments& arguments, std::size_t place,
                  const std::string& found, const char* noun, std::size_t otherwise = 0) {
    const bool isGiven = place < arguments.words.size();
    require(number == (isGiven ? std::stoul(arguments.word(place)) : otherwise),
            found + counted(number, noun));
}

void profiles(Stage& stage, const Arguments& arguments) {
    const auto records = stage.workbench().modemProfiles();
    const auto number = std::count_if(records.begin(), records.end(), [&](const auto& record) {
        return record.tech == arguments.tech();
    });
    requireCount(static_cast<std::size_t>(number), arguments, 0, "the modem holds ", "profile");
}

void key(Stage& stage, const Arguments& arguments) {
    requireAnswers(stage);
    const auto profile = stage.manager().getProfile(stage.held(arguments.word()).key);
    require(profile.has_value(), "the key names no profile");
    requireFields(arguments.fields(), fieldsOf(*profile));
}

void stale(Stage& stage, const Arguments& arguments) {
    requireAnswers(stage);
    const auto profile = stage.manager().getProfile(stage.held(arguments.word()).key);
    require(!profile,
            "the key names a profile: " + (profile ? describe(fieldsOf(*profile), false) : ""));
}

void expired(Stage& stage, const Arguments& arguments) {
    const int calls = *stage.held(arguments.word()).expirations;
    requireCount(static_cast<std::size_t>(calls), arguments, 1, "its listener was called ", "time",
                 1);
}

void pending(Stage& stage, const Arguments& arguments) {
    const int number = stage.workbench().expectedIndications();
    requireCount(static_cast<std::size_t>(number), arguments, 0, "the library expects ",
                 "indication");
}

template <bool isExpected>
void lastWasRefused(Stage& stage, const Arguments& /*arguments*/) {
    require(stage.wasRefused().has_value(), "there has been no operation yet");
    require(stage.wasRefused() == isExpected,
            std::string("the last operation was ") + (isExpected ? "not " : "") + "refused");
}

template <bool isExpected>
void agree(Stage& stage, const Arguments& /*arguments*/) {
    requireAnswers(stage);
    require(stage.workbench().modem().modemProfiles().has_value(),
            "what this modem holds is only known from the library");
    const auto lines = stage.workbench().disagreements();
    require(lines.empty() == isExpected,
            isExpected ? join(lines, "; ") : "library and modem agree");
    for (const std::string& line : stage.workbench().uncompared()) {
        stage.details().line(line);
    }
}

}  // namespace

Operations expectOperations() {
    constexpr unsigned kProfile = kKept | kTech;
    return {
        {"expect ok", "", kNoOptions, kStatement,
         "the last operation of the radio software was carried out", lastWasRefused<false>},
        {"expect refused", "", kNoOptions, kStatement,
         "the last operation of the radio software was not carried out", lastWasRefused<true>},
        {"expect profiles", "N", kTech, kStatement, "the modem has so many", profiles},
        {"expect modem", "KEY|ID", kProfile, kStatement, "the modem has it, and so it is",
         ofModem<requireRecord>},
        {"expect no-modem", "KEY|ID", kTech, kStatement, "the modem has it not",
         ofModem<requireNoRecord>},
        {"expect library", "KEY|ID", kProfile, kStatement, "the library knows it, and so it is",
         ofLibrary<requireRecord>},
        {"expect no-library", "KEY|ID", kTech, kStatement, "the library knows it not",
         ofLibrary<requireNoRecord>},
        {"expect key", "KEY", kFields, kStatement, "the key names a profile with these fields",
         key},
        {"expect stale", "KEY", kNoOptions, kStatement, "the key names no profile any more", stale},
        {"expect expired", "KEY [N]", kNoOptions, kStatement,
         "its listener was called once, or N times", expired},
        {"expect agree", "", kNoOptions, kStatement, "the library's view is the modem's",
         agree<true>},
        {"expect disagree", "", kNoOptions, kStatement, "the library's view is not the modem's",
         agree<false>},
        {"expect pending", "N", kNoOptions, kStatement,
         "the library expects so many indications of its own changes", pending},
    };
}

}  // namespace velactl
