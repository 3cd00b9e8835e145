// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/SnapshotFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <thread>
#include <utility>

namespace velasim {

namespace {

constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;
/** What is being saved, while it has a name of its own. */
constexpr const char* kUnfinished = ".velasim-new";

std::string failure(const std::string& path, const char* what) {
    return path + ": " + what + ": " + std::strerror(errno);
}

/** The file that a path leads to through symbolic links; it need not be there. */
std::string targetOf(const std::string& path) {
    constexpr int kMaxLinks = 40;
    std::filesystem::path target = path;
    std::error_code error;
    for (int i = 0; i < kMaxLinks && std::filesystem::is_symlink(target, error); ++i) {
        // An absolute link replaces all of it.
        target = target.parent_path() / std::filesystem::read_symlink(target, error);
    }
    return target;
}

/** Why what is there is no snapshot's file; a device would be read for ever. */
std::string objection(const std::string& path, const std::string& target) {
    constexpr off_t kMaxSize = 64 << 20;
    struct stat status {};
    if (stat(target.c_str(), &status) != 0) {
        return errno == ENOENT ? "" : failure(path, "cannot be read");
    }
    if (S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return failure(path, "cannot be read");
    }
    if (!S_ISREG(status.st_mode)) {
        return path + ": not a regular file, as a modem's memory must be";
    }
    return status.st_size <= kMaxSize ? ""
                                      : path + ": larger than 64 MiB, so hardly a modem's memory";
}

/** " (pid 17)": who holds the lock, if the kernel's list tells. */
std::string holderOf(int fd) {
    struct stat file {};
    fstat(fd, &file);
    std::array<char, 64> wanted{};
    std::snprintf(wanted.data(), wanted.size(), "%02x:%02x:%ju", major(file.st_dev),
                  minor(file.st_dev), static_cast<std::uintmax_t>(file.st_ino));
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        std::istringstream in(line);
        std::array<std::string, 6> words;  // number, kind, advisory, access, process, file
        for (std::string& word : words) {
            in >> word;
        }
        if (words[1] == "FLOCK" && words[5] == wanted.data()) {
            return " (pid " + words[4] + ')';
        }
    }
    return "";
}

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const auto written = write(fd, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return fsync(fd) == 0;
}

bool readAll(int fd, std::string& text) {
    std::array<char, 65536> block{};
    for (;;) {
        const auto got = read(fd, block.data(), block.size());
        if (got == 0 || (got < 0 && errno != EINTR)) {
            return got == 0;
        }
        text.append(block.data(), got < 0 ? 0 : static_cast<std::size_t>(got));
    }
}

/** Sets errno when it may not; the file's permissions count even for those whom nothing stops. */
bool mayReplace(const std::string& target, const struct stat& present) {
    constexpr mode_t kWritable = S_IWUSR | S_IWGRP | S_IWOTH;
    if ((present.st_mode & kWritable) == 0) {
        errno = EACCES;
        return false;
    }
    return access(target.c_str(), W_OK) == 0 || errno == ENOENT;
}

/** Gives the new file the old one's permissions, and its owner as far as that is allowed. */
bool takeOver(int fd, const struct stat& present) {
    constexpr mode_t kPermissions = 07777;
    [[maybe_unused]] const int owned = fchown(fd, present.st_uid, present.st_gid);
    return fchmod(fd, present.st_mode & kPermissions) == 0;
}

/** A new file beside the target: without a name, so that it goes with its process, or with one. */
int openBeside(const std::string& target, bool isUnnamed) {
    if (isUnnamed) {
        const std::string folder = std::filesystem::path(target).parent_path();
        return open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC,
                    kOwnerOnly);
    }
    return open((target + kUnfinished).c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kOwnerOnly);
}

}  // namespace

SnapshotFile::~SnapshotFile() {
    if (isMade && isNew() && isAtTarget()) {
        unlink(target.c_str());
    }
    close();
}

