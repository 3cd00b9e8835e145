// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>

#include "Text.h"

namespace velactl {

/** A bar on one line of a terminal, which it leaves empty at the end. Nothing is written when
 * nobody watches. */
class Progress {
  public:
    /** `columns` is the terminal's width; 0: nobody watches. */
    Progress(std::ostream& out, std::size_t columns, std::size_t total)
        : out(out), columns(columns), total(std::max<std::size_t>(total, 1)) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() {
        if (columns != 0) {
            out << "\r\x1b[K" << std::flush;
        }
    }

    /** One more is being worked on. */
    void next(const std::string& what) {
        constexpr std::size_t kWidth = 40;
        const std::size_t filled = done++ * kWidth / total;
        const std::string text = '[' + std::string(filled, '#') +
                                 std::string(kWidth - filled, '.') + "] " + std::to_string(done) +
                                 '/' + std::to_string(total) + ' ' + what;
        if (columns != 0) {
            // Not into the last column, from where a terminal may go on to the next line.
            out << '\r' << fitting(text, columns - 1) << "\x1b[K" << std::flush;
        }
    }

  private:
    std::ostream& out;
    const std::size_t columns;
    const std::size_t total;
    std::size_t done = 0;
};

}  // namespace velactl
