// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "scenario/Help.h"

namespace velactl {

namespace {

/** A text as groff shall print it, whatever it begins with. */
std::string escaped(const std::string& text) {
    std::string result = text.find_first_of(".'") == 0 ? "\\&" : "";
    for (const char byte : text) {
        result += byte == '\\'   ? "\\e"
                  : byte == '-'  ? "\\-"
                  : byte == '\'' ? "\\(aq"
                  : byte == '`'  ? "\\(ga"
                                 : std::string(1, byte);
    }
    return result;
}

/** The first piece, which names it, in bold. */
std::string usageText(const Names& pieces) {
    Names parts = namesIn(pieces, escaped);
    parts.front() = "\\fB" + parts.front() + "\\fR";
    return join(parts, " ");
}

std::string section(const std::string& title, const std::string& text) {
    return ".SH " + title + '\n' + text + (text.ends_with('\n') ? "" : "\n");
}

std::string pageName(const std::string& verb) {
    return verb.empty() ? "velactl" : "velactl-" + verb;
}

std::string page(const std::string& verb, const std::string& purpose, const std::string& body) {
    const std::string name = escaped(pageName(verb));
    return ".TH " + name + " 1 \"\" libvelar \"velactl manual\"\n" +
           section("NAME", name + " \\- " + escaped(purpose)) + body +
           section("EXIT STATUS", escaped(kExitStatus));
}

constexpr HelpForm kManual = {
    [](const std::string& title) { return ".SS " + escaped(title) + '\n'; },
    [](const Names& pieces, const std::string& meaning) {
        return ".TP\n" + usageText(pieces) + '\n' + escaped(meaning) + '\n';
    }};

std::string pageOf(const Operation& verb) {
    const std::string name = verb.name();
    // Whatever plays statements says which there are.
    const bool playsStatements = (verb.options & kSeed) != 0;
    const unsigned place = name == "shell" ? kShell : kScenario;
    return page(name, verb.help,
                section("SYNOPSIS", "\\fBvelactl\\fR [options] " + usageText(verb.usage(kVerb))) +
                    section("OPTIONS", helpOf(optionsOf(verb.options | kEveryVerb), kManual)) +
                    (playsStatements
                         ? section("STATEMENTS", helpOf(operationsAt(place), place, kManual))
                         : "")) +
           section("SEE ALSO", "\\fBvelactl\\fR(1)");
}

std::string pageOfTool() {
    const Operations verbs = operationsAt(kVerb);
    Names pages = namesIn(verbs, [](const Operation& verb) {
        return "\\fB" + escaped(pageName(verb.name())) + "\\fR(1)";
    });
    std::sort(pages.begin(), pages.end());
    return page(
               "", "read and change the data profiles of a cellular modem",
               section("SYNOPSIS", "\\fBvelactl\\fR [options] VERB ...") +
                   section("DESCRIPTION", escaped(std::string(kPurpose) + '\n' + kPlaceOfOptions)) +
                   section("VERBS", helpOf(verbs, kVerb, kManual)) +
                   section("OPTIONS", helpOf(optionsOf(kEveryVerb), kManual))) +
           section("SEE ALSO", join(pages, ",\n"));
}

}  // namespace

std::string manualOf(const Names& verb) {
    return verb.empty() ? pageOfTool() : pageOf(operationOf(kVerb, verb));
}

}  // namespace velactl