std::string SnapshotFile::open(Use use, std::chrono::milliseconds patience) {
    looksOnly = use == Use::Look;
    const auto end = std::chrono::steady_clock::now() + patience;
    std::string error;
    do {
        close();
        target = targetOf(path);
        error = lock(use, end);
        // Whoever had it may have replaced it meanwhile.
    } while (error.empty() && fd >= 0 && !isAtTarget());
    if (busy) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience).count();
        error += " for " + std::to_string(seconds) + " s";
    }
    if (!error.empty()) {
        close();
    } else if (use == Use::Change) {
        unlink((target + kUnfinished).c_str());
    }
    return error;
}

/** Opens what is there now and waits for the lock. */
std::string SnapshotFile::lock(Use use, std::chrono::steady_clock::time_point end) {
    constexpr auto kPause = std::chrono::milliseconds(20);
    std::string error = objection(path, target);
    if (!error.empty()) {
        return error;
    }
    if (!acquire(use)) {
        return use == Use::Look && errno == ENOENT ? "" : failure(path, "cannot be opened");
    }
    while (flock(fd, (use == Use::Look ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            return failure(path, "cannot be locked");
        }
        busy = std::chrono::steady_clock::now() >= end;
        if (busy) {
            return path + ": in use by another program" + holderOf(fd);
        }
        std::this_thread::sleep_for(kPause);  // no call waits for a lock and for a time
    }
    return "";
}

/** Opens the file; to change it, makes one if there is none. */
bool SnapshotFile::acquire(Use use) {
    constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    do {
        isMade = false;
        fd = ::open(target.c_str(), kFlags);
        if (fd < 0 && errno == ENOENT && use == Use::Change) {
            fd = ::open(target.c_str(), kFlags | O_CREAT | O_EXCL, kOwnerOnly);
            isMade = fd >= 0;
        }
    } while (fd < 0 && errno == EEXIST);
    return fd >= 0;
}

bool SnapshotFile::isAtTarget() const {
    struct stat own {};
    struct stat there {};
    return fstat(fd, &own) == 0 && stat(target.c_str(), &there) == 0 &&
           own.st_ino == there.st_ino && own.st_dev == there.st_dev;
}

bool SnapshotFile::isNew() const {
    struct stat status {};
    return fd < 0 || (fstat(fd, &status) == 0 && status.st_size == 0);
}

SnapshotResult SnapshotFile::load() {
    std::string text;
    if (fd < 0 || lseek(fd, 0, SEEK_SET) != 0 || !readAll(fd, text)) {
        errno = fd < 0 ? ENOENT : errno;
        return {std::nullopt, failure(path, "cannot be read")};
    }
    if (looksOnly) {
        flock(fd, LOCK_UN);
    }
    return Snapshot::parse(text, path);
}

std::string SnapshotFile::save(const Snapshot& snapshot) {
    const std::string text = snapshot.toJson();
    if (replace(text, true) || replace(text, false)) {
        return "";
    }
    return failure(path, "cannot be written");
}

bool SnapshotFile::replace(const std::string& text, bool isUnnamed) {
    const std::string named = target + kUnfinished;
    struct stat present {};
    if (fstat(fd, &present) != 0 || !mayReplace(target, present)) {
        return false;
    }
    const int next = openBeside(target, isUnnamed);
    // Locked before anybody sees it: the lock is never open between the old file and the new.
    const bool isReplaced =
        next >= 0 && flock(next, LOCK_EX | LOCK_NB) == 0 && takeOver(next, present) &&
        writeAll(next, text) &&
        (!isUnnamed || linkat(AT_FDCWD, ("/proc/self/fd/" + std::to_string(next)).c_str(), AT_FDCWD,
                              named.c_str(), AT_SYMLINK_FOLLOW) == 0) &&
        std::rename(named.c_str(), target.c_str()) == 0;
    if (isReplaced) {
        ::close(std::exchange(fd, next));
        isMade = false;
        return true;
    }
    const int error = errno;
    unlink(named.c_str());
    if (next >= 0) {
        ::close(next);
    }
    errno = error;
    return false;
}

void SnapshotFile::close() {
    if (fd >= 0) {
        ::close(std::exchange(fd, -1));
    }
}

}  // namespace velasim
