// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Text.h"

#include <algorithm>

namespace velasim {

namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

}  // namespace

std::string toHex(std::string_view bytes) {
    std::string result;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        result += kDigits[byte >> 4U];
        result += kDigits[byte & 15U];
    }
    return result;
}

std::optional<std::string> fromHex(std::string_view text) {
    if (text.size() % 2 != 0 || !std::all_of(text.begin(), text.end(), [](char c) {
            return kDigits.find(c) != std::string_view::npos;
        })) {
        return std::nullopt;
    }
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes += static_cast<char>(kDigits.find(text[i]) * 16 + kDigits.find(text[i + 1]));
    }
    return bytes;
}

std::string printable(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c >= ' ' && c <= '~' && c != '\\') {
            result += c;
        } else {
            result += "\\x" + toHex(std::string_view(&c, 1));
        }
    }
    return result;
}

}  // namespace velasim
