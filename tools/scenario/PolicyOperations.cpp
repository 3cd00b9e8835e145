// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The policies of the library, each told with how it decided.
#include <list>

#include "decisions/Decision.h"
#include "operators/ProvisionReport.h"
#include "profiles/Output.h"
#include "profiles/Text.h"
#include "profiles/ToolError.h"
#include "profiles/Words.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

using Requests = std::list<vela::ProfileParams>;
using Entries = std::vector<OperatorEntry>;
using Key = std::shared_ptr<vela::IProfileKey>;

/** A policy as people name it, and what it takes of an operator's entries. */
struct Purpose {
    const char* name;
    Entries (*pick)(const Operator& candidate, const Arguments& arguments);
};

Entries listOf(const OperatorEntry* entry) {
    return entry == nullptr ? Entries() : Entries{*entry};
}

Entries forAttach(const Operator& candidate, const Arguments& /*arguments*/) {
    return listOf(candidate.attachEntry());
}

Entries forCall(const Operator& candidate, const Arguments& arguments) {
    const vela::ProfileParams given = paramsOf(arguments.fields());
    return listOf(candidate.find(given.hasApnTypesMask() ? given.getApnTypesMask()
                                                         : toMask(vela::ApnTypes::DEFAULT)));
}

Entries forEmergency(const Operator& candidate, const Arguments& /*arguments*/) {
    return listOf(candidate.find(toMask(vela::ApnTypes::EMERGENCY)));
}

Entries all(const Operator& candidate, const Arguments& /*arguments*/) {
    return candidate.entries;
}

Operator operatorIn(const OperatorFile& file, const Arguments& arguments) {
    return file.find(Plmn::parse(arguments.text("--plmn")), arguments.text("--mvno"));
}

/** What is asked for: the fields that were given, over those of the operator's entries. */
Requests requestsOf(const Arguments& arguments, const Purpose& purpose) {
    if (!arguments.has("--apns")) {
        return {paramsOf(arguments.fields())};
    }
    const OperatorFile file = OperatorFile::load(arguments.text("--apns"));
    const Operator candidate = operatorIn(file, arguments);
    Requests list;
    for (const OperatorEntry& entry : purpose.pick(candidate, arguments)) {
        if (entry.isUsable()) {
            Json asked = fieldsOf(entry.profile(true, true));
            asked.update(arguments.fields());
            list.push_back(paramsOf(asked));
        }
    }
    if (list.empty()) {
        const std::string unusable = candidate.refusals();
        throw refused(file.name() + ": operator " + candidate.name() + " has no entry for " +
                      purpose.name + (unusable.empty() ? "" : "; none can be made of " + unusable));
    }
    return list;
}

/** What names the operator must be whole. */
void checkSource(const Arguments& arguments) {
    const std::pair<const char*, const char*> needs[] = {
        {"--mvno", "--plmn"}, {"--plmn", "--apns"}, {"--apns", "--plmn"}};
    for (const auto& [option, needed] : needs) {
        if (arguments.has(option) && !arguments.has(needed)) {
            throw badUsage(std::string(option) + " needs " + needed +
                           "; an operator is --apns FILE --plmn MCCMNC [--mvno TYPE:DATA]");
        }
    }
}

/** What the library leaves out, as profiles of the technology do not have it. */
void noteNotKept(Stage& stage, const Requests& requests, vela::TechType tech) {
    Json fields = Json::object();
    for (const vela::ProfileParams& request : requests) {
        fields.update(fieldsOf(request));
    }
    if (const Names names = fieldsNotKept(fields, tech); !names.empty()) {
        stage.details().note("a " + word(tech) + " profile does not keep " + join(names, ", "));
    }
}

/** Tells how the policy was decided, and what it has changed. */
void tell(Stage& stage, const Decision& decision) {
    Json record = decision.toJson(stage.showSecrets());
    for (const std::string& line : decision.lines(stage.showSecrets())) {
        stage.details().line(line);
    }
    const bool isSeen = record["table_seen"] == true;
    if (isSeen) {
        stage.document()["changes"] = record["changes"];
        stage.document()["released"] = record["release_changes"];
    }
    stage.document()["decision"] = std::move(record);
    Traffic traffic;
    traffic.failures = decision.failures();
    stage.conclude(traffic, decision.isDone(), decision.refusal());
    if (isSeen) {
        stage.skipChanges();
    }
}

/** Runs a policy, which `call` makes for what is asked. */
template <typename Call>
void decide(Stage& stage, const Arguments& arguments, const Purpose& purpose, Call call) {
    const Requests asked = requestsOf(arguments, purpose);
    noteNotKept(stage, asked, arguments.tech());
    Decision decision(stage.workbench(), purpose.name);
    stage.policies.setProfileUpdateAllowed(arguments.has("--allow-update") ||
                                           stage.isUpdateAllowed);
    call(asked, decision);
    tell(stage, decision);
}

/** The same of one that yields a key, which is held under the first word. */
template <typename Find>
void yield(Stage& stage, const Arguments& arguments, const Purpose& purpose, Find find) {
    Key key;
    decide(stage, arguments, purpose, [&](const Requests& asked, Decision& decision) {
        key = find(asked.front());
        decision.end();
        if (key) {
            stage.document()["technology"] = word(key->getTechType());
            stage.document()["index"] = key->getProfileId();
        }
        if (arguments.words.empty()) {
            key.reset();
            decision.release();
        }
    });
    if (!arguments.words.empty()) {
        stage.hold(arguments.word(), std::move(key));
    }
}

