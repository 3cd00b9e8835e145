// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/App.hpp>
#include <charconv>
#include <limits>
#include <optional>
#include <string>

#include "Text.h"

namespace velactl {

template <typename Number>
struct NumberOf {
    using Type = Number;
};
template <typename Number>
struct NumberOf<std::optional<Number>> {
    using Type = Number;
};

/** What is wrong with an option's number; empty when it is one from `lowest` to `highest`. The
 * parser itself would take an empty text as 0, and 010 as 8. */
template <typename Number>
std::string wrongNumber(const std::string& text, Number lowest, Number highest) {
    const std::string digits = text.substr(text.rfind('-', 0) == 0 ? 1 : 0);
    const bool isPadded = digits.size() > 1 && digits.front() == '0';
    const char* end = text.data() + text.size();
    Number number = 0;
    const auto result = std::from_chars(text.data(), end, number);
    const bool isNumber = result.ec == std::errc() && result.ptr == end && !isPadded;
    if (isNumber && number >= lowest && number <= highest) {
        return "";
    }
    return inQuotes(text) + " must be a whole number from " + std::to_string(lowest) + " to " +
           std::to_string(highest) + ", in decimal digits without leading zeros";
}

/** An option or argument with a decimal number in a range. */
template <typename Number, typename Bound = typename NumberOf<Number>::Type>
CLI::Option* addNumber(CLI::App& app, const std::string& name, Number& value,
                       const std::string& description,
                       Bound lowest = std::numeric_limits<Bound>::min(),
                       Bound highest = std::numeric_limits<Bound>::max()) {
    return app.add_option(name, value, description)
        ->check([lowest, highest](const std::string& text) {
            return wrongNumber(text, lowest, highest);
        });
}

}  // namespace velactl
