// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/App.hpp>
#include <string>

#include "Text.h"

namespace velactl {

/** What is wrong with an option's number; empty when it is one. The parser itself would take an
 * empty text as 0, and 010 as 8. */
inline std::string wrongNumber(const std::string& text) {
    const std::string digits = text.substr(text.rfind('-', 0) == 0 ? 1 : 0);
    const bool isDecimal =
        !digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos;
    const bool isPadded = digits.size() > 1 && digits.front() == '0';
    return isDecimal && !isPadded
               ? ""
               : inQuotes(text) +
                     " must be a whole number, in decimal digits without leading zeros";
}

/** An option or argument with a decimal number. */
template <typename Number>
CLI::Option* addNumber(CLI::App& app, const std::string& name, Number& value,
                       const std::string& description) {
    return app.add_option(name, value, description)->check(wrongNumber);
}

}  // namespace velactl
