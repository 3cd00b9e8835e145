// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

namespace schedules {

/** A small program of a few threads, whose schedules are explored. */
struct Script {
    const char* name;
    void (*run)();
};

const std::vector<Script>& allScripts();

}  // namespace schedules