void attach(Stage& stage, const Arguments& arguments) {
    yield(stage, arguments, {"LTE attach", forAttach}, [&stage](const auto& asked) {
        return stage.policies.findOrCreateProfileForLteAttach(asked);
    });
}

void dataCall(Stage& stage, const Arguments& arguments) {
    yield(stage, arguments, {"data call", forCall}, [&](const auto& asked) {
        return stage.policies.findOrCreateProfileForSetupDataCall(arguments.tech(), asked);
    });
}

void emergency(Stage& stage, const Arguments& arguments) {
    yield(stage, arguments, {"emergency call", forEmergency}, [&stage](const auto& asked) {
        return stage.policies.findOrCreateProfileForEmergencyDataCall(asked);
    });
}

void matchAttach(Stage& stage, const Arguments& arguments) {
    const int index = stage.profileOf(arguments.word(), vela::TechType::TECH_3GPP).index;
    decide(stage, arguments, {"LTE attach with a given profile", forAttach},
           [&](const Requests& asked, Decision& decision) {
               const bool matches = stage.policies.matchLteAttachProfileId(index, asked.front());
               decision.end();
               stage.story().line(matches ? "yes" : "no");
               stage.document()["matches"] = matches;
           });
}

void apnClass(Stage& stage, const Arguments& arguments) {
    decide(stage, arguments, {"APN classes", all}, [&](const Requests& asked, Decision& decision) {
        const bool is3gpp = arguments.tech() == vela::TechType::TECH_3GPP;
        stage.policies.updateModemProfileByApnClass(is3gpp ? asked : Requests(),
                                                    is3gpp ? Requests() : asked);
        decision.end();
    });
}

void typeMask(Stage& stage, const Arguments& arguments) {
    decide(stage, arguments, {"APN types", all}, [&](const Requests& asked, Decision& decision) {
        stage.policies.updateAPNTypeBitmaskOnModemProfile(asked);
        decision.end();
    });
}

void allowUpdate(Stage& stage, const Arguments& arguments) {
    stage.isUpdateAllowed = arguments.word() == "on";
}

void checkProvision(const Arguments& arguments) {
    if (!arguments.has("--apns")) {
        throw badUsage("provision: --apns FILE is missing, the operator file");
    }
    if (arguments.has("--plmn") == arguments.has("--all")) {
        throw badUsage("provision: either --plmn MCCMNC or --all, which operator to provision");
    }
    if (arguments.has("--twice") && !arguments.has("--all")) {
        throw badUsage("provision: --twice goes with --all; otherwise run it again");
    }
}

/** One operator into the stage's modem. Returns what went wrong. */
std::string provisionOne(Stage& stage, const Arguments& arguments, const OperatorFile& file) {
    const Operator candidate = operatorIn(file, arguments);
    std::string failure = velactl::provisionOne(stage.details(), stage.workbench(), candidate, file,
                                                arguments.has("--explain"));
    stage.skipChanges();
    return failure;
}

/** All of a file, each into a fresh modem. */
std::string provisionAll(Stage& stage, const Arguments& arguments, const OperatorFile& file) {
    const Setting& setting = stage.options();
    Progress progress(setting.err, setting.errColumns, file.operatorCount());
    return velactl::provisionAll(
        stage.details(), file,
        {setting.modem, setting.log, arguments.has("--twice"), arguments.has("--explain")},
        progress);
}

void provision(Stage& stage, const Arguments& arguments) {
    const Setting& setting = stage.options();
    if (arguments.has("--all") && (!setting.isVerb || !setting.modem.file.empty())) {
        throw badUsage(std::string("provision --all uses fresh modems; ") +
                       (setting.isVerb ? "leave --modem out" : "it is for the command line"));
    }
    Progress reading(setting.err, setting.errColumns, 100);
    const OperatorFile file = OperatorFile::load(arguments.text("--apns"), &reading);
    reading.clear();
    const std::string failure = arguments.has("--all") ? provisionAll(stage, arguments, file)
                                                       : provisionOne(stage, arguments, file);
    stage.conclude({}, failure.empty(), failure);
}

}  // namespace

Operations policyOperations() {
    constexpr unsigned kRequest = kFields | kOperator | kUpdate;
    return {
        {"provision", "", kOperator | kProvision, kEverywhere,
         "bring the modem in line with an operator's entries", provision, checkProvision},
        {"attach", "[KEY]", kRequest, kEverywhere, "find or create the profile for the LTE attach",
         attach, checkSource},
        {"match-attach", "KEY|ID", kRequest, kEverywhere,
         "whether the profile can serve the LTE attach", matchAttach, checkSource},
        {"data-call", "[KEY]", kRequest | kTech, kEverywhere,
         "find or create the profile for a data call", dataCall, checkSource},
        {"emergency", "[KEY]", kRequest, kEverywhere,
         "find or create the profile for an emergency call", emergency, checkSource},
        {"apn-class", "", kRequest | kTech, kEverywhere,
         "bring the profiles of APN classes in line", apnClass, checkSource},
        {"type-mask", "", kRequest, kEverywhere,
         "distribute APN types over the profiles of each APN name", typeMask, checkSource},
        {"allow-update", "on|off", kNoOptions, kStatement,
         "whether policies may change profiles that the library did not make", allowUpdate},
    };
}

}  // namespace velactl
