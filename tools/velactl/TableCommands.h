// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The verbs that look: list, show, match, dump, refresh.
#pragma once

#include <optional>

#include "Command.h"
#include "ProfileAddress.h"
#include "ProfileOptions.h"

namespace velactl {

class ListCommand : public Command {
  public:
    ListCommand() : Command("list", "the profiles, as the library sees them") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override;

  private:
    std::optional<std::string> tech;
};

class ShowCommand : public Command {
  public:
    ShowCommand() : Command("show", "one profile, field by field") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override { address.addTo(app); }

  private:
    ProfileAddress address;
};

class MatchCommand : public Command {
  public:
    MatchCommand() : Command("match", "the profiles that have the given fields") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override;

  private:
    vela::FilterProfileParams filter() const;

    ProfileOptions fields;
    std::optional<std::string> tech;
    std::optional<int> index;
    bool isLoose = false;
    std::string madeBy;
};

class DumpCommand : public Command {
  public:
    DumpCommand() : Command("dump", "the library's own dump: cache, pending changes, log") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& /*app*/) override {}
};

}  // namespace velactl
