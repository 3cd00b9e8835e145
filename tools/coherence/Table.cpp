// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Table.h"

namespace coherence {

int freeIndex(const Table& table, velasim::Technology technology, unsigned capacity) {
    for (int index = 1; index <= static_cast<int>(capacity); ++index) {
        if (table.count({technology, index}) == 0) {
            return index;
        }
    }
    return 0;
}

void store(Table& table, ProfileId id, const velasim::Settings& settings) {
    auto& stored = table[id];
    if (stored.persistence_flag_valid == 0) {
        stored.persistence_flag_valid = stored.persistence_flag = 1;
    }
    merge(settings, id.technology, stored);
}

}  // namespace coherence
