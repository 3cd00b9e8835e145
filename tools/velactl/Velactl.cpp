// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velactl/Velactl.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

bool isAmong(const Names& words, const char* option) {
    return std::count(words.begin(), words.end(), option) != 0;
}

/** The words of a verb's statement, which begin with the verb wherever it stands; of a line that
 * asks for help those of the verb help. */
ScenarioWords statementOf(const Names& given) {
    ScenarioWords words;
    for (const std::string& text : given) {
        words.push_back({text});
    }
    const auto options = optionsOf(kEveryVerb);
    auto verb = words.begin();
    while (verb < words.end() && verb->isOption()) {
        const Option* option = findOption(options, verb->text);
        verb += option != nullptr && !option->value.empty() ? 2 : 1;
    }
    const bool isGiven = verb < words.end();
    if (isAmong(given, "--help") || isAmong(given, "-h")) {
        return isGiven ? ScenarioWords{{"help"}, *verb} : ScenarioWords{{"help"}};
    }
    if (!isGiven) {
        throw badUsage("no verb; velactl help lists them");
    }
    std::rotate(words.begin(), verb, verb + 1);
    return words;
}

ModemOptions modemOf(const Statement& statement, Output& output) {
    const Arguments& given = statement.given();
    const auto capacity = static_cast<unsigned>(given.number("--capacity", 0));
    return {.file = given.text("--modem"),
            .instance = static_cast<int>(given.number("--instance", 0)),
            .capacity = given.has("--capacity") ? std::optional(capacity) : std::nullopt,
            .looksOnly = (statement.operation().places & kLooking) != 0,
            .wait = static_cast<int>(given.number("--wait", ModemOptions().wait)),
            .seed = static_cast<std::uint64_t>(given.number("--seed", 1)),
            .note = [&output](const std::string& text) { output.note(text); }};
}

/** Plays a verb, which is a statement run once. Throws ToolError when it was refused. */
void play(const Statement& statement, Output& output, const OutputOptions& form,
          const Streams& streams) {
    ModemOptions modem = modemOf(statement, output);
    const bool isLogged = statement.given().has("--log");
    if (isLogged) {
        modem.log = [&](std::string_view text) {
            const std::string line = form.showSecrets ? std::string(text) : withoutPassword(text);
            // One write per line: the lines come on several threads.
            streams.err << "log: " + printable(line) + '\n';
        };
    }
    // Log lines tell the progress themselves, and would be mixed up with it.
    Stage stage({std::move(modem), form, output, output, streams.err,
                 isLogged ? 0 : streams.errColumns, true});
    statement.play(stage);
    const bool isPolicy = (statement.operation().options & (kUpdate | kProvision)) != 0;
    const bool areEqual = !isPolicy || stage.tellAgreement();
    stage.save();
    if (stage.isForgotten()) {
        output.line(
            "This modem was a new one and is gone now, with what was made in it; "
            "velactl --modem FILE keeps one.");
    }
    if (!stage.refusal().empty() || !areEqual) {
        throw refused(areEqual ? stage.refusal() : "library and modem disagree");
    }
}

}  // namespace

int runVelactl(const Names& arguments, const Streams& streams) {
    OutputOptions form;
    Output output(streams.out, streams.err, form);
    Json& document = output.document();
    document = {{"schema", 1}, {"operation", Json()}, {"status", 0}, {"error", Json()}};
    Exit status = Exit::Done;
    std::string error;
    // First, so that a line that makes no sense is told in the form that it asks for.
    form.json = isAmong(arguments, "--json");
    form.showSecrets = isAmong(arguments, "--show-secrets");
    form.width = streams.outColumns;
    try {
        if (isAmong(arguments, "--version")) {
            output.line(std::string("velactl ") + VELACTL_VERSION);
            document["text"] = std::string("velactl ") + VELACTL_VERSION + '\n';
        } else {
            const ScenarioWords words = statementOf(arguments);
            document["operation"] = words.front().text;
            const Statement statement(words, kVerb);
            if (statement.given().has("--columns")) {
                form.columns = readColumns("--columns", statement.given().text("--columns"));
            }
            play(statement, output, form, streams);
        }
    } catch (const std::exception& failure) {
        const auto* own = dynamic_cast<const ToolError*>(&failure);
        status = own != nullptr ? own->status() : Exit::Refused;
        error = failure.what();
    }
    document["status"] = static_cast<int>(status);
    document["error"] = error.empty() ? Json() : Json(error);
    output.finish();
    if (!error.empty()) {
        output.note(error);
    }
    if (!streams.out.flush()) {
        output.note("the output could not be written; what was done is done");
        status = std::max(status, Exit::Refused);
    }
    return static_cast<int>(status);
}

}  // namespace velactl
