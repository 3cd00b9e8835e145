// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What happens in and around a simulated modem: other writers, the subscription, the service, the
// order of deliveries, and what shall go wrong.
#include <algorithm>
#include <map>

#include "modem/SimulatedModem.h"
#include "profiles/Text.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

using velasim::Fault;
using velasim::Simulator;
using velasim::Technology;

// --- what others write

Technology technologyOf(vela::TechType tech) {
    return tech == vela::TechType::TECH_3GPP2 ? Technology::ThreeGpp2 : Technology::ThreeGpp;
}

/** What the fields and the words from one on, "setting=value", ask for; a word prevails. */
velasim::Settings settingsFrom(const Arguments& arguments, std::size_t firstWord,
                               vela::TechType tech) {
    velasim::Settings settings{};
    const Json given = arguments.fields();
    requireKept(given, tech);
    for (const ProfileField& field : profileFields()) {
        const Json value = field.of(given);
        for (const ModemSetting& setting : field.settings) {
            if (!value.is_null() && !setting.name(tech).empty()) {
                setSetting(settings, setting.name(tech),
                           value.is_string() ? value : Json(valueText(field, value, true)));
            }
        }
    }
    const Names names = velasim::fieldNames(technologyOf(tech));
    for (std::size_t i = firstWord; i < arguments.words.size(); ++i) {
        const std::string& word = arguments.words[i];
        const std::string name = word.substr(0, word.find('='));
        if (name == word || std::count(names.begin(), names.end(), name) == 0) {
            throw badUsage(inQuotes(name) + " is not of the form setting=value; the settings are " +
                           alternatives(names));
        }
        const std::string value = word.substr(name.size() + 1);
        if (!setSetting(settings, name, value)) {
            throw badUsage((withoutSecret(word) == word ? inQuotes(value) : "the text") +
                           " does not fit into " + name);
        }
    }
    return settings;
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

template <std::size_t firstWord>
void checkSettings(const Arguments& arguments) {
    settingsFrom(arguments, firstWord, arguments.tech());
}

/** On the profile that the first word means, which somebody else sees in the modem's table and not
 * in the library's. */
template <bool isDelete>
void foreignChange(Stage& stage, const Arguments& arguments) {
    SimulatedModem& modem = simulatedModem(stage);
    Simulator& sim = modem.simulator();
    const auto [tech, index] = stage.profileOf(arguments.word(), arguments.tech());
    const Technology technology = technologyOf(tech);
    if (!(isDelete ? sim.foreignDelete(modem.instance(), technology, index)
                   : sim.foreignModify(modem.instance(), technology, index,
                                       settingsFrom(arguments, 1, tech)))) {
        throw refused("the modem has no profile " + arguments.word());
    }
}

// --- what the modem does

template <auto act>
void simulate(Stage& stage, const Arguments& /*arguments*/) {
    (simulatedModem(stage).simulator().*act)();
}

template <auto act>
void announce(Stage& stage, const Arguments& /*arguments*/) {
    SimulatedModem& modem = simulatedModem(stage);
    (modem.simulator().*act)(modem.instance(), Technology::ThreeGpp, 0);
}

template <bool isHeld>
void hold(Stage& stage, const Arguments& /*arguments*/) {
    simulatedModem(stage).holdDeliveries(isHeld);
    if (!isHeld) {
        simulatedModem(stage).simulator().releaseDelayed();
    }
}

void deliver(Stage& stage, const Arguments& /*arguments*/) {
    if (!simulatedModem(stage).simulator().deliverNext()) {
        throw refused("nothing waits for delivery");
    }
}

void journal(Stage& stage, const Arguments& /*arguments*/) {
    const auto entries = simulatedModem(stage).simulator().journal().snapshot();
    Json& lines = stage.document()["journal"] = Json::array();
    const auto tell = [&](const std::string& line) {
        lines.push_back(line);
        stage.story().line("  " + line);
    };
    if (!entries.empty() && entries.front().sequence > 1) {
        tell("the first " + counted(entries.front().sequence - 1, "entry") +
             " are gone: the journal is limited");
    }
    for (const velasim::JournalEntry& entry : entries) {
        tell(printable(entry.line()));
    }
}

// --- what goes wrong

using Targets = std::map<std::string, std::uint32_t>;

/** What the fault can strike, by name; without one what any can. */
Targets targetsOf(std::optional<Fault> fault = {}) {
    Targets targets{{"any", velasim::kAnyMessage}, {"foreign", velasim::kForeignChange}};
    for (const MessageWords& message : kMessages) {
        targets.emplace(message.target, static_cast<std::uint32_t>(message.type));
    }
    std::erase_if(targets, [fault](const auto& target) {
        return fault && target.second != velasim::kAnyMessage &&
               !velasim::appliesTo(*fault, target.second);
    });
    return targets;
}

std::uint32_t valueOf(Fault fault, const Arguments& arguments) {
    const std::int64_t value = arguments.number("--value", 0);
    const bool isOfMessaging =
        fault == Fault::SendFailure || velasim::pointOf(fault) == velasim::FaultPoint::Connect;
    if (isOfMessaging && arguments.has("--value") && (value < RLINK_ERROR_CLIENT || value > -1)) {
        throw badUsage(
            "--value: " + std::to_string(value) +
            " is not a messaging error; use -1 (internal), -2 (service), -3 (time-out), -4 "
            "(decode) or -5 (client)");
    }
    if (value < 0 && !isOfMessaging) {
        throw badUsage("--value: " + std::to_string(value) + ": " + velasim::toString(fault) +
                       " takes a number from 0");
    }
    return static_cast<std::uint32_t>(value);
}

velasim::FaultRule ruleOf(const Arguments& arguments) {
    const auto fault = velasim::faultNamed(arguments.word());
    if (!fault) {
        throw badUsage(inQuotes(arguments.word()) + " is not a fault; use " +
                       alternatives(valuesOf("FAULT")));
    }
    const std::string message = arguments.text("--message", "any");
    const Targets fitting = targetsOf(fault);
    if (fitting.count(message) == 0) {
        throw badUsage("--message: " + inQuotes(message) +
                       (targetsOf().count(message) == 0
                            ? " is not a message"
                            : " means nothing for " + velasim::toString(*fault)) +
                       "; use " + alternatives(namesIn(fitting, &Targets::value_type::first)));
    }
    const auto number = [&arguments](const char* option) {
        return static_cast<std::uint32_t>(arguments.number(option, 1));
    };
    return {.fault = *fault,
            .messageId = fitting.at(message),
            .first = number("--first"),
            .every = number("--every"),
            .count = number("--count"),
            .probability = std::stod(arguments.text("--probability", "1")),
            .value = valueOf(*fault, arguments)};
}

}  // namespace

