// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/App.hpp>

#include "Options.h"
#include "Output.h"
#include "ToolError.h"
#include "Workbench.h"

namespace velactl {

/** What a verb works with. */
struct Context {
    const Options& options;
    Output& output;
    std::ostream& err;
    /** Width of the terminal that the error stream is; 0: nobody watches. */
    std::size_t errColumns;

    /** The library's log lines go to the error stream when --log asks for them. */
    LogSink logSink() const;

    Workbench openWorkbench() const { return Workbench(options.modem, logSink()); }

    /** Tells whether library and modem agree, where both can be seen; false when they do not. */
    bool tellAgreement(Workbench& bench) const;

    /** Keeps the modem's memory. */
    void save(Workbench& bench) const;
};

/** One verb of the tool. */
class Command {
  public:
    Command(const char* name, const char* description) : name(name), description(description) {}
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    /** Adds the verb to the command line; `this` must outlive the parsing. */
    void addTo(CLI::App& app) {
        verb = app.add_subcommand(name, description);
        addOptions(*verb);
    }

    bool isChosen() const { return verb != nullptr && verb->parsed(); }

    /** Does the verb's work and tells it to the context's output; throws ToolError. */
    virtual Exit run(const Context& context) = 0;

  protected:
    virtual void addOptions(CLI::App& app) = 0;

  private:
    const char* name;
    const char* description;
    CLI::App* verb = nullptr;
};

}  // namespace velactl
