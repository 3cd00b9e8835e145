// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <malloc.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>

/** What a process holds at one moment. */
struct Resources {
    std::uint64_t residentBytes = 0;
    /** In use by the program; 0 where a sanitizer has its own allocator. */
    std::uint64_t allocatedBytes = 0;
    std::size_t descriptors = 0;
    std::size_t threads = 0;

    static Resources now() {
        malloc_trim(0);  // what is free is not held, whichever thread's heap it is in
        Resources resources;
        std::uint64_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages >> pages;
        resources.residentBytes = pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
        const auto heap = mallinfo2();
        resources.allocatedBytes = heap.uordblks + heap.hblkhd;
        resources.descriptors = entriesOf("/proc/self/fd");
        resources.threads = entriesOf("/proc/self/task");
        return resources;
    }

  private:
    static std::size_t entriesOf(const char* folder) {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            count += entry.exists() ? 1U : 0U;
        }
        return count;
    }
};
