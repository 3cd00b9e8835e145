// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace velactl {

/**
 * How a policy came to its decision, told in a radio engineer's words from the library's log lines,
 * in their order: what was searched for and found, which try succeeded, what was written.
 */
std::vector<std::string> storyOf(const std::vector<std::string>& log);

}  // namespace velactl
