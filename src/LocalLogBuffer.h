// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "Mutex.h"

namespace vela {

/** Keeps the most recent log lines in memory, each with its time. Any thread. */
class LocalLogBuffer {
  public:
    /** The process-wide buffer, "VELA" with a size limit of 200. */
    static LocalLogBuffer& getInstance();

    /** @param maxSize the buffer settles at one line more than this */
    LocalLogBuffer(std::string name, int maxSize);
    LocalLogBuffer(const LocalLogBuffer&) = delete;
    LocalLogBuffer& operator=(const LocalLogBuffer&) = delete;

    /** Appends four blanks, the local time in milliseconds, the name in brackets and `message`. */
    void addLogWithTimestamp(std::string_view message);

    /** A copy of the stored lines, oldest first. */
    std::vector<std::string> getLogs();

    /** Forgets all lines. */
    void flush();

    std::string getName() { return name; }

  private:
    const std::string name;
    const std::size_t maxSize;
    Mutex lock;
    std::deque<std::string> logs VELA_GUARDED_BY(lock);
};

}  // namespace vela
