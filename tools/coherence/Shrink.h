// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace coherence {

/** The shortest list found that still fails, made by leaving out items. */
template <typename Item, typename Fails>
std::vector<Item> shrink(std::vector<Item> items, Fails fails) {
    for (std::size_t chunk = items.size(); chunk > 0;) {
        bool isShorter = false;
        for (std::size_t from = 0; from < items.size();) {
            auto candidate = items;
            const auto begin = candidate.begin() + static_cast<std::ptrdiff_t>(from);
            const auto length = std::min(chunk, items.size() - from);
            candidate.erase(begin, begin + static_cast<std::ptrdiff_t>(length));
            if (fails(candidate)) {
                items = std::move(candidate);
                isShorter = true;
            } else {
                from += chunk;
            }
        }
        if (!isShorter) {
            chunk /= 2;
        }
    }
    return items;
}

}  // namespace coherence
