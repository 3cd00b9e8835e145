// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "LocalLogBuffer.h"

#include <sys/time.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <new>
#include <utility>

namespace vela {

namespace {

constexpr int kProcessBufferSize = 200;

constexpr std::size_t kSecondsSize = 50;

/** A second of local time as text, kept by each thread for the lines that follow. */
struct SecondText {
    std::time_t second;
    long zone;           // a change of the time zone counts at once
    std::size_t length;  // 0: none yet
    std::array<char, kSecondsSize> text;

    std::string_view of(std::time_t wanted) {
        if (length == 0 || second != wanted || zone != timezone) {
            tm local{};
            localtime_r(&wanted, &local);
            length = std::strftime(text.data(), text.size(), "%F %X", &local);
            second = wanted;
            zone = timezone;
        }
        return {text.data(), length};
    }
};

/** Four blanks and the local time in milliseconds. */
class LineStart {
  public:
    LineStart() {
        static thread_local constinit SecondText seconds{};
        timeval now{};
        gettimeofday(&now, nullptr);
        const auto milliseconds = static_cast<int>(now.tv_usec / 1000);
        append("    ");
        append(seconds.of(now.tv_sec));
        append(".");
        for (const int unit : {100, 10, 1}) {
            text[length++] = static_cast<char>('0' + milliseconds / unit % 10);
        }
    }

    operator std::string_view() const { return {text.data(), length}; }

  private:
    void append(std::string_view part) {
        std::copy(part.begin(), part.end(), text.begin() + length);
        length += part.size();
    }

    std::array<char, kSecondsSize + 8> text;
    std::size_t length = 0;
};

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

void LocalLogBuffer::addLogWithTimestamp(std::string_view message) {
    const LineStart start;
    std::string line;
    const MutexLock guard(lock);
    // Trimming before the append leaves one line more than maxSize, intentionally.
    while (logs.size() > maxSize) {
        line = std::move(logs.front());  // whose memory the new line takes over
        logs.pop_front();
    }
    line.clear();
    line.append(start).append(" [").append(name).append("]").append(message);
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
