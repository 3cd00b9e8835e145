// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What happens in and around the modem: other writers, the subscription, the service, the order of
// deliveries; and what a scenario tells its reader.

#include <algorithm>
#include <charconv>
#include <limits>

#include "Limits.h"
#include "LogMask.h"
#include "ProfileRecord.h"
#include "Table.h"
#include "Text.h"
#include "ToolError.h"
#include "scenario/Statement.h"

namespace velactl {

namespace {

constexpr std::size_t kMany = std::numeric_limits<std::size_t>::max();

velasim::Technology technologyOf(const Arguments& arguments) {
    return arguments.tech() == vela::TechType::TECH_3GPP2 ? velasim::Technology::ThreeGpp2
                                                          : velasim::Technology::ThreeGpp;
}

int indexOf(const Arguments& arguments) {
    return arguments.number(0, 1, kMaxIndex, "profile index");
}

void setSetting(velasim::Settings& settings, const std::string& word,
                velasim::Technology technology) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const auto names = velasim::fieldNames(technology);
    if (equals == std::string::npos || std::find(names.begin(), names.end(), name) == names.end()) {
        throw badUsage(inQuotes(name) + " is no setting=value; the settings are " +
                       alternatives(names));
    }
    const std::string value = word.substr(equals + 1);
    bool done = false;
    if (velasim::isTextField(name)) {
        done = velasim::setText(settings, name, value);
    } else {
        std::uint64_t number = 0;
        const char* end = value.data() + value.size();
        const auto result = std::from_chars(value.data(), end, number);
        done = result.ec == std::errc() && result.ptr == end &&
               velasim::setNumber(settings, name, number);
    }
    if (!done) {
        throw badUsage((withoutSecret(word) == word ? inQuotes(value) : "the text") +
                       " does not fit into " + name);
    }
}

velasim::Settings settingsFrom(const Arguments& arguments, std::size_t firstWord) {
    velasim::Settings settings{};
    for (std::size_t word = firstWord; word < arguments.words.size(); ++word) {
        setSetting(settings, arguments.words[word], technologyOf(arguments));
    }
    return settings;
}

void checkForeignCreate(const Arguments& arguments) {
    settingsFrom(arguments, 0);
}

void foreignCreate(Stage& stage, const Arguments& arguments) {
    const auto index = stage.simulator().foreignCreate(
        stage.modem().instance(), technologyOf(arguments), settingsFrom(arguments, 0));
    if (!index) {
        throw refused("the modem's table is full");
    }
    stage.out() << "  someone else has created profile " << *index << '\n';
}

void checkForeignModify(const Arguments& arguments) {
    indexOf(arguments);
    settingsFrom(arguments, 1);
}

void foreignModify(Stage& stage, const Arguments& arguments) {
    if (!stage.simulator().foreignModify(stage.modem().instance(), technologyOf(arguments),
                                         indexOf(arguments), settingsFrom(arguments, 1))) {
        throw refused("the modem has no profile " + arguments.words[0]);
    }
}

void checkIndex(const Arguments& arguments) {
    indexOf(arguments);
}

void foreignDelete(Stage& stage, const Arguments& arguments) {
    if (!stage.simulator().foreignDelete(stage.modem().instance(), technologyOf(arguments),
                                         indexOf(arguments))) {
        throw refused("the modem has no profile " + arguments.words[0]);
    }
}

void subscriptionChange(Stage& stage, const Arguments& /*arguments*/) {
    stage.simulator().subscriptionChange(stage.modem().instance());
}

void profileReady(Stage& stage, const Arguments& /*arguments*/) {
    stage.simulator().profileReady(stage.modem().instance());
}

void restart(Stage& stage, const Arguments& /*arguments*/) {
    stage.simulator().restart();
}

void serviceDown(Stage& stage, const Arguments& /*arguments*/) {
    stage.simulator().serviceDown();
}

void serviceUp(Stage& stage, const Arguments& /*arguments*/) {
    stage.simulator().serviceUp();
}

void holdDeliveries(Stage& stage, const Arguments& /*arguments*/) {
    stage.modem().holdDeliveries(true);
}

void releaseDeliveries(Stage& stage, const Arguments& /*arguments*/) {
    stage.modem().holdDeliveries(false);
    stage.simulator().releaseDelayed();
}

void deliver(Stage& stage, const Arguments& /*arguments*/) {
    if (!stage.simulator().deliverNext()) {
        throw refused("nothing waits for delivery");
    }
    stage.settle();
}

void say(Stage& stage, const Arguments& arguments) {
    stage.story() << printable(join(arguments.words, " ")) << '\n';
}

void printTable(Stage& stage, const char* heading, const ProfileRecords& records) {
    std::vector<std::string> headings{"ID", "TECH"};
    for (const ProfileField& field : profileFields()) {
        headings.emplace_back(field.heading);
    }
    Table table(headings);
    for (const ProfileRecord& record : records) {
        std::vector<std::string> cells{std::to_string(record.index),
                                       record.tech == vela::TechType::TECH_3GPP ? "3GPP" : "3GPP2"};
        for (const ProfileField& field : profileFields()) {
            cells.push_back(fieldText(field, record.params, stage.showSecrets()));
        }
        table.add(std::move(cells));
    }
    stage.story() << "  " << heading << (table.isEmpty() ? ": no profiles" : ":") << '\n';
    if (!table.isEmpty()) {
        table.print(stage.story(), 4);
    }
}

void show(Stage& stage, const Arguments& /*arguments*/) {
    printTable(stage, "the modem", stage.workbench().modemProfiles());
    if (stage.isRefreshing()) {
        stage.story() << "  the library: answers nothing until refresh completed\n";
    } else {
        printTable(stage, "the library", stage.workbench().libraryProfiles());
    }
}

void keys(Stage& stage, const Arguments& /*arguments*/) {
    for (const std::string& name : stage.keyNames()) {
        stage.story() << "  " << name << " is " << stage.held(name).key->dump() << '\n';
    }
}

void dump(Stage& stage, const Arguments& /*arguments*/) {
    for (const std::string& line : stage.manager().dump()) {
        if (line == "Logs:") {
            return;
        }
        stage.story() << "  " << printable(stage.showSecrets() ? line : withoutPassword(line))
                      << '\n';
    }
}

void journal(Stage& stage, const Arguments& /*arguments*/) {
    for (const std::string& line : stage.journalLines()) {
        stage.story() << "  " << line << '\n';
    }
}

}  // namespace

