// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace velactl {

/** A log or dump line of the library with the password in it masked. What cannot be told apart from
 * the password is masked with it. */
std::string withoutPassword(std::string_view line);

}  // namespace velactl
