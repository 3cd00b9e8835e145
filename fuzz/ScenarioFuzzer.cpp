// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The reader of scenarios, up to the point where the first statement would be played.

#include <cstddef>
#include <cstdint>
#include <string>

#include "profiles/Text.h"
#include "scenario/Operation.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    try {
        const velactl::Scenario scenario(text, "input");
    } catch (const velactl::ToolError&) {
    }
    return 0;
}
