// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include "Campaign.h"

int main(int argc, char** argv) {
    coherence::Campaign campaign;
    CLI::App app("random runs of the library against a model of what it promises");
    app.add_option("--seeds", campaign.seeds, "how many runs")->capture_default_str();
    app.add_option("--first", campaign.first, "seed of the first run")->capture_default_str();
    app.add_option("--steps", campaign.steps, "length of each run")->capture_default_str();
    auto* replay = app.add_option("--replay", campaign.first, "one run only, of this seed");
    replay->excludes("--seeds")->excludes("--first");
    CLI11_PARSE(app, argc, argv);
    if (*replay) {
        campaign.seeds = 1;
    }
    return campaign.run() ? 0 : 1;
}
