// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdio>

#include "Explorer.h"

int main(int argc, char** argv) {
    schedules::Options options;
    std::vector<std::string> scripts;
    std::vector<std::string> names;
    for (const auto& script : schedules::allScripts()) {
        names.emplace_back(script.name);
    }
    CLI::App app("explores the schedules of small scripts against the library");
    app.add_option("--script", scripts, "only these")->check(CLI::IsMember(names));
    bool isList = false;
    app.add_flag("--list", isList, "name the scripts, and do no more");
    app.add_option("--preemptions", options.preemptions, "at most, of the exhaustive part")
        ->capture_default_str();
    app.add_option("--random", options.seeds, "how many random schedules")->capture_default_str();
    app.add_option("--first", options.first, "seed of the first")->capture_default_str();
    app.add_option("--depth", options.depth, "of the bugs that they are to find")
        ->check(CLI::Range(1, 9))
        ->capture_default_str();
    app.add_option("--replay", options.replay, "one schedule, as a failure prints it");
    CLI11_PARSE(app, argc, argv);
    bool isGood = true;
    for (const auto& script : schedules::allScripts()) {
        if (isList) {
            std::printf("%s\n", script.name);
        } else if (scripts.empty() || std::count(scripts.begin(), scripts.end(), script.name)) {
            isGood = schedules::explore(script, options) && isGood;
        }
    }
    return isGood ? 0 : 1;
}
