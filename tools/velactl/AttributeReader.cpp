// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "AttributeReader.h"

#include <algorithm>
#include <charconv>

#include "Text.h"

namespace velactl {

std::string_view AttributeReader::text(std::string_view name) const {
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [name](const auto& item) { return item.first == name; });
    return found == attributes.end() ? std::string_view() : found->second;
}

std::string AttributeReader::cite(std::string_view name) const {
    return std::string(name) + ' ' + inQuotes(text(name));
}

std::optional<long> AttributeReader::number(std::string_view name, long least, long most) {
    const std::string_view digits = trim(text(name));
    if (digits.empty()) {
        return std::nullopt;
    }
    const char* const end = digits.data() + digits.size();
    long value = 0;
    const auto [last, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || last != end || value < least || value > most) {
        note(cite(name) + " left out: not a number from " + std::to_string(least) + " to " +
             std::to_string(most));
        return std::nullopt;
    }
    return value;
}

bool AttributeReader::flag(std::string_view name, bool ifAbsent) {
    const std::string_view value = trim(text(name));
    if (value.empty()) {
        return ifAbsent;
    }
    if (!sameLetters(value, "true") && !sameLetters(value, "false")) {
        note(cite(name) + " taken as false");
    }
    return sameLetters(value, "true");
}

}  // namespace velactl
