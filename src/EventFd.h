// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

#include "UniqueFd.h"

namespace vela {

/** An eventfd: one thread signals, the event loop sees it readable and drains it. */
class EventFd {
  public:
    /** Creates it, non-blocking and close-on-exec; logs and aborts when that fails. */
    EventFd();

    int get() const { return fd.get(); }

    /** Signals. Any thread. True when all 8 bytes were written; else `written` and errno tell. */
    bool signal(ssize_t& written) const;

    /**
     * Reads `fd` until nothing is left, `chunk` (at most 256) bytes at a time.
     * @return false when the reading ended otherwise; errno tells
     */
    static bool drain(int fd, std::size_t chunk = sizeof(std::uint64_t));

    void close() { fd.reset(); }

  private:
    UniqueFd fd;
};

}  // namespace vela
