// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>

#include "velasim/Export.h"
#include "velasim/Snapshot.h"

namespace velasim {

/**
 * A snapshot's file while one program works on it; others that use this class wait meanwhile. The
 * lock is the kernel's and goes with its holder, however that ends. It is on the file itself: no
 * other is left beside it. To be locked, a file that is not there yet is made, empty and for its
 * owner alone, and removed again if nothing was saved; an empty one counts as new. One thread.
 */
class VELASIM_API SnapshotFile {
  public:
    enum class Use {
        Look,   // with others that look; the lock ends when the file has been read
        Change  // alone, for as long as this object exists
    };

    static constexpr std::chrono::seconds kPatience{10};

    /** Symbolic links are followed. */
    explicit SnapshotFile(std::string path) : path(std::move(path)) {}
    SnapshotFile(const SnapshotFile&) = delete;
    SnapshotFile& operator=(const SnapshotFile&) = delete;
    ~SnapshotFile();

    /** Locks the file, and removes what an interrupted save() of a dead process has left. Once per
     * object. Returns one line that names the file and says why it cannot be; empty on success. */
    std::string open(Use use, std::chrono::milliseconds patience = kPatience);

    /** Whether open() failed because others kept the file for too long. */
    bool isBusy() const { return busy; }

    /** Whether there is nothing to load. */
    bool isNew() const;

    SnapshotResult load();

    /** Replaces the file as a whole or not at all: what is new becomes visible when it is complete.
     * Permissions are kept; those of a new file are its owner's alone, for it holds passwords. A
     * file without write permission is left alone. Returns as open() does. */
    std::string save(const Snapshot& snapshot);

  private:
    std::string lock(Use use, std::chrono::steady_clock::time_point end);
    bool acquire(Use use);
    bool isAtTarget() const;
    bool replace(const std::string& text, bool isUnnamed);
    void close();

    const std::string path;
    std::string target;  // what `path` leads to
    int fd = -1;         // locked; of the file that was read or written last
    bool looksOnly = false;
    bool isMade = false;
    bool busy = false;
};

}  // namespace velasim
