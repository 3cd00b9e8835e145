// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "EditCommands.h"

#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

/** Tells what has become of the modem's table since `before`, and fails if the modem refused. */
void report(const Context& context, Workbench& bench, const ProfileRecords& before) {
    const auto changes =
        changesBetween(before, bench.modemProfiles(), context.output.showSecrets());
    const Traffic traffic = bench.takeTraffic();
    context.save(bench);
    if (!traffic.failures.empty()) {
        throw refused(join(traffic.failures, "; "));
    }
    context.output.line("Changed:");
    context.output.changes(changes);
    context.output.document()["changes"] = context.output.toJson(changes);
}

}  // namespace

void AddCommand::addOptions(CLI::App& app) {
    fields.addTo(app);
    address.addTechTo(app);
    app.add_flag("--temporary", isTemporary, "a profile that ends with the last key to it");
    app.add_flag("--ia", isForAttach, "a profile for the LTE initial attach");
}

Exit AddCommand::run(const Context& context) {
    const vela::AddProfileParams wanted(fields.params(), !isTemporary, address.tech(), isForAttach);
    Workbench bench = context.openWorkbench();
    const ProfileRecords before = bench.modemProfiles();
    const auto key = bench.manager().addProfile(wanted);
    report(context, bench, before);
    if (!key) {
        throw refused("the profile was not created, and the library did not say why; see --log");
    }
    context.output.document()["index"] = key->getProfileId();
    if (isTemporary) {
        context.output.line(
            "It is temporary: it leaves the modem with its last key, that is, now "
            "that this command ends.");
    }
    return Exit::Done;
}

void ModifyCommand::addOptions(CLI::App& app) {
    address.addTo(app);
    fields.addTo(app);
}

Exit ModifyCommand::run(const Context& context) {
    if (fields.isEmpty()) {
        throw badUsage("modify: nothing to change; give at least one field, as --apn NAME");
    }
    const vela::ModifyProfileParams wanted(fields.params());
    const vela::TechType tech = address.tech();
    Workbench bench = context.openWorkbench();
    const auto key = bench.find(tech, address.index);
    const ProfileRecords before = bench.modemProfiles();
    const bool done = bench.manager().modifyProfile(wanted, key);
    // The library reports success also when the modem has refused: what was sent tells.
    report(context, bench, before);
    if (!done) {
        throw refused("profile " + std::to_string(address.index) + " vanished meanwhile");
    }
    return Exit::Done;
}

Exit DeleteCommand::run(const Context& context) {
    const vela::TechType tech = address.tech();
    Workbench bench = context.openWorkbench();
    const auto key = bench.find(tech, address.index);
    const ProfileRecords before = bench.modemProfiles();
    const bool done = bench.manager().deleteProfile(key);
    report(context, bench, before);
    if (!done) {
        throw refused("profile " + std::to_string(address.index) + " was not deleted");
    }
    return Exit::Done;
}

}  // namespace velactl
