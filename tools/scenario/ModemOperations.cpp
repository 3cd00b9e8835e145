// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What happens in and around a simulated modem: other writers, the subscription, the service, the
// order of deliveries.

#include <algorithm>
#include <map>

#include "modem/SettingsView.h"
#include "modem/SimulatedModem.h"
#include "profiles/ProfileField.h"
#include "profiles/Text.h"
#include "profiles/ToolError.h"
#include "profiles/Words.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

velasim::Technology technologyOf(vela::TechType tech) {
    return tech == vela::TechType::TECH_3GPP2 ? velasim::Technology::ThreeGpp2
                                              : velasim::Technology::ThreeGpp;
}

/** A setting=value of somebody else. */
void writeWord(velasim::Settings& settings, const std::string& word, vela::TechType tech) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const auto names = velasim::fieldNames(technologyOf(tech));
    if (equals == std::string::npos || std::find(names.begin(), names.end(), name) == names.end()) {
        throw badUsage(inQuotes(name) + " is no setting=value; the settings are " +
                       alternatives(names));
    }
    const std::string value = word.substr(equals + 1);
    if (!setSetting(settings, name, value)) {
        throw badUsage((withoutSecret(word) == word ? inQuotes(value) : "the text") +
                       " does not fit into " + name);
    }
}

/** What sets each setting. A setting is asked for once. */
class Askers {
  public:
    void add(const std::string& setting, const std::string& asker) {
        const auto [earlier, isFirst] = askers.emplace(setting, asker);
        if (!isFirst) {
            throw badUsage(earlier->second + " and " + asker + " both set " + setting +
                           "; give one of them");
        }
    }

  private:
    std::map<std::string, std::string> askers;
};

velasim::Settings settingsFrom(const Arguments& arguments, std::size_t firstWord,
                               vela::TechType tech) {
    velasim::Settings settings{};
    Askers askers;
    const Json given = arguments.fields();
    requireKept(given, tech);
    for (const ProfileField& field : profileFields()) {
        const Json value = field.of(given);
        for (const ModemSetting& setting : field.settings) {
            const std::string name = setting.name(tech);
            if (!value.is_null() && !name.empty()) {
                setSetting(settings, name,
                           value.is_string() ? value : Json(valueText(field, value, true)));
                askers.add(name, field.option());
            }
        }
    }
    for (std::size_t i = firstWord; i < arguments.words.size(); ++i) {
        const std::string& word = arguments.words[i];
        const std::string name = word.substr(0, word.find('='));
        writeWord(settings, word, tech);
        askers.add(name, name + '=');
    }
    return settings;
}

Names settingNames(const std::string& placeholder) {
    Names names;
    if (placeholder == "SETTING") {
        for (const std::string& name : velasim::fieldNames(velasim::Technology::ThreeGpp)) {
            names.push_back(name + '=');
        }
    }
    return names;
}

void foreignCreate(Stage& stage, const Arguments& arguments) {
    SimulatedModem& modem = simulatedModem(stage);
    const auto index =
        modem.simulator().foreignCreate(modem.instance(), technologyOf(arguments.tech()),
                                        settingsFrom(arguments, 0, arguments.tech()));
    if (!index) {
        throw refused("the modem's table is full");
    }
    stage.details().line("someone else has created profile " + std::to_string(*index));
}

void requireFound(bool found, const Arguments& arguments) {
    if (!found) {
        throw refused("the modem has no profile " + arguments.word());
    }
}

void checkForeignModify(const Arguments& arguments) {
    settingsFrom(arguments, 1, arguments.tech());
    if (arguments.words.size() == 1 && !arguments.hasFields()) {
        throw badUsage("foreign modify: nothing is given; give at least one field or setting");
    }
}

// Somebody else sees the modem's table, not the library's.

void foreignModify(Stage& stage, const Arguments& arguments) {
    SimulatedModem& modem = simulatedModem(stage);
    const KeyName profile = stage.profileOf(arguments.word(), arguments.tech());
    requireFound(
        modem.simulator().foreignModify(modem.instance(), technologyOf(profile.tech), profile.index,
                                        settingsFrom(arguments, 1, profile.tech)),
        arguments);
}

