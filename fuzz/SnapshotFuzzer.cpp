// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The reader of the simulated modem's memory. What it accepts, it must write and read again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "velasim/Simulator.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const velasim::SnapshotResult result = velasim::Snapshot::parse(text, "input");
    if (result.snapshot.has_value() != result.error.empty()) {
        std::abort();
    }
    if (result.snapshot) {
        const std::string written = result.snapshot->toJson();
        const auto again = velasim::Snapshot::parse(written, "written");
        if (!again.snapshot || again.snapshot->toJson() != written) {
            std::abort();
        }
    }
    return 0;
}
