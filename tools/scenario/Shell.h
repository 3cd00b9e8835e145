// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "profiles/ToolError.h"
#include "scenario/Stage.h"

namespace velactl {

/** A prompt for statements, on the standard input, until that ends or asks to. From a pipe, returns
 * the status of the last error; on a terminal whoever types has seen them. */
Exit runShell(Stage& stage);

}  // namespace velactl
