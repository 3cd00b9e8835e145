// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What shall go wrong.

#include <vela/Observer.h>
#include <velasim/FaultPlan.h>

#include <map>
#include <optional>

#include "modem/SimulatedModem.h"
#include "profiles/Text.h"
#include "profiles/ToolError.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

// clang-format off
/** A message as it is written; null when there is none of that number. */
constexpr const char* targetName(vela::ModemMessageType type) {
    using Type = vela::ModemMessageType;
    switch (type) {
        case Type::CreateProfile: return "create";
        case Type::ModifyProfile: return "modify";
        case Type::DeleteProfile: return "delete";
        case Type::ListProfiles: return "list";
        case Type::ReadProfile: return "read";
        case Type::BindSubscription: return "bind";
        case Type::RegisterIndications: return "register";
        case Type::ConfigureEventList: return "event-list";
    }
    return nullptr;
}
// clang-format on

using Targets = std::map<std::string, std::uint32_t>;

/** What the fault can strike, by name; without one what any can. */
Targets targetsOf(std::optional<velasim::Fault> fault = {}) {
    constexpr std::uint32_t kHighest = 0xFF;
    Targets messages{{"any", velasim::kAnyMessage}, {"foreign", velasim::kForeignChange}};
    for (std::uint32_t id = 0; id <= kHighest; ++id) {
        if (const char* name = targetName(static_cast<vela::ModemMessageType>(id));
            name != nullptr) {
            messages.emplace(name, id);
        }
    }
    std::erase_if(messages, [fault](const auto& message) {
        return fault && message.second != velasim::kAnyMessage &&
               !velasim::appliesTo(*fault, message.second);
    });
    return messages;
}

Names namesOf(const Targets& messages) {
    Names names;
    for (const auto& [name, id] : messages) {
        names.push_back(name);
    }
    return names;
}

Names faultNames() {
    Names names;
    for (const velasim::Fault fault : velasim::allFaults()) {
        names.push_back(velasim::toString(fault));
    }
    return names;
}

Names faultValues(const std::string& placeholder) {
    return placeholder == "FAULT" ? faultNames()
           : placeholder == "M"   ? namesOf(targetsOf())
                                  : Names();
}

std::uint32_t messageNamed(const std::string& name, velasim::Fault fault) {
    const Targets fitting = targetsOf(fault);
    const auto found = fitting.find(name);
    if (found == fitting.end()) {
        throw badUsage("--message: " + inQuotes(name) +
                       (targetsOf().count(name) == 0
                            ? " is none"
                            : " means nothing for " + velasim::toString(fault)) +
                       "; use " + alternatives(namesOf(fitting)));
    }
    return found->second;
}

bool isMessagingFailure(velasim::Fault fault) {
    return fault == velasim::Fault::SendFailure ||
           velasim::pointOf(fault) == velasim::FaultPoint::Connect;
}

std::uint32_t valueOf(velasim::Fault fault, const Arguments& arguments) {
    constexpr std::int64_t kLowestError = RLINK_ERROR_CLIENT;
    const std::int64_t value = arguments.number("--value", 0);
    if (isMessagingFailure(fault) && arguments.has("--value") &&
        (value < kLowestError || value > -1)) {
        throw badUsage("--value: " + std::to_string(value) +
                       " is no messaging error; use -1 (internal), -2 (service), -3 (time-out), -4 "
                       "(decode) or -5 (client)");
    }
    if (value < 0 && !isMessagingFailure(fault)) {
        throw badUsage("--value: " + std::to_string(value) + ": " + velasim::toString(fault) +
                       " takes a number from 0");
    }
    return static_cast<std::uint32_t>(value);
}

velasim::FaultRule ruleOf(const Arguments& arguments) {
    velasim::FaultRule rule;
    const auto fault = velasim::faultNamed(arguments.word());
    if (!fault) {
        throw badUsage(inQuotes(arguments.word()) + " is no fault; use " +
                       alternatives(faultNames()));
    }
    rule.fault = *fault;
    rule.messageId = messageNamed(arguments.text("--message", "any"), *fault);
    const auto number = [&arguments](const char* option) {
        return static_cast<std::uint32_t>(arguments.number(option, 1));
    };
    rule.first = number("--first");
    rule.every = number("--every");
    rule.count = number("--count");
    rule.probability = std::stod(arguments.text("--probability", "1"));
    rule.value = valueOf(*fault, arguments);
    return rule;
}

}  // namespace

Operations faultOperations() {
    return {
        {"fault", "FAULT", kRule, kStatement,
         "something goes wrong: by default once, at the next occasion",
         [](Stage& stage, const Arguments& arguments) {
             simulatedModem(stage).simulator().faults().add(ruleOf(arguments));
         },
         [](const Arguments& arguments) { ruleOf(arguments); }, faultValues},
        {"no-faults", "", kNoOptions, kStatement, "nothing goes wrong any more",
         [](Stage& stage, const Arguments& /*arguments*/) {
             simulatedModem(stage).simulator().faults().clear();
         }},
    };
}

}  // namespace velactl
