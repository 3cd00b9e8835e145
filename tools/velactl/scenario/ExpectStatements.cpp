// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What must hold. An expectation that does not hold ends the scenario.

#include <algorithm>

#include "Limits.h"
#include "ProfileRecord.h"
#include "Text.h"
#include "ToolError.h"
#include "scenario/Statement.h"

namespace velactl {

namespace {

constexpr int kMaxCount = 1000000;

void require(bool holds, const std::string& found) {
    if (!holds) {
        throw refused("expected otherwise: " + found);
    }
}

/** What the library does not say is neither there nor not there. */
void requireAnswers(const Stage& stage) {
    require(!stage.isRefreshing(), "the library answers nothing until refresh completed");
}

/** The fields asked for that differ, as "apn is ims". */
std::string differences(const vela::ProfileParams& wanted, const vela::ProfileParams& actual) {
    std::vector<std::string> texts;
    for (const ProfileField& field : profileFields()) {
        const Json value = field.value(wanted);
        if (!value.is_null() && !isSame(field, wanted, actual)) {
            const std::string text = fieldText(field, actual, false);
            texts.push_back(std::string(field.key) + " is " + (text.empty() ? "absent" : text));
        }
    }
    return join(texts, ", ");
}

void requireFields(const vela::ProfileParams& wanted, const vela::ProfileParams& actual) {
    const std::string found = differences(wanted, actual);
    require(found.empty(), found);
}

const ProfileRecord* findRecord(const ProfileRecords& records, const Arguments& arguments) {
    const int index = arguments.number(0, 0, kMaxIndex, "profile index");
    const auto found =
        std::find_if(records.begin(), records.end(), [&](const ProfileRecord& record) {
            return record.tech == arguments.tech() && record.index == index;
        });
    return found == records.end() ? nullptr : &*found;
}

void requireRecord(const ProfileRecords& records, const Arguments& arguments) {
    const ProfileRecord* record = findRecord(records, arguments);
    require(record != nullptr, "there is no profile " + arguments.words[0]);
    requireFields(arguments.fields.params(), record->params);
}

void requireNoRecord(const ProfileRecords& records, const Arguments& arguments) {
    const ProfileRecord* record = findRecord(records, arguments);
    require(record == nullptr, "there is " + (record == nullptr ? "" : title(*record)));
}

void checkIndex(const Arguments& arguments) {
    arguments.number(0, 0, kMaxIndex, "profile index");
}

void checkCount(const Arguments& arguments) {
    arguments.number(0, 0, kMaxCount, "count");
}

void checkOptionalCount(const Arguments& arguments) {
    if (arguments.words.size() > 1) {
        arguments.number(1, 0, kMaxCount, "count");
    }
}

void modem(Stage& stage, const Arguments& arguments) {
    requireRecord(stage.workbench().modemProfiles(), arguments);
}

void noModem(Stage& stage, const Arguments& arguments) {
    requireNoRecord(stage.workbench().modemProfiles(), arguments);
}

void library(Stage& stage, const Arguments& arguments) {
    requireAnswers(stage);
    requireRecord(stage.workbench().libraryProfiles(), arguments);
}

void noLibrary(Stage& stage, const Arguments& arguments) {
    requireAnswers(stage);
    requireNoRecord(stage.workbench().libraryProfiles(), arguments);
}

void profiles(Stage& stage, const Arguments& arguments) {
    const auto records = stage.workbench().modemProfiles();
    const auto number = std::count_if(records.begin(), records.end(), [&](const auto& record) {
        return record.tech == arguments.tech();
    });
    require(number == arguments.number(0, 0, kMaxCount, "count"),
            "the modem holds " + counted(static_cast<std::size_t>(number), "profile"));
}

void key(Stage& stage, const Arguments& arguments) {
    requireAnswers(stage);
    const auto profile = stage.manager().getProfile(stage.held(arguments.words[0]).key);
    require(profile.has_value(), "the key names no profile");
    requireFields(arguments.fields.params(), *profile);
}

void stale(Stage& stage, const Arguments& arguments) {
    requireAnswers(stage);
    const auto profile = stage.manager().getProfile(stage.held(arguments.words[0]).key);
    require(!profile, "the key names a profile: " + (profile ? describe(*profile, false) : ""));
}

void expired(Stage& stage, const Arguments& arguments) {
    const HeldKey& held = stage.held(arguments.words[0]);
    const int wanted = arguments.words.size() > 1 ? arguments.number(1, 0, kMaxCount, "count") : 1;
    const int calls = held.expirations ? held.expirations->calls() : 0;
    require(calls == wanted,
            "its listener was called " + counted(static_cast<std::size_t>(calls), "time"));
}

bool lastWasRefused(const Stage& stage) {
    require(stage.wasRefused().has_value(), "there has been no operation yet");
    return *stage.wasRefused();
}

void ok(Stage& stage, const Arguments& /*arguments*/) {
    require(!lastWasRefused(stage), "the last operation was refused");
}

void wasRefused(Stage& stage, const Arguments& /*arguments*/) {
    require(lastWasRefused(stage), "the last operation was not refused");
}

void agree(Stage& stage, const Arguments& /*arguments*/) {
    requireAnswers(stage);
    const auto lines = stage.workbench().disagreements();
    require(lines.empty(), join(lines, "; "));
}

void disagree(Stage& stage, const Arguments& /*arguments*/) {
    requireAnswers(stage);
    require(!stage.workbench().disagreements().empty(), "library and modem agree");
}

void logLine(Stage& stage, const Arguments& arguments) {
    const auto& lines = stage.log();
    require(
        std::any_of(lines.begin(), lines.end(),
                    [&](const std::string& line) {
                        return line.find(arguments.words[0]) != std::string::npos;
                    }),
        "no log line holds " +
            inQuotes(stage.showSecrets() ? arguments.words[0] : withoutSecret(arguments.words[0])));
}

void pending(Stage& stage, const Arguments& arguments) {
    const auto lines = stage.manager().dump();
    const auto first = std::find(lines.begin(), lines.end(), "Pending:");
    const auto last = std::find(first, lines.end(), "");
    const auto number = std::max<std::ptrdiff_t>(std::distance(first, last) - 1, 0);
    require(number == arguments.number(0, 0, kMaxCount, "count"),
            "the library expects " + counted(static_cast<std::size_t>(number), "indication"));
}

}  // namespace

std::vector<StatementKind> expectStatements() {
    return {
        {"expect ok", "", "the last operation of a client was carried out", 0, 0, kNoOptions,
         nullptr, ok},
        {"expect refused", "", "the last operation of a client failed, or the modem refused it", 0,
         0, kNoOptions, nullptr, wasRefused},
        {"expect profiles", "N [--tech T]", "the modem holds so many", 1, 1, kTech, checkCount,
         profiles},
        {"expect modem", "ID [fields] [--tech T]", "the modem holds it, with these fields", 1, 1,
         kFields | kTech, checkIndex, modem},
        {"expect no-modem", "ID [--tech T]", "the modem does not hold it", 1, 1, kTech, checkIndex,
         noModem},
        {"expect library", "ID [fields] [--tech T]", "the library knows it, with these fields", 1,
         1, kFields | kTech, checkIndex, library},
        {"expect no-library", "ID [--tech T]", "the library does not know it", 1, 1, kTech,
         checkIndex, noLibrary},
        {"expect key", "KEY [fields]", "the key names a profile with these fields", 1, 1, kFields,
         nullptr, key},
        {"expect stale", "KEY", "the key names no profile any more", 1, 1, kNoOptions, nullptr,
         stale},
        {"expect expired", "KEY [N]", "its listener was called once, or N times", 1, 2, kNoOptions,
         checkOptionalCount, expired},
        {"expect agree", "", "the library's view is the modem's", 0, 0, kNoOptions, nullptr, agree},
        {"expect disagree", "", "the library's view is not the modem's", 0, 0, kNoOptions, nullptr,
         disagree},
        {"expect log", "TEXT", "a line of the library's log holds the text", 1, 1, kNoOptions,
         nullptr, logLine},
        {"expect pending", "N", "the library expects so many indications", 1, 1, kNoOptions,
         checkCount, pending},
    };
}

}  // namespace velactl
