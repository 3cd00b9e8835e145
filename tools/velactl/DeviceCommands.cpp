// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

namespace velactl {

void addBackendCommands(CommandList& /*commands*/) {}

}  // namespace velactl
