// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What shall go wrong.

#include <velasim/FaultPlan.h>

#include <algorithm>
#include <array>

#include "Text.h"
#include "ToolError.h"
#include "scenario/Statement.h"

namespace velactl {

namespace {

struct MessageName {
    const char* name;
    std::uint32_t id;
};

constexpr std::array<MessageName, 10> kMessages{
    {{"any", velasim::kAnyMessage},
     {"foreign", velasim::kForeignChange},
     {"create", RLINK_WDS_CREATE_PROFILE_REQ_V01},
     {"modify", RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01},
     {"delete", RLINK_WDS_DELETE_PROFILE_REQ_V01},
     {"list", RLINK_WDS_GET_PROFILE_LIST_REQ_V01},
     {"read", RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01},
     {"bind", RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01},
     {"register", RLINK_WDS_INDICATION_REGISTER_REQ_V01},
     {"event-list", RLINK_WDS_CONFIGURE_PROFILE_EVENT_LIST_REQ_V01}}};

std::uint32_t messageNamed(const std::string& name) {
    const auto* found =
        std::find_if(kMessages.begin(), kMessages.end(),
                     [&name](const MessageName& message) { return message.name == name; });
    if (found == kMessages.end()) {
        std::vector<std::string> names;
        for (const MessageName& message : kMessages) {
            names.emplace_back(message.name);
        }
        throw badUsage("--message: " + inQuotes(name) + " is none; use " + alternatives(names));
    }
    return found->id;
}

/** The messages for which a fault means something. */
std::vector<std::string> messagesOf(velasim::Fault fault) {
    std::vector<std::string> names;
    for (const MessageName& message : kMessages) {
        if (message.id == velasim::kAnyMessage || velasim::appliesTo(fault, message.id)) {
            names.emplace_back(message.name);
        }
    }
    return names;
}

bool isMessagingFailure(velasim::Fault fault) {
    return fault == velasim::Fault::SendFailure ||
           velasim::pointOf(fault) == velasim::FaultPoint::Connect;
}

std::uint32_t valueOf(velasim::Fault fault, const Arguments& arguments) {
    constexpr std::int64_t kLowestError = RLINK_ERROR_CLIENT;
    const std::int64_t value = arguments.value.value_or(0);
    if (isMessagingFailure(fault) && arguments.value && (value < kLowestError || value > -1)) {
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
    const auto fault = velasim::faultNamed(arguments.words[0]);
    if (!fault) {
        std::vector<std::string> names;
        for (const velasim::Fault known : velasim::allFaults()) {
            names.push_back(velasim::toString(known));
        }
        throw badUsage(inQuotes(arguments.words[0]) + " is no fault; use " + alternatives(names));
    }
    rule.fault = *fault;
    rule.messageId = messageNamed(arguments.message.value_or("any"));
    if (rule.messageId != velasim::kAnyMessage && !velasim::appliesTo(rule.fault, rule.messageId)) {
        throw badUsage(arguments.words[0] + " means nothing for the message " + *arguments.message +
                       "; use " + alternatives(messagesOf(rule.fault)));
    }
    rule.first = arguments.first;
    rule.every = arguments.every;
    rule.count = arguments.count;
    rule.probability = arguments.probability;
    rule.value = valueOf(*fault, arguments);
    return rule;
}

void checkRule(const Arguments& arguments) {
    ruleOf(arguments);
}

void addFault(Stage& stage, const Arguments& arguments) {
    stage.simulator().faults().add(ruleOf(arguments));
}

void clearFaults(Stage& stage, const Arguments& /*arguments*/) {
    stage.simulator().faults().clear();
}

}  // namespace

std::vector<StatementKind> faultStatements() {
    return {
        {"fault",
         "NAME [--message M] [--first N] [--every N] [--count N] [--probability P] [--value V]",
         "something goes wrong: by default once, at the next occasion", 1, 1, kRule, checkRule,
         addFault},
        {"no-faults", "", "nothing goes wrong any more", 0, 0, kNoOptions, nullptr, clearFaults},
    };
}

}  // namespace velactl
