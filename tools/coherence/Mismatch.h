// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

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
        throw Mismatch(what + "\n  promised: " + promised + "\n  found:    " + found);
    }
}

/** Line by line. */
inline void expectEqual(const std::string& what, const std::vector<std::string>& promised,
                        const std::vector<std::string>& found) {
    const auto lineOf = [](const std::vector<std::string>& lines, std::size_t i) {
        return i < lines.size() ? lines[i] : "nothing";
    };
    for (std::size_t i = 0; i < std::max(promised.size(), found.size()); ++i) {
        expectEqual(what, lineOf(promised, i), lineOf(found, i));
    }
}

}  // namespace coherence
