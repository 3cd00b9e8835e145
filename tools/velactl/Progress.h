// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>

namespace velactl {

/** A bar on one line of a terminal, which it leaves empty at the end. Nothing is written when
 * nobody watches. */
class Progress {
  public:
    Progress(std::ostream& out, bool isWatched, std::size_t total)
        : out(out), isWatched(isWatched), total(std::max<std::size_t>(total, 1)) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() {
        if (isWatched) {
            out << "\r\x1b[K" << std::flush;
        }
    }

    /** One more is being worked on. */
    void next(const std::string& what) {
        constexpr std::size_t kWidth = 40;
        const std::size_t filled = done++ * kWidth / total;
        if (isWatched) {
            out << "\r[" << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] "
                << done << '/' << total << ' ' << what << "\x1b[K" << std::flush;
        }
    }

  private:
    std::ostream& out;
    const bool isWatched;
    const std::size_t total;
    std::size_t done = 0;
};

}  // namespace velactl
