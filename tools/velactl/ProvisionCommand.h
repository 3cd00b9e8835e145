// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "OperatorOptions.h"

namespace velactl {

class ProvisionCommand : public Command {
  public:
    ProvisionCommand()
        : Command("provision", "bring the modem in line with an operator's entries") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& app) override;

  private:
    Exit runOne(const Context& context, const OperatorFile& file);
    Exit runAll(const Context& context, const OperatorFile& file);

    OperatorOptions source;
    bool isAll = false;
    bool isTwice = false;
    bool isExplained = false;
};

}  // namespace velactl
