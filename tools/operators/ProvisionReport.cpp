// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "operators/Provisioner.h"

#include <algorithm>
#include <iterator>

#include "profiles/Text.h"

namespace velactl {

namespace {

/** "user=joe, home_ip=IPv6 instead of IPv4" */
std::string differencesText(const Json& differences) {
    Names parts;
    for (const auto& [key, each] : differences.items()) {
        const ProfileField& field = *fieldNamed(key);
        const auto text = [&field](const Json& value) {
            return value.is_null() ? "(absent)" : valueText(field, value);
        };
        parts.push_back(key + '=' + text(each["held"]) +
                        (each["asked"].is_null() ? "" : " instead of " + text(each["asked"])));
    }
    return join(parts, ", ");
}

/** What is told of a field of the document, with its value for a %; of a switch, when it is on and
 * when it is off. Nothing is told of what is null or empty. */
struct Phrase {
    const char* key;
    const char* text;
    const char* ifOff = "";
};
using Phrases = std::vector<Phrase>;

const Phrases kEntry{{"outcome", "%: "},
                     {"index", "profile %"},
                     {"shared_with_line", " with line %"},
                     {"reason", "%"}};
const Phrases kRemarks{{"class_is_taken", "; its class is another entry's"},
                       {"differences", "; but the profile has %"},
                       {"notes", "; %"}};
const Phrases kNotSent{{"not_sent", "; a profile has no field for %"}};
const Phrases kAttach{{"outcome", "%"},
                      {"index", ": profile %"},
                      {"line", " for line %"},
                      {"reason", ": %"},
                      {"differences", ", but the profile has %"},
                      {"can_serve", "", "; the library finds no profile that can serve it"}};
const Phrases kProfile{{"technology", "%"},
                       {"index", " profile %"},
                       {"apn", " (%)"},
                       {"attach", "", " serves no entry"},
                       {"like_line", ", though line % asks for its settings"},
                       {"left_over", ": %"}};

std::string words(const Json& value) {
    return value.is_object()  ? differencesText(value)
           : value.is_array() ? join(value.get<Names>(), ", ")
                              : valueText(value);
}

std::string told(const Json& object, const Phrases& phrases) {
    std::string text;
    for (const Phrase& phrase : phrases) {
        const Json& value = object[phrase.key];
        if (value.is_boolean()) {
            text += value == true ? phrase.text : phrase.ifOff;
        } else if (const std::string told = words(value); !told.empty()) {
            text += std::string(phrase.text).replace(std::string(phrase.text).find('%'), 1, told);
        }
    }
    return text;
}

/** What is odd about the entry or its profile. */
std::string remarks(const Json& entry, bool isExplained) {
    return told(entry, kRemarks) + (isExplained ? told(entry, kNotSent) : "");
}

std::string entryText(const Json& entry, bool isExplained) {
    const Json& wanted = entry["wanted"];
    return entryTitle(entry["line"], wanted["apn"], entry["carrier"]) + " for " +
           valueText(wanted["types"]) +
           (wanted.contains("class") ? ", class " + words(wanted["class"]) : "") + ": " +
           told(entry, kEntry) + remarks(entry, isExplained);
}

/** The profiles that serve no entry, and what they are. */
Names unusedProfiles(const Json& document) {
    Names lines;
    for (const Json& profile : document["profiles"]) {
        if (profile["attach"] == false && profile["lines"].empty()) {
            lines.push_back(told(profile, kProfile));
        }
    }
    return lines;
}

std::size_t countOf(const Json& document, const std::string& outcome) {
    const Json& entries = document["entries"];
    return static_cast<std::size_t>(
        std::count_if(entries.begin(), entries.end(),
                      [&](const Json& entry) { return entry["outcome"] == outcome; }));
}

void listUnder(Output& output, const std::string& heading, const Names& lines) {
    if (!lines.empty() && !heading.empty()) {
        output.line(heading);
    }
    for (const std::string& line : lines) {
        output.line("  " + line);
    }
}

/** What went wrong. */
Names failuresOf(const Json& document) {
    Names lines;
    const Json& refusals = document["refusals"];
    const std::string last = refusals.empty() ? "" : ": " + words(refusals.back());
    const std::size_t missing = countOf(document, "missing");
    if (missing != 0) {
        lines.push_back(counted(missing, "entry") + " found no place in the modem" + last);
    }
    if (document["attach"]["outcome"] == "missing") {
        lines.push_back("attach " + told(document["attach"], kAttach));
    } else if (missing == 0 && !refusals.empty()) {
        lines.push_back(counted(refusals.size(), "request") + " in vain" + last);
    }
    return lines;
}

/** What is odd about the entries, the attach, the other profiles and the whole. */
Names odditiesOf(const Json& document, bool isExplained) {
    Names lines;
    for (const Json& entry : document["entries"]) {
        if (entry["index"].is_null() || !remarks(entry, isExplained).empty()) {
            lines.push_back(entryText(entry, isExplained));
        }
    }
    const Json& attach = document["attach"];
    const bool isFine = attach["can_serve"] == true && attach["differences"].empty();
    if (!isFine && attach["outcome"] != "missing") {
        lines.push_back("attach " + told(attach, kAttach));
    }
    const auto wrong = document["wrong"].get<Names>();
    for (const auto& more : {unusedProfiles(document), failuresOf(document), wrong}) {
        lines.insert(lines.end(), more.begin(), more.end());
    }
    return lines;
}

/** On a fresh modem; `wrong` are things that must not be. */
Json provisionFresh(const Operator& candidate, const SurveyOptions& options) {
    Workbench bench(options.modem);
    if (bench.modem().keepsMemory()) {
        throw badUsage("provision --all uses fresh modems; this one keeps what it holds");
    }
    Json document = provisionModem(bench, candidate).document;
    Json& wrong = document["wrong"] = Json::array();
    if (options.isTwice) {
        const Provisioned again = provisionModem(bench, candidate);
        const Json& requests = again.document["requests"];
        const auto changes = changesBetween(again.before, again.after, true);
        // More may be tried in vain: to fill a full table.
        if (!changes.empty() || requests != again.document["refusals"].size()) {
            wrong.push_back("the second run sent " + counted(requests, "request") +
                            " and changed " + counted(changes.size(), "profile"));
        }
    }
    for (const std::string& line : bench.disagreements()) {
        wrong.push_back("library and modem disagree: " + line);
    }
    return document;
}

void add(Json& totals, const std::string& name, std::size_t number) {
    totals[name] = totals[name].get<std::size_t>() + number;
}

void count(Json& totals, const Operator& candidate, const Json& document) {
    add(totals, candidate.mvno.empty() ? "operators" : "virtual_operators", 1);
    add(totals, "entries", candidate.entries.size());
    for (const Json& entry : document["entries"]) {
        add(totals, entry["outcome"], 1);
    }
    add(totals, "without_attach", document["attach"]["outcome"] == "missing" ? 1 : 0);
    add(totals, "failed", failuresOf(document).empty() ? 0 : 1);
    add(totals, "requests", document["requests"]);
    add(totals, "wrong", document["wrong"].size());
}

/** The entries of no operator; how many there are. */
std::size_t tellStrays(Output& output, const OperatorFile& file) {
    std::size_t strays = 0;
    file.forEachStray([&](const OperatorEntry& stray) {
        listUnder(output, strays++ == 0 ? "Of no operator:" : "",
                  {stray.title() + ": " + stray.refusal});
        output.listed("of_no_operator", {{"line", stray.line},
                                         {"carrier", stray.carrier},
                                         {"apn", stray.apnName()},
                                         {"text", stray.refusal}});
    });
    if (strays == 0) {
        output.document()["of_no_operator"] = Json::array();
    }
    return strays;
}

}  // namespace

std::string provisionOne(Output& output, Workbench& bench, const Operator& candidate,
                         const OperatorFile& file, bool isExplained) {
    const Provisioned done = provisionModem(bench, candidate);
    const Json document = masked(done.document, output.showSecrets());
    const auto changes = changesBetween(done.before, done.after, output.showSecrets());
    output.line("Operator " + candidate.name() + ", " + printable(candidate.carrier()) + ": " +
                counted(candidate.entries.size(), "entry") + '.');
    output.profiles("Before:", done.before);
    output.line("Entries:");
    for (const Json& entry : document["entries"]) {
        output.line("  " + entryText(entry, isExplained));
    }
    output.line("Attach " + told(document["attach"], kAttach) + '.');
    listUnder(output, "Other profiles:", unusedProfiles(document));
    listUnder(output, "Elsewhere in " + file.name() + ":", file.oddities());
    output.line((changes.empty() ? "Nothing changed"
                                 : counted(changes.size(), "profile") + " created or changed") +
                (document["requests"] == 0
                     ? "."
                     : ", in " + counted(document["requests"], "request") + '.'));
    Json rewritten = Json::array();
    std::copy_if(changes.begin(), changes.end(), std::back_inserter(rewritten),
                 [](const Json& change) { return change["change"] != "created"; });
    if (!rewritten.empty()) {
        output.changes(rewritten);
    }
    if (!changes.empty()) {
        output.profiles("After:", done.after);
    }
    output.document().update(document);
    output.document().update({{"before", output.toJson(done.before)},
                              {"changes", changes},
                              {"after", output.toJson(done.after)},
                              {"file_oddities", file.oddities()}});
    Names failures = failuresOf(document);
    if (countOf(document, "refused") == candidate.entries.size()) {
        failures.push_back("no entry of " + candidate.name() +
                           " can be a profile: " + candidate.refusals());
    }
    return join(failures, "; ");
}

std::string provisionAll(Output& output, const OperatorFile& file, const SurveyOptions& options,
                         Progress& progress) {
    Json totals;
    for (const char* name : {"operators", "virtual_operators", "entries", "added", "held",
                             "rewritten", "shared", "missing", "refused", "without_operator",
                             "without_attach", "with_oddities", "failed", "wrong", "requests"}) {
        totals[name] = 0;
    }
    file.forEach([&](const Operator& candidate) {
        progress.next(candidate.name());
        const Json document = masked(provisionFresh(candidate, options), output.showSecrets());
        count(totals, candidate, document);
        output.listed("operators", document);
        const auto lines = odditiesOf(document, options.isExplained);
        if (!lines.empty()) {
            add(totals, "with_oddities", 1);
            progress.clear();
            listUnder(output, candidate.name() + ", " + printable(candidate.carrier()) + ":",
                      lines);
        }
    });
    progress.clear();
    listUnder(output, "Elsewhere in " + file.name() + ":", file.oddities());
    output.document()["file_oddities"] = file.oddities();
    add(totals, "without_operator", tellStrays(output, file));
    output.line("Totals of " + file.name() + ':');
    for (const auto& [name, number] : totals.items()) {
        output.line("  " + replaced(name, '_', ' ') + ": " + number.dump());
    }
    output.document()["totals"] = totals;
    if (file.operatorCount() == 0) {
        return file.name() + ": no operator in it" + file.leftOut();
    }
    return totals["failed"] == 0 && totals["wrong"] == 0 ? "" : "not all of it could be done";
}

}  // namespace velactl
