// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The reader of operator files. Every entry is looked at, as the tool does.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "OperatorFile.h"
#include "ToolError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    try {
        const auto file = velactl::OperatorFile::parse(text, "input");
        std::size_t entries = file.strays().size();
        for (const velactl::Operator& oper : file.operators()) {
            entries += oper.entries.size();
        }
        if (entries != file.entries().size()) {
            std::abort();  // an entry was dropped
        }
    } catch (const velactl::ToolError&) {
    }
    return 0;
}
