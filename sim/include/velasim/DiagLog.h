// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "velasim/Export.h"

namespace velasim {

/**
 * The host's diagnostic log: what diagLogInit(), diagLogDeinit() and diagLogPrintf() act on. There
 * is one per process, as the C functions have no object to act on; it needs no Simulator and works
 * until the process has ended. Any thread.
 *
 * Lines that are logged while no registration is in force are lost, as on a device. The newest 4096
 * lines are kept, unless keep() says otherwise.
 */
class VELASIM_API DiagLog {
  public:
    struct Line {
        std::uint32_t mask = 0;
        std::uint32_t subsystem = 0;
        std::uint32_t line = 0;
        std::string file;
        /** The formatted message. */
        std::string text;

        bool operator==(const Line&) const = default;
    };
    using Sink = std::function<void(const Line&)>;

    static DiagLog& instance();

    DiagLog(const DiagLog&) = delete;
    DiagLog& operator=(const DiagLog&) = delete;

    /** Registrations in force: diagLogInit() calls without their diagLogDeinit() call. */
    unsigned registrations() const;

    /** The lines kept, oldest first. */
    std::vector<Line> lines() const;

    /** How many of the newest lines are kept. With 0 and no sink nobody reads them: they are not
     * even formatted. */
    void keep(std::size_t newest);

    /** Forgets the lines kept. */
    void clear();

    /** Hands every further line to `sink`, on the thread that logs; an empty sink ends that. When
     * this returns, the previous sink is not running and will not run (unless a sink itself calls).
     * A sink must not log. */
    void setSink(Sink sink);

    /** Waits until a kept line holds of `predicate`, which must not call the log. False: the time
     * ran out first. */
    bool waitFor(const std::function<bool(const Line&)>& predicate,
                 std::chrono::milliseconds atMost = std::chrono::seconds(10)) const;

    /** Whether lines are kept or handed on. */
    bool isRead() const;

    /** What the C functions do. */
    bool attach();
    bool detach();
    void print(const Line& line);

  private:
    DiagLog() = default;
    void dropOldest();  // under `mutex`

    mutable std::recursive_mutex sinkMutex;  // taken before `mutex`; held while the sink runs
    Sink sink;                               // guarded by `sinkMutex`

    mutable std::mutex mutex;
    mutable std::condition_variable printed;
    // Guarded by `mutex`.
    unsigned attached = 0;
    std::size_t limit = 4096;
    std::deque<Line> kept;
};

}  // namespace velasim
