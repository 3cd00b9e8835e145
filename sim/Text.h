// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velasim {

/** The text with everything but printable ASCII, and the backslash, as "\xHH". */
std::string printable(std::string_view text);

/** Two hexadecimal digits per byte. */
std::string toHex(std::string_view bytes);

/** The bytes that toHex() wrote; empty when the text is not such. */
std::optional<std::string> fromHex(std::string_view text);

}  // namespace velasim
