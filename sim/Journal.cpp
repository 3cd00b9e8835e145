// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Journal.h"

#include <algorithm>
#include <utility>

namespace velasim {

Journal::Journal(std::size_t limit) : limit(std::max<std::size_t>(limit, 1)) {}

void Journal::add(JournalEntry entry) {
    {
        const std::lock_guard lock(mutex);
        entry.sequence = ++lastSequence;
        if (entries.size() >= 2 * limit) {
            const auto keep = static_cast<Entries::difference_type>(limit);
            entries.erase(entries.begin(), entries.end() - keep);
        }
        entries.push_back(std::move(entry));
    }
    added.notify_all();
}

Journal::Entries Journal::snapshot() const {
    const std::lock_guard lock(mutex);
    return entries;
}

std::uint64_t Journal::latest() const {
    const std::lock_guard lock(mutex);
    return lastSequence;
}

std::size_t Journal::count(JournalKind kind, std::uint32_t messageId) const {
    const std::lock_guard lock(mutex);
    const auto matching = std::count_if(entries.begin(), entries.end(), [&](const auto& entry) {
        return entry.kind == kind && (messageId == kAnyMessage || entry.messageId == messageId);
    });
    return static_cast<std::size_t>(matching);
}

void Journal::clear() {
    const std::lock_guard lock(mutex);
    entries.clear();
}

bool Journal::waitFor(const std::function<bool(const Entries&)>& predicate,
                      std::chrono::milliseconds atMost) const {
    std::unique_lock lock(mutex);
    return added.wait_for(lock, atMost, [&] { return predicate(entries); });
}

std::string Journal::text() const {
    const std::lock_guard lock(mutex);
    std::string result;
    for (const auto& entry : entries) {
        result += entry.line() + '\n';
    }
    return result;
}

}  // namespace velasim
