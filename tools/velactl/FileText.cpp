// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "FileText.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "ToolError.h"

namespace velactl {

std::string readText(const std::string& path, std::size_t limit, const std::string& what) {
    if (std::error_code error; std::filesystem::is_directory(path, error)) {
        throw refused(path + ": is a directory; " + what + " is needed");
    }
    std::ifstream in(path, std::ios::binary);
    std::string text;
    std::array<char, 65536> block{};
    // Not by iterators, which throw when the disk fails; and no file tells how long a stream is.
    while (in.read(block.data(), block.size()) || in.gcount() > 0) {
        text.append(block.data(), static_cast<std::size_t>(in.gcount()));
        if (text.size() > limit) {
            throw refused(path + ": larger than " + std::to_string(limit >> 20U) +
                          " MiB, so hardly " + what);
        }
    }
    if (!in.is_open() || in.bad()) {
        throw refused(path + ": cannot be read: " + std::strerror(errno));
    }
    return text;
}

}  // namespace velactl
