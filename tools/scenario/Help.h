// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What people are told of operations and their options, before and while they write them.
#pragma once

#include <functional>
#include <string>

#include "scenario/Operation.h"

namespace velactl {

/** For a terminal: of several usage and meaning of each, under its heading; of one also every
 * option. */
std::string helpOf(const Operations& list, unsigned place);

/** The meaning of each option, under the heading of its group. */
std::string helpOf(const std::vector<Option>& options);

/** The list as a document has it: for each heading a table. */
std::string tablesOf(const Operations& list, unsigned place);

/** What stands for KEY or ID now: the keys that are held, the numbers of profiles. */
using Present = std::function<Names(const std::string& placeholder)>;

/**
 * What may stand in place of the last word of an unfinished line, sorted: the next word of a
 * statement's name, what stands for its placeholders, its options and their values. Throws
 * ToolError when the line makes no sense so far.
 */
Names completionsOf(const std::string& line, const Present& present);

}  // namespace velactl
