// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

#include "Command.h"

namespace velactl {

using CommandList = std::vector<std::unique_ptr<Command>>;

/** Every verb of the tool, in the order of the help. */
CommandList makeCommands();

/** Adds the verbs that only the linked kind of modem can serve. */
void addBackendCommands(CommandList& commands);

}  // namespace velactl
