// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"
#include "DemoCommand.h"
#include "scenario/ScenarioCommands.h"

namespace velactl {

void addBackendCommands(CommandList& commands) {
    commands.push_back(std::make_unique<DemoCommand>());
    commands.push_back(std::make_unique<RunCommand>());
    commands.push_back(std::make_unique<ShellCommand>());
}

}  // namespace velactl
