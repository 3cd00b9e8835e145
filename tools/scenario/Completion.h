// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "scenario/Option.h"

namespace velactl {

/** What stands for KEY or ID now: the keys that are held, the numbers of profiles. */
using Present = std::function<Names(const std::string& placeholder)>;

/**
 * What may stand in place of the last word of an unfinished line, sorted: the next word of a
 * statement's name, what stands for its placeholders, its options and their values. Throws
 * ToolError when the line makes no sense so far.
 */
Names completionsOf(const std::string& line, const Present& present);

}  // namespace velactl
