// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The reader of operator files. Every entry is looked at, as the tool does.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "operators/OperatorFile.h"
#include "profiles/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    try {
        const auto file = velactl::OperatorFile::parse(text, "input");
        std::size_t entries = 0;
        file.forEachStray([&](const velactl::OperatorEntry&) { ++entries; });
        file.forEach([&](const velactl::Operator& oper) { entries += oper.entries.size(); });
        if (entries != file.entryCount()) {
            std::abort();  // an entry was dropped
        }
    } catch (const velactl::ToolError&) {
    }
    return 0;
}
