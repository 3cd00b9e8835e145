// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

namespace velactl {

/** All that a file or a stream holds, up to `limit` bytes. `what` names it for people, as "a
 * scenario". Throws ToolError. */
std::string readText(const std::string& path, std::size_t limit, const std::string& what);

}  // namespace velactl
