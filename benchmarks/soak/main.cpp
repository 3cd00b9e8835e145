// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "ProgressWatchdog.h"
#include "Soak.h"

namespace {

constexpr std::chrono::seconds kStandstill{30};

}  // namespace

int main(int argc, char** argv) {
    Soak::Options options;
    const std::map<std::string, std::uint64_t*> numbers{{"--requests", &options.requests},
                                                        {"--threads", &options.threads},
                                                        {"--seed", &options.seed}};
    for (int i = 1; i < argc; i += 2) {
        const auto option = numbers.find(argv[i]);
        char* end = nullptr;
        if (option == numbers.end() || i + 1 == argc ||
            (*option->second = std::strtoull(argv[i + 1], &end, 10), *end != '\0')) {
            std::fprintf(stderr, "usage: vela_soak [--requests N] [--threads N] [--seed S]\n");
            return 2;
        }
    }
    ProgressWatchdog watchdog(kStandstill);
    return Soak(options, watchdog).run() ? 0 : 1;
}
