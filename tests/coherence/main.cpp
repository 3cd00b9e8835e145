// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Without arguments of its own, the tests. Otherwise a campaign of random runs, or the replay of
// one.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "Campaign.h"

namespace {

constexpr const char* kUsage =
    "usage: vela_coherence [--seeds N] [--first S] [--steps M]\n"
    "       vela_coherence --replay SEED [--steps M]\n"
    "       vela_coherence --gtest_...\n";

}  // namespace

int main(int argc, char** argv) {
    if (argc == 1 || std::string(argv[1]).rfind("--gtest", 0) == 0) {
        testing::InitGoogleTest(&argc, argv);
        return RUN_ALL_TESTS();
    }
    coherence::Campaign campaign;
    std::map<std::string, std::uint64_t*> options{{"--seeds", &campaign.seeds},
                                                  {"--first", &campaign.first},
                                                  {"--replay", &campaign.first},
                                                  {"--steps", &campaign.steps}};
    for (int i = 1; i < argc; i += 2) {
        const auto option = options.find(argv[i]);
        char* end = nullptr;
        if (option == options.end() || i + 1 == argc ||
            (*option->second = std::strtoull(argv[i + 1], &end, 10), *end != '\0')) {
            std::fprintf(stderr, "%s", kUsage);
            return 2;
        }
        if (option->first == "--replay") {
            campaign.seeds = 1;
        }
    }
    return campaign.run() ? 0 : 1;
}
