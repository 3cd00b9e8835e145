// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>

/** What the client threads count. */
struct Tally {
    std::atomic<std::uint64_t> asked{0};
    std::atomic<std::uint64_t> addsAsked{0};
    std::atomic<std::uint64_t> added{0};
    std::atomic<std::uint64_t> expirations{0};
    /** Answers that cannot be right, whatever the modem and others did meanwhile. */
    std::atomic<std::uint64_t> wrongAnswers{0};
    /** Answers of another request's kind, or none. */
    std::atomic<std::uint64_t> lostAnswers{0};

    void require(bool isPossible) { wrongAnswers += isPossible ? 0 : 1; }
};
