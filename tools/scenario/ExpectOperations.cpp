// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What must hold. An expectation that does not hold ends the scenario.
#include <optional>

#include "profiles/Text.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

void require(bool holds, const std::string& found) {
    if (!holds) {
        throw refused("not as expected: " + found);
    }
}

/** During a refresh nothing can be expected of the library: it neither has a profile nor lacks it.
 */
void requireAnswers(const Stage& stage) {
    require(!stage.isRefreshing, "the library answers nothing until refresh completed");
}

/** The fields asked for must not differ. */
void requireFields(const Json& wanted, const Json& actual) {
    Names texts;
    for (const ProfileField& field : profileFields()) {
        if (!field.of(wanted).is_null() && !isSame(field, wanted, actual)) {
            const std::string text = valueText(field, field.of(actual), false);
            const bool isKnown = field.scope == ProfileField::Scope::Request;
            texts.push_back(field.key + (" is " + (!text.empty() ? text
                                                   : isKnown     ? "absent"
                                                                 : "unknown")));
        }
    }
    require(texts.empty(), join(texts, ", "));
}

/** By the modem's or the library's table. */
template <bool isOfModem, bool isExpected>
void record(Stage& stage, const Arguments& arguments) {
    if (!isOfModem) {
        requireAnswers(stage);
    }
    Workbench& bench = stage.workbench();
    const auto records = isOfModem ? bench.modemProfiles() : bench.libraryProfiles();
    const KeyName profile = stage.profileOf(arguments.word(), arguments.tech());
    const ProfileRecord* record = findRecord(records, profile.tech, profile.index);
    require((record != nullptr) == isExpected,
            "there is " + (record != nullptr ? title(*record) : "no profile " + arguments.word()));
    requireFields(arguments.fields(), record != nullptr ? record->fields : Json::object());
}

/** There must be as many as the word at that place says; one if the word is missing. */
void requireCount(std::size_t number, const Arguments& arguments, const std::string& found,
                  const char* noun, std::size_t place = 0) {
    const bool isGiven = place < arguments.words.size();
    require(number == (isGiven ? std::stoul(arguments.word(place)) : 1),
            found + counted(number, noun));
}

void profiles(Stage& stage, const Arguments& arguments) {
    auto records = stage.workbench().modemProfiles();
    std::erase_if(records, [&](const auto& each) { return each.tech != arguments.tech(); });
    requireCount(records.size(), arguments, "the modem holds ", "profile");
}

/** What the held key names; empty: no profile. */
std::optional<vela::ProfileParams> named(Stage& stage, const Arguments& arguments) {
    requireAnswers(stage);
    return stage.manager().getProfile(stage.held(arguments.word()).key);
}

void key(Stage& stage, const Arguments& arguments) {
    const auto profile = named(stage, arguments);
    require(profile.has_value(), "the key names no profile");
    requireFields(arguments.fields(), fieldsOf(*profile));
}

void stale(Stage& stage, const Arguments& arguments) {
    const auto profile = named(stage, arguments);
    require(!profile,
            "the key names a profile: " + (profile ? describe(fieldsOf(*profile), false) : ""));
}

void expired(Stage& stage, const Arguments& arguments) {
    const int calls = *stage.held(arguments.word()).expirations;
    requireCount(static_cast<std::size_t>(calls), arguments, "its listener was called ", "time", 1);
}

void pending(Stage& stage, const Arguments& arguments) {
    const int number = stage.workbench().expectedIndications();
    requireCount(static_cast<std::size_t>(number), arguments, "the library expects ", "indication");
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
        sectionOf("Expectations"),
        {"expect ok", "the last operation of the radio software was carried out",
         lastWasRefused<false>},
        {"expect refused", "the last operation of the radio software was not carried out",
         lastWasRefused<true>},
        {"expect profiles N", "the modem has so many", profiles, kTech},
        {"expect modem KEY|ID", "the modem has it, and so it is", record<true, true>, kProfile},
        {"expect no-modem KEY|ID", "the modem has it not", record<true, false>, kTech},
        {"expect library KEY|ID", "the library knows it, and so it is", record<false, true>,
         kProfile},
        {"expect no-library KEY|ID", "the library knows it not", record<false, false>, kTech},
        {"expect key KEY", "the key names a profile with these fields", key, kFields},
        {"expect stale KEY", "the key names no profile any more", stale},
        {"expect expired KEY [N]", "its listener was called once, or N times", expired},
        {"expect agree", "the library's view is the modem's", agree<true>},
        {"expect disagree", "the library's view is not the modem's", agree<false>},
        {"expect pending N", "the library expects so many indications of its own changes", pending},
    };
}

}  // namespace velactl
