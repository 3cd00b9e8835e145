// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "LibraryDump.h"

#include <algorithm>
#include <utility>

namespace coherence {

LibraryDump::LibraryDump(std::vector<std::string> dump, std::uint64_t firstToken)
    : lines(std::move(dump)) {
    lines.erase(std::find(lines.begin(), lines.end(), ""), lines.end());
    const auto end = std::find(lines.begin(), lines.end(), "Pending:");
    for (auto line = lines.begin() + 1; line < end; ++line) {
        order.push_back(std::stoull(*line) - firstToken);
        *line = "  " + std::to_string(order.back()) + line->substr(line->find(':'));
    }
    std::sort(lines.begin() + 1, end, [](const auto& left, const auto& right) {
        return std::stoull(left) < std::stoull(right);
    });
}

}  // namespace coherence
