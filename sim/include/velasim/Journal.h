// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "velasim/Export.h"
#include "velasim/JournalEntry.h"

namespace velasim {

/**
 * Everything that crossed the platform's boundary, in order. Any thread. Bounded: when it is full
 * its oldest entries are forgotten; `sequence` then tells the gap.
 */
class VELASIM_API Journal {
  public:
    using Entries = std::vector<JournalEntry>;

    /** `limit`: at least how many entries are kept (up to twice as many may be). */
    explicit Journal(std::size_t limit);

    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /** Appends an entry and gives it its sequence number. */
    void add(JournalEntry entry);

    /** The entries kept, oldest first. */
    Entries snapshot() const;

    /** Of the latest entry, kept or not; 0: there was none. */
    std::uint64_t latest() const;

    /** How many kept entries are of that kind, and of that message unless it is kAnyMessage. */
    std::size_t count(JournalKind kind, std::uint32_t messageId = kAnyMessage) const;

    /** Forgets the entries; sequence numbers go on. */
    void clear();

    /** Waits until `predicate` holds of the entries; it is asked at once and after every addition,
     * under the journal's lock, and must not call the journal. False: the time ran out first. */
    bool waitFor(const std::function<bool(const Entries&)>& predicate,
                 std::chrono::milliseconds atMost = std::chrono::seconds(10)) const;

    /** The entries' lines, each ended by a line feed. */
    std::string text() const;

  private:
    const std::size_t limit;

    mutable std::mutex mutex;
    mutable std::condition_variable added;
    // Guarded by `mutex`.
    std::uint64_t lastSequence = 0;
    Entries entries;
};

}  // namespace velasim
