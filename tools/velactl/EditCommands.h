// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The verbs that change one profile: add, modify, delete.
#pragma once

#include "Command.h"
#include "ProfileAddress.h"
#include "ProfileOptions.h"

namespace velactl {

class AddCommand : public Command {
  public:
    AddCommand() : Command("add", "create a profile") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override;

  private:
    ProfileOptions fields;
    ProfileAddress address;
    bool isTemporary = false;
    bool isForAttach = false;
};

class ModifyCommand : public Command {
  public:
    ModifyCommand() : Command("modify", "change the given fields of a profile") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override;

  private:
    ProfileOptions fields;
    ProfileAddress address;
};

class DeleteCommand : public Command {
  public:
    DeleteCommand() : Command("delete", "delete a profile from the modem") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override { address.addTo(app); }

  private:
    ProfileAddress address;
};

}  // namespace velactl
