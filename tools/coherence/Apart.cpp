// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Apart.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <string>
#include <string_view>
#include <system_error>

namespace coherence {

namespace {

using Clock = std::chrono::steady_clock;

/** What the child tells: that it comes to a step; at the end what it came to, then the failure. */
struct Record {
    bool isEnd = false;
    std::uint64_t step = 0;
    std::uint64_t compared = 0;
    std::uint64_t excused = 0;
    std::uint64_t faults = 0;
};

void write(int fd, const void* data, std::size_t size) {
    if (::write(fd, data, size) != static_cast<ssize_t>(size)) {
        ::_exit(2);
    }
}

[[noreturn]] void runAsChild(std::uint64_t seed, const std::vector<Operation>& operations, int fd) {
    Outcome outcome;
    try {
        outcome = Driver(seed).run(operations, [fd](std::size_t step) {
            const Record record{false, step, 0, 0, 0};
            write(fd, &record, sizeof record);
        });
    } catch (const std::exception& error) {
        outcome.failure = std::string("ends with the exception ") + error.what();
    }
    const Record record{true, outcome.step, outcome.compared, outcome.excused, outcome.faults};
    write(fd, &record, sizeof record);
    write(fd, outcome.failure.data(), outcome.failure.size());
    ::_exit(0);
}

/** Reads until the other end closes; false when that takes too long. */
bool readAll(int fd, std::chrono::seconds atMost, std::string& text) {
    const auto end = Clock::now() + atMost;
    std::array<char, 4096> buffer{};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd readable{fd, POLLIN, 0};
        if (left.count() <= 0 || ::poll(&readable, 1, static_cast<int>(left.count())) == 0) {
            return false;
        }
        const auto count = ::read(fd, buffer.data(), buffer.size());
        if (count <= 0) {
            return true;
        }
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

Outcome outcomeFrom(std::string_view told) {
    Outcome outcome;
    outcome.failure = "ends without a word";
    while (told.size() >= sizeof(Record)) {
        Record record;
        std::memcpy(&record, told.data(), sizeof record);
        told.remove_prefix(sizeof record);
        outcome.step = record.step;
        if (record.isEnd) {
            outcome.compared = record.compared;
            outcome.excused = record.excused;
            outcome.faults = record.faults;
            outcome.failure = told;
            break;
        }
    }
    return outcome;
}

[[noreturn]] void fail(const char* call) {
    throw std::system_error(errno, std::generic_category(), call);
}

}  // namespace

Outcome runApart(std::uint64_t seed, const std::vector<Operation>& operations,
                 std::chrono::seconds atMost) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        fail("pipe");
    }
    const pid_t child = ::fork();
    if (child == -1) {
        fail("fork");
    }
    if (child == 0) {
        runAsChild(seed, operations, ends[1]);
    }
    ::close(ends[1]);
    std::string told;
    const bool isInTime = readAll(ends[0], atMost, told);
    ::close(ends[0]);
    if (!isInTime) {
        ::kill(child, SIGKILL);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    auto outcome = outcomeFrom(told);
    if (!isInTime) {
        outcome.failure = "hangs";
    } else if (WIFSIGNALED(status)) {
        outcome.failure = std::string("crashes: ") + ::strsignal(WTERMSIG(status));
    }
    return outcome;
}

}  // namespace coherence
