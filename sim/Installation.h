// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "SimulatedPlatform.h"

namespace velasim {

/**
 * Which platforms the process has, the newest last: the only thing that all simulators share. Hands
 * out handles, no two alike within the process. Never destroyed, so that calls at process exit are
 * harmless. Any thread.
 */
class Installation {
  public:
    static Installation& process();

    void add(std::shared_ptr<SimulatedPlatform> platform);
    void remove(const SimulatedPlatform* platform);

    /** Null when there is none, here and below. */
    std::shared_ptr<SimulatedPlatform> newest();
    std::shared_ptr<SimulatedPlatform> bySerial(std::uint64_t serial);
    std::shared_ptr<SimulatedPlatform> ownerOf(SimulatedPlatform::Handle handle);

    /** Not 0; tells one platform from others before and after it. */
    std::uint64_t serialOf(const SimulatedPlatform* platform);

    SimulatedPlatform::Handle newHandle();

  private:
    struct Entry {
        std::uint64_t serial;
        std::shared_ptr<SimulatedPlatform> platform;
    };

    Installation() = default;

    std::mutex mutex;  // taken before every lock of a platform
    // Guarded by `mutex`.
    std::vector<Entry> entries;
    std::uint64_t lastSerial = 0;
    SimulatedPlatform::Handle lastHandle = 0;
};

}  // namespace velasim
