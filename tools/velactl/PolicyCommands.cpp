// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "PolicyCommands.h"

#include "Limits.h"
#include "NumberOption.h"
#include "PolicyStory.h"
#include "Provisioner.h"
#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

using vela::ApnTypes;
using vela::TechType;

const ProfileRecord* recordOf(const ProfileRecords& records, const vela::IProfileKey& key) {
    return findRecord(records, key.getTechType(), key.getProfileId());
}

/** "found: 3GPP profile 2 (internet)" */
std::string resultText(const ProfileRecords& before, const ProfileRecords& now,
                       const vela::IProfileKey& key) {
    const ProfileRecord* record = recordOf(now, key);
    const std::string name = record != nullptr ? title(*record)
                                               : word(key.getTechType()) + " profile " +
                                                     std::to_string(key.getProfileId()) +
                                                     ", which the modem lacks";
    const bool isTemporary = record != nullptr && !record->persistent.value_or(true);
    return std::string(recordOf(before, key) != nullptr ? "found: " : "created: ") + name +
           (isTemporary ? ", temporary" : "");
}

/** Of a policy that yields no profile. */
std::string resultText(bool isDone, const std::vector<std::string>& refusals) {
    if (!refusals.empty()) {
        return "not done: " + refusals.back();
    }
    return isDone ? "done" : "no";
}

/** The first entry of these types that the operator has not disabled. */
std::vector<const OperatorEntry*> firstOf(const Operator& candidate, unsigned int types) {
    for (const OperatorEntry* entry : candidate.entries) {
        const bool isOpen = entry->isUsable() && !entry->params.getIsApnDisabled();
        if (isOpen && (entry->types & types) == types) {
            return {entry};
        }
    }
    return {};
}

std::vector<const OperatorEntry*> attachEntryOf(const Operator& candidate) {
    const OperatorEntry* entry = Provisioner::attachEntry(candidate.entries);
    return entry == nullptr ? std::vector<const OperatorEntry*>() : std::vector{entry};
}

}  // namespace

void PolicyCommand::addOptions(CLI::App& app) {
    fields.addTo(app);
    source.addTo(app);
    app.add_flag("--allow-update", isUpdateAllowed,
                 "the policy may rewrite profiles that the library did not make");
}

PolicyCommand::Requests PolicyCommand::requests() const {
    source.check();
    if (!source.isGiven()) {
        return {fields.params()};
    }
    if (!source.namesOperator()) {
        throw badUsage("--apns needs --plmn MCCMNC, the operator to take from the file");
    }
    const OperatorFile file = source.load();
    const Operator candidate = source.findIn(file);
    Requests list;
    for (const OperatorEntry* entry : pick(candidate)) {
        if (entry->isUsable()) {
            fields.applyTo(list.emplace_back(entry->profile()));
        }
    }
    if (list.empty()) {
        throw refused(file.name() + ": operator " + candidate.name() + " has no entry for " +
                      purpose);
    }
    return list;
}

Exit PolicyCommand::run(const Context& context) {
    check();
    const Requests asked = requests();
    Workbench bench = context.openWorkbench();
    const ProfileRecords before = bench.modemProfiles();
    vela::Util policies;
    policies.setProfileUpdateAllowed(isUpdateAllowed);
    bench.takeTraffic();
    return report(context, bench, asked, before, decide(policies, asked));
}

Exit PolicyCommand::report(const Context& context, Workbench& bench, const Requests& asked,
                           const ProfileRecords& before, Decision decision) {
    Output& output = context.output;
    const Traffic traffic = bench.takeTraffic();
    const ProfileRecords now = bench.modemProfiles();
    const auto changes = changesBetween(before, now, output.showSecrets());
    Json& document = output.document();
    document["asked"] = Json::array();
    for (const vela::ProfileParams& params : asked) {
        output.line(std::string(purpose) +
                    ", asked for: " + velactl::describe(params, output.showSecrets()));
        document["asked"].push_back(toJson(params, output.showSecrets()));
    }
    output.line("Decided:");
    const std::vector<std::string> steps = storyOf(traffic.log);
    document["steps"] = steps;
    for (const std::string& step : steps) {
        output.line("  " + step);
    }
    if (decision.yieldsProfile) {
        document["result"] = decision.key ? resultText(before, now, *decision.key) : "no profile";
    } else {
        document["result"] = resultText(decision.isDone, traffic.failures);
    }
    output.line("Result: " + document["result"].get_ref<const std::string&>());
    output.line("Changed in the modem:");
    output.changes(changes);
    document["changes"] = output.toJson(changes);

    decision.key.reset();
    const auto released = changesBetween(now, bench.modemProfiles(), output.showSecrets());
    if (!released.empty()) {
        output.line("Once the call has released its key:");
        output.changes(released);
    }
    document["released"] = output.toJson(released);
    const bool areEqual = context.tellAgreement(bench);
    context.save(bench);
    for (const std::string& refusal : traffic.failures) {
        output.note(refusal);
    }
    return decision.isDone && areEqual && traffic.failures.empty() ? Exit::Done : Exit::Refused;
}

PolicyCommand::Entries AttachCommand::pick(const Operator& candidate) const {
    return attachEntryOf(candidate);
}

PolicyCommand::Decision AttachCommand::decide(vela::Util& policies, const Requests& requests) {
    return Decision::of(policies.findOrCreateProfileForLteAttach(requests.front()));
}

void MatchAttachCommand::addOptions(CLI::App& app) {
    addNumber(app, "id", index, "index of the 3GPP profile", 0, kMaxIndex)->required();
    PolicyCommand::addOptions(app);
}

PolicyCommand::Entries MatchAttachCommand::pick(const Operator& candidate) const {
    return attachEntryOf(candidate);
}

PolicyCommand::Decision MatchAttachCommand::decide(vela::Util& policies, const Requests& requests) {
    return {policies.matchLteAttachProfileId(index, requests.front()), nullptr, false};
}

void DataCallCommand::addOptions(CLI::App& app) {
    address.addTechTo(app);
    PolicyCommand::addOptions(app);
}

PolicyCommand::Entries DataCallCommand::pick(const Operator& candidate) const {
    const vela::ProfileParams given = fields.params();
    return firstOf(candidate,
                   given.hasApnTypesMask() ? given.getApnTypesMask() : toMask(ApnTypes::DEFAULT));
}

PolicyCommand::Decision DataCallCommand::decide(vela::Util& policies, const Requests& requests) {
    return Decision::of(
        policies.findOrCreateProfileForSetupDataCall(address.tech(), requests.front()));
}

PolicyCommand::Entries EmergencyCommand::pick(const Operator& candidate) const {
    return firstOf(candidate, toMask(ApnTypes::EMERGENCY));
}

PolicyCommand::Decision EmergencyCommand::decide(vela::Util& policies, const Requests& requests) {
    return Decision::of(policies.findOrCreateProfileForEmergencyDataCall(requests.front()));
}

void ApnClassCommand::addOptions(CLI::App& app) {
    address.addTechTo(app);
    PolicyCommand::addOptions(app);
}

PolicyCommand::Decision ApnClassCommand::decide(vela::Util& policies, const Requests& requests) {
    const bool is3gpp = address.tech() == TechType::TECH_3GPP;
    policies.updateModemProfileByApnClass(is3gpp ? requests : Requests(),
                                          is3gpp ? Requests() : requests);
    return {};
}

PolicyCommand::Decision TypeMaskCommand::decide(vela::Util& policies, const Requests& requests) {
    policies.updateAPNTypeBitmaskOnModemProfile(requests);
    return {};
}

}  // namespace velactl
