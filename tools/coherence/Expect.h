// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "profiles/Text.h"
#include "vela/ProfileParams.h"

namespace coherence {

/** What happened is not what was promised. */
class Mismatch : public std::runtime_error {
  public:
    using runtime_error::runtime_error;
};

/** Throws Mismatch unless both are the same. */
inline void expectEqual(const std::string& what, const std::string& promised,
                        const std::string& found) {
    if (promised != found) {
        throw Mismatch(what + "\n  promised: " + velactl::printable(promised) +
                       "\n  found:    " + velactl::printable(found));
    }
}

/** Line by line. */
inline void expectEqual(const std::string& what, std::vector<std::string> promised,
                        std::vector<std::string> found) {
    const auto size = std::max(promised.size(), found.size());
    promised.resize(size, "nothing");
    found.resize(size, "nothing");
    for (std::size_t i = 0; i < size; ++i) {
        expectEqual(what, promised[i], found[i]);
    }
}

// Results of operations as texts, to be compared.

inline std::string text(std::int64_t value) {
    return std::to_string(value);
}

inline std::string text(const vela::ProfileParams& params) {
    return params.dump();
}

template <typename Value>
std::string text(const std::optional<Value>& value) {
    return value ? text(*value) : "nothing";
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
