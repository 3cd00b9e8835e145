// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What shows something, and changes nothing.
#include "profiles/Output.h"
#include "profiles/ProfileField.h"
#include "profiles/Text.h"
#include "profiles/ToolError.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

/** Tells of profiles under a heading, and in the document under a key. */
void tell(Stage& stage, const std::string& heading, const char* key,
          const ProfileRecords& records) {
    stage.story().profiles(heading, records);
    stage.document()[key] = stage.story().toJson(records);
}

void list(Stage& stage, const Arguments& arguments) {
    tell(stage,
         "Profiles of modem instance " + std::to_string(stage.options().modem.instance) + ':',
         "profiles", stage.workbench().libraryProfiles(arguments.filter()));
}

void showTables(Stage& stage) {
    tell(stage, "The modem:", "modem", stage.workbench().modemProfiles());
    if (stage.isRefreshing) {
        stage.story().line("The library: answers nothing until refresh completed");
    } else {
        tell(stage, "The library:", "library", stage.workbench().libraryProfiles());
    }
}

void show(Stage& stage, const Arguments& arguments) {
    if (arguments.words.empty()) {
        return showTables(stage);
    }
    const KeyName profile = stage.profileOf(arguments.word(), arguments.tech());
    const ProfileRecords all = stage.workbench().libraryProfiles();
    const ProfileRecord* record = findRecord(all, profile.tech, profile.index);
    if (record == nullptr) {
        stage.workbench().find(profile.tech, profile.index);  // says why there is none
        throw refused("profile " + arguments.word() + " has come only now; ask again");
    }
    Output& output = stage.story();
    output.line(title(*record) + ':');
    Names keys;
    Names values;
    const Json shown = shownFields(record->fields);
    for (const ProfileField& field : profileFields()) {
        if (shown.contains(field.key)) {
            keys.emplace_back(field.key);
            values.push_back(valueText(field, field.of(shown), output.showSecrets()));
        }
    }
    Table table;
    table.add("FIELD", std::move(keys));
    table.add("VALUE", std::move(values));
    output.table(table);
    stage.document().update(toJson(*record, output.showSecrets()));
}

void dump(Stage& stage, const Arguments& /*arguments*/) {
    Json& lines = stage.document()["lines"] = Json::array();
    for (const std::string& line : stage.manager().dump()) {
        const std::string shown = stage.showSecrets() ? line : withoutPassword(line);
        stage.story().line(printable(shown));
        lines.push_back(shown);
    }
}

void keys(Stage& stage, const Arguments& /*arguments*/) {
    for (const std::string& name : stage.keyNames()) {
        stage.story().line(name + " is " + stage.held(name).key->dump());
        stage.document()["keys"].push_back(name);
    }
}

void say(Stage& stage, const Arguments& arguments) {
    stage.story().line(printable(join(arguments.words, " ")));
}

}  // namespace

Operations lookOperations() {
    constexpr unsigned kLook = kEverywhere | kLooking;
    return {
        {"list", "the profiles, as the library sees them", list, kTech, kLook},
        {"show [KEY|ID]",
         "one profile, field by field; without a word the modem's table and the library's", show,
         kTech, kLook},
        {"dump", "the library's own dump: cache, expected indications, log", dump, kNoOptions,
         kLook},
        {"keys", "the keys that are held", keys},
        {"say [TEXT...]", "tell the reader", say, kFreeText},
    };
}

}  // namespace velactl
