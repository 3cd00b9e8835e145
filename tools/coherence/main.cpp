// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <string>

#include "Campaign.h"

namespace {

/** A standing rule from NAME or NAME=PROBABILITY. */
velasim::FaultRule ruleFrom(const std::string& text) {
    const auto equals = text.find('=');
    const auto fault = velasim::faultNamed(text.substr(0, equals));
    velasim::FaultRule rule;
    rule.count = 0;
    rule.probability = 0.1;
    const bool isNumber = equals == std::string::npos ||
                          CLI::detail::lexical_cast(text.substr(equals + 1), rule.probability);
    if (!fault || !isNumber || !(rule.probability > 0 && rule.probability <= 1)) {
        std::string names;
        for (const auto each : velasim::allFaults()) {
            names += " " + toString(each);
        }
        throw CLI::ValidationError("--fault", text + " is not NAME or NAME=PROBABILITY, with a " +
                                                  "probability up to 1 and a name of:" + names);
    }
    rule.fault = *fault;
    return rule;
}

/** Empty when it is one; the parser itself would take a sign and octal digits. */
std::string wrongNumber(const std::string& text) {
    constexpr std::size_t kMostDigits = 9;
    const bool isFine = !text.empty() && text.size() <= kMostDigits && text[0] != '0' &&
                        text.find_first_not_of("0123456789") == std::string::npos;
    return isFine ? "" : text + " is not a number from 1 to 999999999";
}

}  // namespace

int main(int argc, char** argv) {
    coherence::Campaign campaign;
    CLI::App app("random runs of the library against a model of what it promises");
    const auto addNumber = [&](const char* name, std::uint64_t& value, const char* description) {
        return app.add_option(name, value, description)->check(wrongNumber)->capture_default_str();
    };
    addNumber("--seeds", campaign.seeds, "how many runs");
    addNumber("--first", campaign.first, "seed of the first run");
    addNumber("--steps", campaign.steps, "length of each run");
    const auto addFault = [&](const std::string& text) { campaign.mix.push_back(ruleFrom(text)); };
    app.add_option_function<std::string>(
           "--fault", addFault,
           "NAME[=PROBABILITY], repeatable: these faults strike throughout, and no others")
        ->trigger_on_parse();
    auto* replay = addNumber("--replay", campaign.first, "one run only, of this seed");
    replay->excludes("--seeds")->excludes("--first");
    CLI11_PARSE(app, argc, argv);
    if (*replay) {
        campaign.seeds = 1;
    }
    return campaign.run() ? 0 : 1;
}
