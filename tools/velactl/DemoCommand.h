// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "SimulatedModem.h"

namespace velactl {

/** Shows that the library keeps up with the modem: through a change of its own, a change that
 * somebody else makes, and a restart. Fails when it does not. */
class DemoCommand : public Command {
  public:
    DemoCommand()
        : Command("demo", "a change, a foreign change and a restart, followed step by step") {}
    Exit run(const Context& context) override;

  protected:
    void addOptions(CLI::App& /*app*/) override {}

  private:
    class Stage;
};

}  // namespace velactl
