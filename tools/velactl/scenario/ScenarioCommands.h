// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "Command.h"

namespace velactl {

/** Plays a scenario file on a simulated modem. */
class RunCommand : public Command {
  public:
    RunCommand() : Command("run", "play a scenario file on a simulated modem") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override;

  private:
    std::string file;
    std::uint64_t seed = 1;
    bool isQuiet = false;
    bool isJournalWanted = false;
};

/** An interactive prompt for the statements of scenarios. */
class ShellCommand : public Command {
  public:
    ShellCommand() : Command("shell", "a prompt for the statements of scenarios") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override;

  private:
    std::uint64_t seed = 1;
};

}  // namespace velactl
