// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace velactl {

/** Rows of text in aligned columns. Columns in which every cell is empty are left out. */
class Table {
  public:
    explicit Table(std::vector<std::string> headings) : rows{std::move(headings)} {}

    /** As many cells as there are headings. */
    void add(std::vector<std::string> cells) { rows.push_back(std::move(cells)); }

    bool isEmpty() const { return rows.size() == 1; }

    /** `indent` spaces stand before each line. */
    void print(std::ostream& out, std::size_t indent = 2) const;

  private:
    std::vector<std::size_t> widths() const;

    std::vector<std::vector<std::string>> rows;
};

}  // namespace velactl
