// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "TableCommands.h"

#include "Limits.h"
#include "LogMask.h"
#include "NumberOption.h"
#include "Table.h"
#include "Text.h"

namespace velactl {

void ListCommand::addOptions(CLI::App& app) {
    app.add_option("--tech", tech, "only 3GPP, or only 3GPP2");
}

Exit ListCommand::run(const Context& context) {
    vela::FilterProfileParams filter;
    if (tech) {
        filter.setFilterByTechType(readTech("--tech", *tech));
    }
    Workbench bench = context.openWorkbench();
    const ProfileRecords records = bench.libraryProfiles(filter);
    context.output.profiles(
        "Profiles of modem instance " + std::to_string(context.options.modem.instance) + ':',
        records);
    context.output.document()["profiles"] = context.output.toJson(records);
    context.save(bench);
    return Exit::Done;
}

Exit ShowCommand::run(const Context& context) {
    const vela::TechType tech = address.tech();
    Workbench bench = context.openWorkbench();
    bench.find(tech, address.index);
    vela::FilterProfileParams filter;
    filter.setFilterByTechType(tech);
    filter.setFilterByProfileId(address.index);
    const ProfileRecords records = bench.libraryProfiles(filter);
    if (records.empty()) {
        throw refused("profile " + std::to_string(address.index) + " cannot be read");
    }
    Output& output = context.output;
    output.line(title(records.front()) + ':');
    Table table({"FIELD", "VALUE"});
    for (const ProfileField& field : profileFields()) {
        if (!field.value(records.front().params).is_null()) {
            table.add({field.key, fieldText(field, records.front().params, output.showSecrets())});
        }
    }
    if (output.isText()) {
        table.print(output.text());
    }
    output.document() = toJson(records.front(), output.showSecrets());
    context.save(bench);
    return Exit::Done;
}

void MatchCommand::addOptions(CLI::App& app) {
    fields.addTo(app);
    app.add_option("--tech", tech, "only 3GPP, or only 3GPP2");
    addNumber(app, "--index", index, "only the profile of that index", 0, kMaxIndex);
    app.add_option("--made-by", madeBy, "only profiles made by: vela, vela-ia or others");
    app.add_flag("--loose", isLoose,
                 "names and types may be contained, IP types may overlap either way");
}

vela::FilterProfileParams MatchCommand::filter() const {
    using vela::FilterMatchCriteria;
    vela::FilterProfileParams result(fields.params());
    if (tech) {
        result.setFilterByTechType(readTech("--tech", *tech));
    }
    if (index) {
        result.setFilterByProfileId(*index);
    }
    if (isLoose) {
        result.addFilterMatchCriteria(
            FilterMatchCriteria::HomeIPSubset | FilterMatchCriteria::RoamIPSubset |
            FilterMatchCriteria::ApnNameSubset | FilterMatchCriteria::ApnTypeBitmaskSubset |
            FilterMatchCriteria::HomeIPSuperset | FilterMatchCriteria::RoamIPSuperset);
    }
    if (sameLetters(madeBy, "vela-ia")) {
        result.setFilterByIsIAProfile(true);
    } else if (sameLetters(madeBy, "vela") || sameLetters(madeBy, "others")) {
        result.setFilterByIsVelaProfile(sameLetters(madeBy, "vela"));
    } else if (!madeBy.empty()) {
        throw badUsage("--made-by: " + inQuotes(madeBy) +
                       " is nobody; use vela, vela-ia or others");
    }
    return result;
}

Exit MatchCommand::run(const Context& context) {
    const vela::FilterProfileParams wanted = filter();
    Workbench bench = context.openWorkbench();
    const ProfileRecords records = bench.libraryProfiles(wanted);
    context.output.profiles(
        counted(records.size(), "profile") + ' ' + (records.size() == 1 ? "matches:" : "match:"),
        records);
    context.output.document()["profiles"] = context.output.toJson(records);
    context.save(bench);
    return records.empty() ? Exit::Refused : Exit::Done;
}

Exit DumpCommand::run(const Context& context) {
    Workbench bench = context.openWorkbench();
    Json lines = Json::array();
    for (const std::string& line : bench.manager().dump()) {
        lines.push_back(context.options.showSecrets ? line : withoutPassword(line));
        context.output.line(printable(lines.back().get_ref<const std::string&>()));
    }
    context.output.document()["lines"] = std::move(lines);
    context.save(bench);
    return Exit::Done;
}

}  // namespace velactl
