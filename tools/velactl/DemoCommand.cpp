// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "DemoCommand.h"

#include <algorithm>
#include <string_view>

#include "Text.h"

namespace velactl {

namespace {

using vela::TechType;

ProfileRecord first3gppProfile(Workbench& bench) {
    const ProfileRecords records = bench.modemProfiles();
    const auto found = std::find_if(records.begin(), records.end(), [](const auto& record) {
        return record.tech == TechType::TECH_3GPP;
    });
    if (found == records.end()) {
        throw refused("the modem has no 3GPP profile to change; provision it first");
    }
    return *found;
}

}  // namespace

/** What is seen on the way: each step is told with the change in the modem, and checked. */
class DemoCommand::Stage {
  public:
    Stage(Workbench& bench, const Context& context)
        : bench(bench), context(context), last(bench.modemProfiles()) {
        bench.takeTraffic();
    }

    /** A step that should have changed the modem in this way. */
    void tell(std::string_view what, ProfileChange::Kind expected) {
        Output& output = context.output;
        const ProfileRecords now = bench.modemProfiles();
        const auto changes = changesBetween(last, now, output.showSecrets());
        output.line(what);
        output.changes(changes);
        const bool hasHappened = happened(changes, expected);
        areEqual = context.tellAgreement(bench) && areEqual;
        output.document()["steps"].push_back(
            {{"what", what}, {"changes", output.toJson(changes)}, {"happened", hasHappened}});
        last = now;
    }

    bool areAlwaysEqual() const { return areEqual; }
    bool isDone() const { return haveAllHappened; }

  private:
    bool happened(const std::vector<ProfileChange>& changes, ProfileChange::Kind expected) {
        const auto failures = bench.takeTraffic().failures;
        if (std::any_of(changes.begin(), changes.end(),
                        [=](const auto& change) { return change.kind == expected; })) {
            return true;
        }
        haveAllHappened = false;
        context.output.line("THIS DID NOT HAPPEN" +
                            (failures.empty() ? "." : ": " + join(failures, "; ")));
        return false;
    }

    Workbench& bench;
    const Context& context;
    ProfileRecords last;
    bool areEqual = true;
    bool haveAllHappened = true;
};

Exit DemoCommand::run(const Context& context) {
    Workbench bench = context.openWorkbench();
    auto* modem = dynamic_cast<SimulatedModem*>(&bench.modem());
    if (modem == nullptr) {
        throw refused("demo needs the simulated modem: nobody restarts a real one for show");
    }
    using Kind = ProfileChange::Kind;
    const ProfileRecord profile = first3gppProfile(bench);
    Stage stage(bench, context);
    const std::string name = title(profile);

    vela::ModifyProfileParams change;
    change.setPdnReqWaitInterval(profile.params.getPdnReqWaitInterval() == 30 ? 60 : 30);
    bench.manager().modifyProfile(change, bench.find(profile.tech, profile.index));
    stage.tell("The library changes the waiting time of " + name + '.', Kind::Changed);

    modem->changeBehindLibrary(profile.index, "user_name",
                               profile.params.getUserName() == "somebody" ? "else" : "somebody");
    stage.tell("Somebody else changes the user of " + name + ", behind the library's back.",
               Kind::Changed);

    vela::AddProfileParams temporary(false, TechType::TECH_3GPP, false);
    temporary.setApnName("temporary.example");
    const auto key = bench.manager().addProfile(temporary);
    stage.tell("The library creates a temporary profile.", Kind::Created);

    modem->restart(bench.manager());
    stage.tell("The modem restarts, and forgets what was temporary; the library reads it anew.",
               Kind::Deleted);

    context.save(bench);
    context.output.document()["agree"] = stage.areAlwaysEqual();
    if (!stage.isDone()) {
        context.output.note("a step of the demonstration did not happen");
    }
    return stage.areAlwaysEqual() && stage.isDone() ? Exit::Done : Exit::Refused;
}

}  // namespace velactl
