// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ProvisionReport.h"

#include "Table.h"
#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

using Kind = EntryOutcome::Kind;

constexpr const char* kindName(Kind kind) {
    switch (kind) {
        case Kind::Added:
            return "added";
        case Kind::Held:
            return "held";
        case Kind::Shared:
            return "shared";
        case Kind::Missing:
            return "missing";
        case Kind::Refused:
            break;
    }
    return "refused";
}

std::string remarks(const OperatorEntry& entry, bool isExplained) {
    std::vector<std::string> parts = entry.notes;
    if (isExplained && !entry.notSent.empty()) {
        parts.push_back("a profile has no field for " + join(entry.notSent, ", "));
    }
    return join(parts, "; ");
}

void entriesAsText(Output& output, const ProvisionResult& result, bool isExplained) {
    Table table({"LINE", "CARRIER", "APN", "TYPES", "WHAT BECAME OF IT", "REMARKS"});
    for (const EntryOutcome& outcome : result.entries) {
        const OperatorEntry& entry = *outcome.entry;
        const std::string text =
            outcome.kind == Kind::Refused ? "not possible: " + outcome.text : outcome.text;
        table.add({std::to_string(entry.line), printable(entry.carrier),
                   printable(entry.params.getApnName()), typesText(entry.types), text,
                   remarks(entry, isExplained)});
    }
    output.line("Entries:");
    if (output.isText()) {
        table.print(output.text());
    }
}

Json entriesAsJson(const Output& output, const ProvisionResult& result) {
    Json list = Json::array();
    for (const EntryOutcome& outcome : result.entries) {
        const OperatorEntry& entry = *outcome.entry;
        Json item{{"line", entry.line},
                  {"carrier", entry.carrier},
                  {"outcome", kindName(outcome.kind)},
                  {"text", outcome.text},
                  {"wanted", toJson(entry.profile(), output.showSecrets())},
                  {"notes", entry.notes},
                  {"not_sent", entry.notSent}};
        if (outcome.index != 0) {
            item["index"] = outcome.index;
        }
        list.push_back(std::move(item));
    }
    return list;
}

std::string summary(const ProvisionResult& result) {
    if (!result.changes.empty()) {
        return counted(result.changes.size(), "profile") + " created or changed, in " +
               counted(result.writes, "request") + '.';
    }
    return result.writes == 0
               ? "Nothing changed: the modem holds all of it already."
               : "Nothing changed: the modem is as before, after " +
                     counted(result.writes, "request") + " that had no lasting effect.";
}

/** Without the created ones, which the table shows. */
std::vector<ProfileChange> rewritten(std::vector<ProfileChange> changes) {
    std::erase_if(changes, [](const ProfileChange& change) {
        return change.kind == ProfileChange::Kind::Created;
    });
    return changes;
}

}  // namespace

std::string entryText(const OperatorEntry& entry) {
    return "line " + std::to_string(entry.line) + ' ' + inQuotes(entry.params.getApnName()) + " (" +
           printable(entry.carrier) + ')';
}

void reportProvisioning(Output& output, const Operator& candidate, const ProvisionResult& result,
                        bool isExplained) {
    output.line("Operator " + candidate.name() + ", " + printable(candidate.carrier()) + ": " +
                counted(candidate.entries.size(), "entry") + '.');
    output.profiles("Before:", result.before);
    entriesAsText(output, result, isExplained);
    output.line("Attach: " + result.attach + '.');
    output.line(summary(result));
    if (!result.changes.empty()) {
        const auto others = rewritten(result.changes);
        if (!others.empty()) {
            output.changes(others);
        }
        output.profiles("After:", result.after);
    }
    Json& document = output.document();
    document["operator"] = candidate.name();
    document["carrier"] = candidate.carrier();
    document["before"] = output.toJson(result.before);
    document["entries"] = entriesAsJson(output, result);
    document["attach"] = result.attach;
    document["changes"] = output.toJson(result.changes);
    document["after"] = output.toJson(result.after);
    document["requests"] = result.writes;
    document["refusals"] = result.refusals;
}

}  // namespace velactl
