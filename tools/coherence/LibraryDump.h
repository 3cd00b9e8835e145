// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace coherence {

/** The library's dump without its log, so that two of them can be compared. */
struct LibraryDump {
    /** @param firstToken the token that counts as 0 */
    LibraryDump(std::vector<std::string> dump, std::uint64_t firstToken);

    /** Entries by token. */
    std::vector<std::string> lines;
    /** The tokens of the entries as they came. */
    std::vector<std::uint64_t> order;
};

}  // namespace coherence
