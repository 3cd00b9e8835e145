// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Velactl.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <exception>
#include <memory>

#include "Commands.h"
#include "NumberOption.h"
#include "Text.h"

namespace velactl {

namespace {

constexpr int kMaxInstance = 15;
constexpr unsigned kMaxCapacity = 255;

std::string missingName(const std::string& path) {
    return path.empty() ? "the file's name is empty; leave the option out for a new modem" : "";
}

void addGlobalOptions(CLI::App& app, Options& options) {
    app.add_option("--modem", options.modem.file,
                   "file that keeps the simulated modem's memory between runs")
        ->check(missingName);
    addNumber(app, "--instance", options.modem.instance, "modem instance (subscription), from 0", 0,
              kMaxInstance);
    addNumber(app, "--capacity", options.modem.capacity,
              "profiles per technology of the simulated modem (16 when it is new)", 1U,
              kMaxCapacity);
    app.add_flag("--json", options.json, "one JSON document instead of text");
    app.add_flag("--show-secrets", options.showSecrets, "do not mask passwords");
    app.add_flag("--log", options.log, "the library's log lines on the error stream");
}

/** What is wrong with a command line that names no verb. */
std::string wrongVerb(const CLI::App& app) {
    std::vector<std::string> verbs;
    for (const CLI::App* verb : app.get_subcommands(nullptr)) {
        verbs.push_back(verb->get_name());
    }
    const auto extras = app.remaining();
    const std::string given = extras.empty() ? "no verb" : inQuotes(extras.front()) + " is no verb";
    return given + "; use " + alternatives(verbs);
}

std::string usage(const CLI::App& app, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    if (chosen.empty() && dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        return wrongVerb(app);
    }
    std::string text = error.what();
    if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
        text += ", a value that this option does not take";
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    const std::string verb = chosen.empty() ? "" : chosen.front()->get_name() + ' ';
    return printable(trim(text)) + "; see velactl " + verb + "--help";
}

/** The chosen verb; its parsing errors become usage errors. Empty when help was printed. */
Command* parse(CLI::App& app, std::vector<std::string> arguments, const CommandList& commands,
               std::ostream& out) {
    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        const auto chosen = app.get_subcommands();
        out << (chosen.empty() ? app.help() : chosen.front()->help("velactl"));
        return nullptr;
    } catch (const CLI::ParseError& error) {
        throw badUsage(usage(app, error));
    }
    const auto chosen = std::find_if(commands.begin(), commands.end(),
                                     [](const auto& command) { return command->isChosen(); });
    return chosen == commands.end() ? nullptr : chosen->get();
}

Exit runVerb(const std::vector<std::string>& arguments, const Streams& streams) {
    Options options;
    CLI::App app{"Reads and changes the data profiles of a cellular modem through libvelar.",
                 "velactl"};
    app.require_subcommand(1);
    app.fallthrough();
    app.get_formatter()->column_width(28);
    app.footer(
        "The options above may stand before or after the subcommand. Exit status: 0 done, 1 "
        "refused or "
        "not found, 2 bad usage.");
    addGlobalOptions(app, options);
    const auto commands = makeCommands();
    for (const auto& command : commands) {
        command->addTo(app);
    }
    Command* command = parse(app, arguments, commands, streams.out);
    if (command == nullptr) {
        return Exit::Done;
    }
    Output output(streams.out, streams.err, options);
    const Exit exit = command->run({options, output, streams.err, streams.errColumns});
    output.finish();
    return exit;
}

}  // namespace

int runVelactl(const std::vector<std::string>& arguments, const Streams& streams) {
    try {
        const Exit exit = runVerb(arguments, streams);
        if (!streams.out.flush()) {
            throw refused("the output could not be written; what was done is done");
        }
        return static_cast<int>(exit);
    } catch (const ToolError& error) {
        streams.err << "velactl: " << error.what() << '\n';
        return static_cast<int>(error.status());
    } catch (const std::exception& error) {
        streams.err << "velactl: " << error.what() << '\n';
        return static_cast<int>(Exit::Refused);
    }
}

}  // namespace velactl
