// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The policies of the library, each told with how it decided.
#include <list>

#include "decisions/Decision.h"
#include "operators/Provisioner.h"
#include "profiles/Text.h"
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

using Requests = std::list<vela::ProfileParams>;

/** A policy as people name it; the one of an operator's entries that it takes, or all; and whether
 * it yields a key. */
struct Purpose {
    const char* name;
    std::function<const OperatorEntry*(const Operator& candidate)> pick = {};
    bool yields = false;
};

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
    const OperatorEntry* picked = purpose.pick ? purpose.pick(candidate) : nullptr;
    Requests list;
    for (const OperatorEntry& entry : candidate.entries) {
        if (entry.isUsable() && (!purpose.pick || &entry == picked)) {
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

/** Tells how a policy was decided, and what it has changed. */
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
    stage.conclude({.failures = decision.failures()}, decision.isDone(), decision.refusal());
    if (isSeen) {
        stage.takeChanges();
    }
}

/** Runs a policy, which `call` makes for what is asked. A key that it yields is held under the
 * first word. */
template <typename Call>
void decide(Stage& stage, const Arguments& arguments, const Purpose& purpose, Call call) {
    const Requests asked = requestsOf(arguments, purpose);
    noteNotKept(stage, asked, arguments.tech());
    Decision decision(stage.workbench(), purpose.name);
    stage.policies.setProfileUpdateAllowed(arguments.has("--allow-update") ||
                                           stage.isUpdateAllowed);
    Key key = call(asked);
    decision.end();
    const bool isHeld = !arguments.words.empty();
    if (key) {
        stage.document()["technology"] = word(key->getTechType());
        stage.document()["index"] = key->getProfileId();
    }
    if (purpose.yields && !isHeld) {
        key.reset();
        decision.release();
    }
    tell(stage, decision);
    if (purpose.yields && isHeld) {
        stage.hold(arguments.word(), std::move(key));
    }
}

void attach(Stage& stage, const Arguments& arguments) {
    decide(stage, arguments, {"LTE attach", &Operator::attachEntry, true}, [&](const auto& asked) {
        return stage.policies.findOrCreateProfileForLteAttach(asked.front());
    });
}

void matchAttach(Stage& stage, const Arguments& arguments) {
    const int index = stage.profileOf(arguments.word(), vela::TechType::TECH_3GPP).index;
    decide(stage, arguments, {"LTE attach with a given profile", &Operator::attachEntry},
           [&](const auto& asked) {
               const bool matches = stage.policies.matchLteAttachProfileId(index, asked.front());
               stage.story().line(matches ? "yes" : "no");
               stage.document()["matches"] = matches;
               return nullptr;
           });
}

void dataCall(Stage& stage, const Arguments& arguments) {
    const vela::ProfileParams given = paramsOf(arguments.fields());
    const unsigned int types =
        given.hasApnTypesMask() ? given.getApnTypesMask() : toMask(vela::ApnTypes::DEFAULT);
    const auto pick = [types](const Operator& candidate) { return candidate.find(types); };
    decide(stage, arguments, {"data call", pick, true}, [&](const auto& asked) {
        return stage.policies.findOrCreateProfileForSetupDataCall(arguments.tech(), asked.front());
    });
}

void emergency(Stage& stage, const Arguments& arguments) {
    const auto pick = [](const Operator& candidate) {
        return candidate.find(toMask(vela::ApnTypes::EMERGENCY));
    };
    decide(stage, arguments, {"emergency call", pick, true}, [&](const auto& asked) {
        return stage.policies.findOrCreateProfileForEmergencyDataCall(asked.front());
    });
}

void apnClass(Stage& stage, const Arguments& arguments) {
    decide(stage, arguments, {"APN classes"}, [&](const Requests& asked) {
        const bool is3gpp = arguments.tech() == vela::TechType::TECH_3GPP;
        stage.policies.updateModemProfileByApnClass(is3gpp ? asked : Requests(),
                                                    is3gpp ? Requests() : asked);
        return nullptr;
    });
}

void typeMask(Stage& stage, const Arguments& arguments) {
    decide(stage, arguments, {"APN types"}, [&](const Requests& asked) {
        stage.policies.updateAPNTypeBitmaskOnModemProfile(asked);
        return nullptr;
    });
}

void checkProvision(const Arguments& arguments) {
    const bool isAll = arguments.has("--all");
    const std::string error = !arguments.has("--apns") ? "--apns FILE is missing, the operator file"
                              : arguments.has("--plmn") == isAll
                                  ? "either --plmn MCCMNC or --all, which operator to provision"
                              : arguments.has("--twice") && !isAll
                                  ? "--twice goes with --all; otherwise run it again"
                                  : "";
    if (!error.empty()) {
        throw badUsage("provision: " + error);
    }
}

void provision(Stage& stage, const Arguments& arguments) {
    const Setting& setting = stage.options();
    const bool isAll = arguments.has("--all");
    const bool isExplained = arguments.has("--explain");
    if (isAll && (!setting.isVerb || !setting.modem.file.empty())) {
        throw badUsage(std::string("provision --all uses fresh modems; ") +
                       (setting.isVerb ? "leave --modem out" : "it is for the command line"));
    }
    Progress reading(setting.err, setting.errColumns, 100);
    const OperatorFile file = OperatorFile::load(arguments.text("--apns"), &reading);
    reading.clear();
    std::string failure;
    if (isAll) {
        Progress progress(setting.err, setting.errColumns, file.operatorCount());
        failure = provisionAll(stage.details(), file,
                               {setting.modem, arguments.has("--twice"), isExplained}, progress);
    } else {
        failure = provisionOne(stage.details(), stage.workbench(), operatorIn(file, arguments),
                               file, isExplained);
        stage.takeChanges();
    }
    stage.conclude({}, failure.empty(), failure);
}

}  // namespace

Operations policyOperations() {
    constexpr unsigned kRequest = kFields | kOperator | kUpdate;
    return {
        sectionOf("Policies"),
        {"provision", "bring the modem in line with an operator's entries", provision,
         kOperator | kProvision, kEverywhere, checkProvision},
        {"attach [KEY]", "find or create the profile for the LTE attach", attach, kRequest,
         kEverywhere, checkSource},
        {"match-attach KEY|ID", "whether the profile can serve the LTE attach", matchAttach,
         kRequest, kEverywhere, checkSource},
        {"data-call [KEY]", "find or create the profile for a data call", dataCall,
         kRequest | kTech, kEverywhere, checkSource},
        {"emergency [KEY]", "find or create the profile for an emergency call", emergency, kRequest,
         kEverywhere, checkSource},
        {"apn-class", "bring the profiles of APN classes in line", apnClass, kRequest | kTech,
         kEverywhere, checkSource},
        {"type-mask", "distribute APN types over the profiles of each APN name", typeMask, kRequest,
         kEverywhere, checkSource},
        {"allow-update on|off",
         "whether policies may change profiles that the library did not make",
         [](Stage& stage, const Arguments& arguments) {
             stage.isUpdateAllowed = arguments.word() == "on";
         }},
    };
}

}  // namespace velactl
