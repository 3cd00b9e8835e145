// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "OperatorSurvey.h"

#include <cstdio>
#include <iterator>

#include "ProvisionReport.h"
#include "Text.h"

namespace velactl {

namespace {

using Kind = EntryOutcome::Kind;

std::string rounded(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", seconds);
    return text;
}

}  // namespace

void OperatorSurvey::odd(const Operator& candidate, std::vector<std::string> lines) {
    if (lines.empty()) {
        return;
    }
    const std::string name = candidate.name() + ", " + printable(candidate.carrier());
    if (oddities.empty() || oddities.back().first != name) {
        oddities.emplace_back(name, std::vector<std::string>());
    }
    std::move(lines.begin(), lines.end(), std::back_inserter(oddities.back().second));
}

void OperatorSurvey::add(const Operator& candidate, const ProvisionResult& result,
                         const std::vector<std::string>& disagreements) {
    ++(candidate.mvnoType.empty() ? hosts : virtuals);
    entries += result.entries.size();
    added += result.count(Kind::Added);
    shared += result.count(Kind::Shared) + result.count(Kind::Held) + result.count(Kind::Rewritten);
    refusedEntries += result.count(Kind::Refused);
    missing += result.count(Kind::Missing);
    unattached += result.attach.kind == AttachOutcome::Kind::Missing ? 1U : 0U;
    failed += result.isDone() ? 0U : 1U;
    requests += result.writes;
    if (!output.isText()) {
        operators.push_back(toJson(output, candidate, result));
    }
    std::vector<std::string> lines = odditiesOf(result, isExplained);
    for (const std::string& line : disagreements) {
        ++wrong;
        lines.push_back("library and modem disagree: " + line);
    }
    odd(candidate, std::move(lines));
}

void OperatorSurvey::addSecond(const Operator& candidate, const ProvisionResult& result) {
    ++twice;
    // A table that is full is asked again, in vain.
    if (result.changes.empty() && result.writes == result.refusals.size()) {
        return;
    }
    ++wrong;
    odd(candidate, {"the second run sent " + counted(result.writes, "request") + " and changed " +
                    counted(result.changes.size(), "profile")});
}

Json OperatorSurvey::totals(double seconds) const {
    return {{"operators", hosts},
            {"virtual_operators", virtuals},
            {"entries", entries},
            {"added", added},
            {"shared", shared},
            {"not_possible", refusedEntries},
            {"no_place", missing},
            {"without_operator", file.strays().size()},
            {"without_attach", unattached},
            {"requests", requests},
            {"wrong", wrong},
            {"provisioned_twice", twice},
            {"seconds", seconds}};
}

bool OperatorSurvey::report(double seconds) {
    Json list = Json::array();
    output.line("Odd, per operator:");
    for (const auto& [name, lines] : oddities) {
        output.line("  " + name);
        for (const std::string& line : lines) {
            output.line("    " + line);
        }
        list.push_back({{"operator", name}, {"oddities", lines}});
    }
    Json others = file.oddities();
    for (const OperatorEntry* stray : file.strays()) {
        others.push_back(entryText(*stray) + ": " + stray->refusal);
    }
    output.line(others.empty() ? "Of no operator: nothing" : "Of no operator:");
    for (const Json& line : others) {
        output.line("  " + line.get_ref<const std::string&>());
    }
    output.line("Totals of " + file.name() + ", in " + rounded(seconds) + " s:");
    output.line("  " + counted(hosts, "operator") + " and " +
                counted(virtuals, "virtual operator") + " with " + counted(entries, "entry") +
                ", each on a fresh modem");
    output.line("  " + counted(added, "entry") + " added, " + grouped(shared) +
                " share a profile with another, " + grouped(refusedEntries) +
                " cannot be a profile, " + grouped(missing) + " found no place" +
                (missing == 0 ? "" : " in modems of this --capacity"));
    if (unattached != 0) {
        output.line("  " + counted(unattached, "operator") +
                    " without the attach profile asked for");
    }
    output.line("  " + counted(file.strays().size(), "entry") + " of no operator; " +
                counted(oddities.size(), "operator") + " with oddities");
    if (twice != 0) {
        output.line("  provisioned a second time: " +
                    std::string(wrong == 0 ? "nothing changed" : "see above"));
    }
    output.document() = {{"totals", totals(seconds)},
                         {"operators", std::move(operators)},
                         {"oddities", std::move(list)},
                         {"of_no_operator", std::move(others)}};
    return failed == 0 && wrong == 0;
}

}  // namespace velactl
