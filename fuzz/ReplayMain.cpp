// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Replays a corpus through a fuzz target in builds without a fuzzer: each argument is a file, or a
// folder of files.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

void replay(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(in), {});
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
    int replayed = 0;
    for (const fs::path& path : std::vector<fs::path>(argv + 1, argv + argc)) {
        if (fs::is_regular_file(path)) {
            replay(path);
            ++replayed;
            continue;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
            replay(entry.path());
            ++replayed;
        }
    }
    std::cout << "replayed " << replayed << " inputs\n";
    return replayed > 0 ? 0 : 1;
}
