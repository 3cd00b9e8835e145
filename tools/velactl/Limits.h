// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What a profile can hold; more would be cut on its way to the modem.
#pragma once

#include <cstddef>

namespace velactl {

inline constexpr std::size_t kMaxApnName = 150;
inline constexpr std::size_t kMaxCredential = 127;
inline constexpr int kMaxShort = 65535;
inline constexpr int kMaxIndex = 255;

}  // namespace velactl
