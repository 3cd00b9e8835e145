// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <chrono>
#include <iostream>

#include "Driver.h"
#include "profiles/Text.h"

namespace {

using coherence::Operation;
using coherence::Outcome;

/** While a failing run is shortened, a try that takes longer counts as hanging. */
constexpr std::chrono::seconds kPatience{20};

/** Many random runs. */
struct Campaign {
    std::uint64_t seeds = 500;
    std::uint64_t first = 1;
    std::uint64_t steps = 200;
    /** Faults that strike throughout, instead of the usual ones. */
    std::vector<velasim::FaultRule> mix;
};

/** A standing rule from NAME or NAME=PROBABILITY. */
velasim::FaultRule ruleFrom(const std::string& text) {
    const auto equals = text.find('=');
    const auto fault = velasim::faultNamed(text.substr(0, equals));
    double probability = 0.1;
    const bool isNumber = equals == std::string::npos ||
                          CLI::detail::lexical_cast(text.substr(equals + 1), probability);
    if (!fault || !isNumber || !(probability > 0 && probability <= 1)) {
        auto complaint =
            text + " is not NAME or NAME=PROBABILITY, with a probability up to 1 and a name of:";
        for (const auto each : velasim::allFaults()) {
            complaint += " " + toString(each);
        }
        throw CLI::ValidationError("--fault", complaint);
    }
    return {*fault, velasim::kAnyMessage, 1, 1, 0, probability};
}

/** A run in a process of its own. */
Outcome runApart(std::uint64_t seed, const std::vector<Operation>& operations,
                 std::chrono::seconds atMost) {
    const auto outcome = coherence::shared<Outcome>();
    const auto end =
        coherence::runApart([&] { coherence::Driver(seed, *outcome).run(operations); }, atMost);
    if (!end.empty()) {
        outcome->fail(end);
    }
    return *outcome;
}

void print(const Outcome& outcome, std::size_t steps) {
    std::cout << outcome.failure.data() << "\n  at step " << outcome.step + 1 << " of " << steps
              << (outcome.step < steps ? "\n" : " (the reload at the end)\n");
}

/** What failed, how to replay it, and the shortest run found that shows it. */
void printFailure(const Campaign& campaign, std::uint64_t seed, std::vector<Operation> operations,
                  const Outcome& outcome) {
    std::cout << "seed " << seed << ": ";
    print(outcome, operations.size());
    std::cout << "replay: ./dev coherence --replay " << seed << " --steps " << campaign.steps;
    for (const auto& rule : campaign.mix) {
        std::cout << " --fault " << toString(rule.fault) << "=" << rule.probability;
    }
    operations.resize(std::min(operations.size(), outcome.step + 1));
    const auto shortest = coherence::shrink(operations, [&](const auto& candidate) {
        return runApart(seed, candidate, kPatience).isFailure();
    });
    std::cout << "\nshrunk to " << shortest.size() << " steps:\n";
    for (std::size_t i = 0; i < shortest.size(); ++i) {
        std::cout << "  " << i + 1 << ". " << velactl::printable(shortest[i].text) << "\n";
    }
    std::cout << "which fail with: ";
    print(runApart(seed, shortest, kPatience), shortest.size());
}

/** Prints the figures, or the first failure. True: all seeds passed. */
bool run(const Campaign& campaign) {
    const auto begin = std::chrono::steady_clock::now();
    // Far more than a run takes, under a sanitizer as well.
    const std::chrono::seconds patience(120 + campaign.steps / 10);
    Outcome sum{};
    for (auto seed = campaign.first; seed < campaign.first + campaign.seeds; ++seed) {
        const auto operations = coherence::randomOperations(seed, campaign.steps, campaign.mix);
        const auto outcome = runApart(seed, operations, patience);
        if (outcome.isFailure()) {
            printFailure(campaign, seed, operations, outcome);
            return false;
        }
        sum.figures.compared += outcome.figures.compared;
        sum.figures.excused += outcome.figures.excused;
        sum.faults += outcome.faults;
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::cout << campaign.seeds << " seeds of " << campaign.steps << " steps passed in "
              << took.count() << " s: " << sum.faults << " faults struck; " << sum.figures.compared
              << " times a cached profile was the modem's, " << sum.figures.excused
              << " times it was excused" << std::endl;
    return true;
}

/** The same runs again for each fault alone. */
bool runEachFault(Campaign campaign) {
    const auto faults = velasim::allFaults();
    return std::all_of(faults.begin(), faults.end(), [&](velasim::Fault fault) {
        std::cout << toString(fault) << ": ";
        campaign.mix = {ruleFrom(toString(fault))};
        return run(campaign);
    });
}

}  // namespace

int main(int argc, char** argv) {
    Campaign campaign;
    CLI::App app("random runs of the library against a model of what it promises");
    const auto addNumber = [&](const char* name, std::uint64_t& value, const char* description) {
        return app.add_option(name, value, description)
            ->check(CLI::Range(1, 999'999'999))
            ->capture_default_str();
    };
    addNumber("--seeds", campaign.seeds, "how many runs");
    addNumber("--first", campaign.first, "seed of the first run");
    addNumber("--steps", campaign.steps, "length of each run");
    const auto addFault = [&](const std::string& text) { campaign.mix.push_back(ruleFrom(text)); };
    auto* fault = app.add_option_function<std::string>(
        "--fault", addFault,
        "NAME[=PROBABILITY], repeatable: these faults strike throughout, and no others");
    fault->trigger_on_parse();
    bool isEachFault = false;
    app.add_flag("--each-fault", isEachFault, "the runs again for each fault alone")
        ->excludes(fault);
    auto* replay = addNumber("--replay", campaign.first, "one run only, of this seed");
    replay->excludes("--seeds")->excludes("--first");
    CLI11_PARSE(app, argc, argv);
    if (*replay) {
        campaign.seeds = 1;
    }
    return (isEachFault ? runEachFault(campaign) : run(campaign)) ? 0 : 1;
}