SimulatedModem& simulatedModem(Stage& stage) {
    auto* modem = dynamic_cast<SimulatedModem*>(&stage.workbench().modem());
    if (modem == nullptr) {
        throw refused("this needs the simulated modem; the one at hand is a device");
    }
    return *modem;
}

Names valuesOf(const std::string& placeholder) {
    return placeholder == "FAULT"
               ? namesIn(velasim::allFaults(), [](Fault each) { return velasim::toString(each); })
           : placeholder == "M"       ? namesIn(targetsOf(), &Targets::value_type::first)
           : placeholder == "SETTING" ? namesIn(velasim::fieldNames(Technology::ThreeGpp),
                                                [](const auto& name) { return name + '='; })
                                      : Names();
}

Operations simulatorOperations() {
    constexpr unsigned kProfile = kFields | kTech;
    return {
        sectionOf("The modem, and others"),
        {"foreign create [SETTING...]", "someone else creates a profile", foreignCreate, kProfile,
         kStatement, checkSettings<0>},
        {"foreign modify KEY|ID [SETTING...]", "someone else changes a profile",
         foreignChange<false>, kProfile, kStatement, checkSettings<1>},
        {"foreign delete KEY|ID", "someone else deletes a profile", foreignChange<true>, kTech},
        {"subscription-change", "the modem reports another subscription",
         announce<&Simulator::subscriptionChange>},
        {"profile-ready", "the modem reports that its profiles are ready",
         announce<&Simulator::profileReady>},
        {"restart", "power cycle: the modem forgets its volatile profiles",
         simulate<&Simulator::restart>},
        {"service down", "the modem's data service goes away", simulate<&Simulator::serviceDown>},
        {"service up", "the modem's data service comes back", simulate<&Simulator::serviceUp>},
        {"hold", "let callbacks of the messaging library wait", hold<true>},
        {"deliver", "make the oldest of those that wait", deliver},
        {"release", "make all, and hold no longer", hold<false>},
        {"journal", "all that crossed between library and modem", journal},

        sectionOf("Faults"),
        {"fault FAULT", "something goes wrong: by default once, at the next occasion",
         [](Stage& stage, const Arguments& arguments) {
             simulatedModem(stage).simulator().faults().add(ruleOf(arguments));
         },
         kRule, kStatement, [](const Arguments& arguments) { ruleOf(arguments); }},
        {"no-faults", "nothing goes wrong any more",
         [](Stage& stage, const Arguments& /*arguments*/) {
             simulatedModem(stage).simulator().faults().clear();
         }},
    };
}

}  // namespace velactl
