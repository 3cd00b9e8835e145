// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "profiles/Output.h"
#include "scenario/Operation.h"

namespace velactl {

/** All verbs: the operations that can be one, and those that are nothing else. */
const Operations& verbs();

/** A text is a field of the document, too. */
void answer(Output& output, const std::string& text);

}  // namespace velactl
