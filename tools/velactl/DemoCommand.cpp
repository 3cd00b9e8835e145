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
        : bench(bench), context(context), last(bench.modemProfiles()) {}

    void tell(std::string_view what) {
        Output& output = context.output;
        const ProfileRecords now = bench.modemProfiles();
        const auto changes = changesBetween(last, now, output.showSecrets());
        output.line(what);
        output.changes(changes);
        areEqual = context.tellAgreement(bench) && areEqual;
        output.document()["steps"].push_back({{"what", what}, {"changes", output.toJson(changes)}});
        last = now;
    }

    bool isTrue() const { return areEqual; }

  private:
    Workbench& bench;
    const Context& context;
    ProfileRecords last;
    bool areEqual = true;
};

Exit DemoCommand::run(const Context& context) {
    Workbench bench = context.openWorkbench();
    auto* modem = dynamic_cast<SimulatedModem*>(&bench.modem());
    if (modem == nullptr) {
        throw refused("demo needs the simulated modem: nobody restarts a real one for show");
    }
    const ProfileRecord profile = first3gppProfile(bench);
    Stage stage(bench, context);
    const std::string name = title(profile);

    vela::ModifyProfileParams change;
    change.setPdnReqWaitInterval(profile.params.getPdnReqWaitInterval() == 30 ? 60 : 30);
    bench.manager().modifyProfile(change, bench.find(profile.tech, profile.index));
    stage.tell("The library changes the waiting time of " + name + '.');

    modem->changeBehindLibrary(profile.index, "user_name",
                               profile.params.getUserName() == "somebody" ? "else" : "somebody");
    stage.tell("Somebody else changes the user of " + name + ", behind the library's back.");

    vela::AddProfileParams temporary(false, TechType::TECH_3GPP, false);
    temporary.setApnName("temporary.example");
    const auto key = bench.manager().addProfile(temporary);
    stage.tell("The library creates a temporary profile.");

    modem->restart(bench.manager());
    stage.tell("The modem restarts, and forgets what was temporary; the library reads it anew.");

    context.save(bench);
    context.output.document()["agree"] = stage.isTrue();
    return stage.isTrue() ? Exit::Done : Exit::Refused;
}

}  // namespace velactl
