// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What programs need that run something again and again until it fails.
#pragma once

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

namespace coherence {

/** Whether a run failed, and why, as processes can share it. */
struct Verdict {
    /** A text; empty: all was as promised. */
    std::array<char, 16384> failure;

    bool isFailure() const { return failure[0] != '\0'; }
    void fail(const std::string& text) { text.copy(failure.data(), failure.size() - 1); }
};

/** A plain value that this process shares with those that it forks. */
template <typename Value>
std::shared_ptr<Value> shared() {
    static_assert(std::is_trivially_copyable_v<Value>);
    void* memory =
        ::mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), "mmap");
    }
    return {new (memory) Value{}, [](Value* value) { ::munmap(value, sizeof(Value)); }};
}

/**
 * Carries out `job` in a process of its own, so that a crash or a hang is an outcome like any
 * other. Call it while this process has one thread only.
 * @param atMost for the whole job; what takes longer hangs
 * @return how it failed to come to its end; empty: it did not
 */
template <typename Job>
std::string runApart(Job job, std::chrono::seconds atMost) {
    const pid_t child = ::fork();
    if (child == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        ::alarm(static_cast<unsigned>(atMost.count()));
        job();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) {
        return WTERMSIG(status) == SIGALRM
                   ? std::string("hangs")
                   : std::string("crashes: ") + ::strsignal(WTERMSIG(status));
    }
    return WEXITSTATUS(status) == 0 ? ""
                                    : "ends with status " + std::to_string(WEXITSTATUS(status));
}

/** The shortest list found that still fails, made by leaving out items. */
template <typename Item, typename Fails>
std::vector<Item> shrink(std::vector<Item> items, Fails fails) {
    for (std::size_t chunk = items.size(); chunk > 0;) {
        const auto before = items.size();
        for (std::size_t from = 0; from < items.size();) {
            auto candidate = items;
            const auto begin = candidate.begin() + static_cast<std::ptrdiff_t>(from);
            candidate.erase(begin,
                            begin + std::min<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(chunk),
                                                             candidate.end() - begin));
            if (fails(candidate)) {
                items = std::move(candidate);
            } else {
                from += chunk;
            }
        }
        chunk /= items.size() == before ? 2U : 1U;
    }
    return items;
}

}  // namespace coherence
