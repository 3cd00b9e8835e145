// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "vela/ProfileParams.h"

namespace coherence {

// Results of operations as texts, to be compared.

inline std::string text(bool value) {
    return value ? "true" : "false";
}

inline std::string text(int value) {
    return std::to_string(value);
}

inline std::string text(const std::optional<vela::ProfileParams>& params) {
    return params ? params->dump() : "nothing";
}

inline std::string text(const std::vector<std::uint64_t>& tokens) {
    std::string line;
    for (const auto token : tokens) {
        line += std::to_string(token) + " ";
    }
    return line;
}

/** What a step came to, if it comes to anything. */
template <typename Step>
std::string resultOf(Step step) {
    if constexpr (std::is_void_v<decltype(step())>) {
        step();
        return {};
    } else {
        return text(step());
    }
}

/** The library's dump, entries by token. */
inline std::vector<std::string> withoutLog(std::vector<std::string> dump) {
    dump.erase(std::find(dump.begin(), dump.end(), ""), dump.end());
    std::sort(
        dump.begin() + 1, std::find(dump.begin(), dump.end(), "Pending:"),
        [](const auto& left, const auto& right) { return std::stoull(left) < std::stoull(right); });
    return dump;
}

}  // namespace coherence
