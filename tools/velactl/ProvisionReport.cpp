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
        case Kind::Rewritten:
            return "rewritten";
        case Kind::Shared:
            return "shared";
        case Kind::Missing:
            return "missing";
        case Kind::Refused:
            break;
    }
    return "refused";
}

constexpr const char* kindName(AttachOutcome::Kind kind) {
    switch (kind) {
        case AttachOutcome::Kind::NotAsked:
            return "not asked for";
        case AttachOutcome::Kind::Serves:
            return "serves";
        case AttachOutcome::Kind::Found:
            return "found";
        case AttachOutcome::Kind::Created:
            return "created";
        case AttachOutcome::Kind::Missing:
            break;
    }
    return "missing";
}

/** What is odd about the entry or its profile. */
std::vector<std::string> remarks(const EntryOutcome& outcome, bool isExplained) {
    const OperatorEntry& entry = *outcome.entry;
    std::vector<std::string> parts = outcome.oddities;
    parts.insert(parts.end(), entry.notes.begin(), entry.notes.end());
    if (isExplained && !entry.notSent.empty()) {
        parts.push_back("a profile has no field for " + join(entry.notSent, ", "));
    }
    return parts;
}

std::string outcomeText(const EntryOutcome& outcome) {
    return (outcome.kind == Kind::Refused ? "not possible: " : "") + outcome.text;
}

void entriesAsText(Output& output, const ProvisionResult& result, bool isExplained) {
    Table table({"LINE", "CARRIER", "APN", "TYPES", "WHAT BECAME OF IT", "REMARKS"});
    for (const EntryOutcome& outcome : result.entries) {
        const OperatorEntry& entry = *outcome.entry;
        table.add({std::to_string(entry.line), printable(entry.carrier),
                   printable(entry.params.getApnName()), typesText(entry.types),
                   outcomeText(outcome), join(remarks(outcome, isExplained), "; ")});
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
                  {"oddities", outcome.oddities},
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

std::vector<std::string> odditiesOf(const ProvisionResult& result, bool isExplained) {
    std::vector<std::string> lines;
    for (const EntryOutcome& outcome : result.entries) {
        const std::string start = entryText(*outcome.entry) + ": ";
        if (outcome.index == 0) {
            lines.push_back(start + outcomeText(outcome));
        }
        for (const std::string& remark : remarks(outcome, isExplained)) {
            lines.push_back(start + remark);
        }
    }
    if (result.attach.kind == AttachOutcome::Kind::NotAsked) {
        lines.push_back("attach: " + result.attach.text);
    }
    const auto failures = result.failures();
    lines.insert(lines.end(), failures.begin(), failures.end());
    return lines;
}

Json toJson(const Output& output, const Operator& candidate, const ProvisionResult& result) {
    return {{"operator", candidate.name()},
            {"carrier", candidate.carrier()},
            {"entries", entriesAsJson(output, result)},
            {"attach", result.attach.text},
            {"attach_outcome", kindName(result.attach.kind)},
            {"requests", result.writes},
            {"refusals", result.refusals}};
}

void reportProvisioning(Output& output, const Operator& candidate, const ProvisionResult& result,
                        const OperatorFile& file, bool isExplained) {
    output.line("Operator " + candidate.name() + ", " + printable(candidate.carrier()) + ": " +
                counted(candidate.entries.size(), "entry") + '.');
    output.profiles("Before:", result.before);
    entriesAsText(output, result, isExplained);
    output.line("Attach: " + result.attach.text + '.');
    if (!file.oddities().empty()) {
        output.line("Elsewhere in " + file.name() + ":");
    }
    for (const std::string& line : file.oddities()) {
        output.line("  " + line);
    }
    output.line(summary(result));
    if (!result.changes.empty()) {
        const auto others = rewritten(result.changes);
        if (!others.empty()) {
            output.changes(others);
        }
        output.profiles("After:", result.after);
    }
    Json& document = output.document();
    document = toJson(output, candidate, result);
    document["before"] = output.toJson(result.before);
    document["changes"] = output.toJson(result.changes);
    document["after"] = output.toJson(result.after);
    document["file_oddities"] = file.oddities();
}

}  // namespace velactl