std::vector<StatementKind> modemStatements() {
    return {
        {"foreign create", "[setting=value ...] [--tech T]", "someone else creates a profile", 0,
         kMany, kTech, checkForeignCreate, foreignCreate},
        {"foreign modify", "ID setting=value ... [--tech T]", "someone else changes a profile", 2,
         kMany, kTech, checkForeignModify, foreignModify},
        {"foreign delete", "ID [--tech T]", "someone else deletes a profile", 1, 1, kTech,
         checkIndex, foreignDelete},
        {"subscription-change", "", "the modem reports another subscription", 0, 0, kNoOptions,
         nullptr, subscriptionChange},
        {"profile-ready", "", "the modem reports that its profiles are ready", 0, 0, kNoOptions,
         nullptr, profileReady},
        {"restart", "", "power cycle: the modem forgets its volatile profiles", 0, 0, kNoOptions,
         nullptr, restart},
        {"service down", "", "the modem's data service goes away", 0, 0, kNoOptions, nullptr,
         serviceDown},
        {"service up", "", "the modem's data service comes back", 0, 0, kNoOptions, nullptr,
         serviceUp},
        {"hold", "", "let indications and service events wait", 0, 0, kNoOptions, nullptr,
         holdDeliveries},
        {"deliver", "", "deliver the oldest of those that wait", 0, 0, kNoOptions, nullptr,
         deliver},
        {"release", "", "deliver all, and hold no longer", 0, 0, kNoOptions, nullptr,
         releaseDeliveries},
        {"say", "TEXT", "tell the reader", 0, kMany, kFreeText, nullptr, say},
        {"show", "", "the modem's table and the library's", 0, 0, kNoOptions, nullptr, show},
        {"keys", "", "the keys that are held", 0, 0, kNoOptions, nullptr, keys},
        {"dump", "", "the library's cache and the indications it expects", 0, 0, kNoOptions,
         nullptr, dump},
        {"journal", "", "all that crossed between library and modem", 0, 0, kNoOptions, nullptr,
         journal},
    };
}

}  // namespace velactl