void foreignDelete(Stage& stage, const Arguments& arguments) {
    SimulatedModem& modem = simulatedModem(stage);
    const KeyName profile = stage.profileOf(arguments.word(), arguments.tech());
    requireFound(modem.simulator().foreignDelete(modem.instance(), technologyOf(profile.tech),
                                                 profile.index),
                 arguments);
}

template <void (velasim::Simulator::*act)()>
void simulate(Stage& stage, const Arguments& /*arguments*/) {
    (simulatedModem(stage).simulator().*act)();
}

void subscriptionChange(Stage& stage, const Arguments& /*arguments*/) {
    simulatedModem(stage).simulator().subscriptionChange(simulatedModem(stage).instance());
}

void profileReady(Stage& stage, const Arguments& /*arguments*/) {
    simulatedModem(stage).simulator().profileReady(simulatedModem(stage).instance());
}

void hold(Stage& stage, const Arguments& /*arguments*/) {
    simulatedModem(stage).holdDeliveries(true);
}

void release(Stage& stage, const Arguments& /*arguments*/) {
    simulatedModem(stage).holdDeliveries(false);
    simulatedModem(stage).simulator().releaseDelayed();
}

void deliver(Stage& stage, const Arguments& /*arguments*/) {
    if (!simulatedModem(stage).simulator().deliverNext()) {
        throw refused("nothing waits for delivery");
    }
}

void journal(Stage& stage, const Arguments& /*arguments*/) {
    const auto entries = simulatedModem(stage).simulator().journal().snapshot();
    Json& lines = stage.document()["journal"] = Json::array();
    if (!entries.empty() && entries.front().sequence > 1) {
        lines.push_back("the first " + counted(entries.front().sequence - 1, "entry") +
                        " are gone: the journal is limited");
    }
    for (const velasim::JournalEntry& entry : entries) {
        lines.push_back(printable(entry.line()));
    }
    for (const Json& line : lines) {
        stage.story().line("  " + line.get<std::string>());
    }
}

}  // namespace

SimulatedModem& simulatedModem(Stage& stage) {
    auto* modem = dynamic_cast<SimulatedModem*>(&stage.workbench().modem());
    if (modem == nullptr) {
        throw refused("this needs the simulated modem; the one at hand is a device");
    }
    return *modem;
}

Operations modemOperations() {
    using velasim::Simulator;
    constexpr unsigned kProfile = kFields | kTech;
    return {
        {"foreign create", "[SETTING...]", kProfile, kStatement, "someone else creates a profile",
         foreignCreate,
         [](const Arguments& arguments) { settingsFrom(arguments, 0, arguments.tech()); },
         settingNames},
        {"foreign modify", "KEY|ID [SETTING...]", kProfile, kStatement,
         "someone else changes a profile", foreignModify, checkForeignModify, settingNames},
        {"foreign delete", "KEY|ID", kTech, kStatement, "someone else deletes a profile",
         foreignDelete},
        {"subscription-change", "", kNoOptions, kStatement,
         "the modem reports another subscription", subscriptionChange},
        {"profile-ready", "", kNoOptions, kStatement,
         "the modem reports that its profiles are ready", profileReady},
        {"restart", "", kNoOptions, kStatement,
         "power cycle: the modem forgets its volatile profiles", simulate<&Simulator::restart>},
        {"service down", "", kNoOptions, kStatement, "the modem's data service goes away",
         simulate<&Simulator::serviceDown>},
        {"service up", "", kNoOptions, kStatement, "the modem's data service comes back",
         simulate<&Simulator::serviceUp>},
        {"hold", "", kNoOptions, kStatement, "let callbacks of the messaging library wait", hold},
        {"deliver", "", kNoOptions, kStatement, "make the oldest of those that wait", deliver},
        {"release", "", kNoOptions, kStatement, "make all, and hold no longer", release},
        {"journal", "", kNoOptions, kStatement, "all that crossed between library and modem",
         journal},
    };
}

}  // namespace velactl
