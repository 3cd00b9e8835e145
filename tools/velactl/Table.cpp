// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Table.h"

#include <algorithm>
#include <cstddef>

#include "Text.h"

namespace velactl {

std::vector<std::size_t> Table::widths() const {
    std::vector<std::size_t> result(rows.front().size(), 0);
    for (std::size_t column = 0; column < result.size(); ++column) {
        for (std::size_t row = 1; row < rows.size(); ++row) {
            result[column] = std::max(result[column], displayWidth(rows[row][column]));
        }
        if (result[column] != 0) {
            result[column] = std::max(result[column], displayWidth(rows.front()[column]));
        }
    }
    return result;
}

void Table::print(std::ostream& out, std::size_t indent) const {
    const std::vector<std::size_t> columns = widths();
    for (const auto& row : rows) {
        std::string line(indent, ' ');
        for (std::size_t column = 0; column < columns.size(); ++column) {
            if (columns[column] != 0) {
                line += row[column];
                line.append(columns[column] + 2 - displayWidth(row[column]), ' ');
            }
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    }
}

}  // namespace velactl
