// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

namespace vela {

/**
 * Has the death tests that follow run in a process that starts afresh, with none of the threads and
 * statics of this one. Emulators cannot start it; there the process is forked, which is the same as
 * long as nothing ran before, as under CTest.
 */
inline void runDeathTestsAfresh() {
    const bool emulated = std::getenv("VELA_EMULATED") != nullptr;
    GTEST_FLAG_SET(death_test_style, emulated ? "fast" : "threadsafe");
}

}  // namespace vela
