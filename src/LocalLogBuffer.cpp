// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "LocalLogBuffer.h"

#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <new>
#include <utility>

namespace vela {

namespace {

constexpr int kProcessBufferSize = 200;

std::string currentTime() {
    timeval now{};
    gettimeofday(&now, nullptr);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 50> seconds{};
    std::strftime(seconds.data(), seconds.size(), "%F %X", &local);
    std::array<char, 100> text{};
    std::snprintf(text.data(), text.size(), "%s.%03d", seconds.data(),
                  static_cast<int>(now.tv_usec / 1000));
    return text.data();
}

}  // namespace

LocalLogBuffer& LocalLogBuffer::getInstance() {
    // Never destroyed: threads that outlive main() may still ask for a dump.
    alignas(LocalLogBuffer) static std::array<std::byte, sizeof(LocalLogBuffer)> storage;
    static LocalLogBuffer* const instance =
        new (storage.data()) LocalLogBuffer("VELA", kProcessBufferSize);
    return *instance;
}

LocalLogBuffer::LocalLogBuffer(std::string name, int maxSize)
    : name(std::move(name)), maxSize(static_cast<std::size_t>(std::max(maxSize, 0))) {}

void LocalLogBuffer::addLogWithTimestamp(std::string message) {
    std::string line = "    " + currentTime() + " [" + name + "]" + message;
    const MutexLock guard(lock);
    // Trimming before the append leaves one line more than maxSize, intentionally.
    while (logs.size() > maxSize) {
        logs.pop_front();
    }
    logs.push_back(std::move(line));
}

std::vector<std::string> LocalLogBuffer::getLogs() {
    const MutexLock guard(lock);
    return {logs.begin(), logs.end()};
}

void LocalLogBuffer::flush() {
    const MutexLock guard(lock);
    logs.clear();
}

}  // namespace vela
