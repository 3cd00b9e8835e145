// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace velactl {

/**
 * What may stand in place of the last word of an unfinished line: the next word of a statement's
 * name, or, once the statement is known, its options and the keys that are held.
 */
std::vector<std::string> completionsOf(const std::string& line,
                                       const std::vector<std::string>& keyNames);

}  // namespace velactl
