// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Soak.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <future>
#include <iterator>
#include <string>
#include <utility>

#include "velasim/DiagLog.h"

namespace {

using velasim::Fault;

constexpr std::uint64_t kParts = 5;  // the first one warms up
constexpr std::uint64_t kRequestsPerRound = 2500;
constexpr std::uint64_t kPercentAdded = 50;
constexpr std::uint64_t kLongRun = 200'000;

// What may differ between two moments of rest: fragments, buffers that grow to their bound.
constexpr std::int64_t kAllocatedSlack = 128 << 10;
constexpr std::int64_t kResidentSlack = 8 << 20;
constexpr std::int64_t kRiseSlack = 8 << 10;
constexpr std::int64_t kBytesPerPendingRecord = 48;

struct Chance {
    Fault fault;
    double probability;
};
constexpr Chance kFaults[] = {
    {Fault::Timeout, 0.005},
    {Fault::Refuse, 0.005},
    {Fault::TimeoutAfterEffect, 0.005},
    {Fault::RestartBeforeEffect, 0.0005},
    {Fault::RestartAfterEffect, 0.0005},
    {Fault::RestartAfterResponse, 0.0005},
    {Fault::LoseIndication, 0.005},
    {Fault::TruncateIndication, 0.005},
    {Fault::DelayIndication, 0.005},
    {Fault::DuplicateIndication, 0.005},
    {Fault::ReorderIndication, 0.005},
    {Fault::IndicationBeforeResponse, 0.005},
    {Fault::ClientInitFailure, 0.01},
};

void addFaults(velasim::FaultPlan& plan) {
    for (const auto& [fault, probability] : kFaults) {
        velasim::FaultRule rule;
        rule.fault = fault;
        rule.count = 0;
        rule.probability = probability;
        plan.add(rule);
    }
}

std::uint64_t countStrikes(const velasim::FaultPlan& plan) {
    std::uint64_t count = 0;
    for (std::size_t rule = 0; rule < std::size(kFaults); ++rule) {
        count += plan.strikes(rule);
    }
    return count;
}

velasim::SimulatorOptions optionsFor(std::uint64_t seed) {
    velasim::SimulatorOptions options;
    options.instances = 1;
    options.capacity = 100;
    options.seed = seed;
    options.journalLimit = 1024;
    return options;
}

/** Whether a line of the library's log says that a caller got another's answer, or none. */
bool isMixUp(const velasim::DiagLog::Line& line) {
    return line.text.find("Unable to cast") != std::string::npos ||
           line.text.find("Error in getProfile") != std::string::npos;
}

std::size_t countPending(const std::vector<std::string>& dump) {
    const auto pending = std::find(dump.begin(), dump.end(), "Pending:");
    return static_cast<std::size_t>(std::find(pending, dump.end(), "") - pending - 1);
}

double megabytes(std::uint64_t bytes) {
    return static_cast<double>(bytes) / (1 << 20);
}

}  // namespace

Soak::Soak(const Options& options, ProgressWatchdog& watchdog)
    : options(options),
      watchdog(watchdog),
      simulator(optionsFor(options.seed)),
      checkup(manager, simulator, watchdog),
      outsiders(simulator, options.seed),
      sharedKeys((options.threads + 1) / 2) {
    velasim::DiagLog::instance().setSink([this](const velasim::DiagLog::Line& line) {
        tally.lostAnswers += isMixUp(line) && !Client::isListening() ? 1 : 0;
    });
    watchdog.doing("initialising the library");
    manager.init(0, false);
}

Soak::~Soak() {
    watchdog.doing("destroying all");
    velasim::DiagLog::instance().setSink({});
}

bool Soak::run() {
    const auto begin = std::chrono::steady_clock::now();
    bool isInOrder = rest(false);
    for (std::uint64_t i = 0; i < kParts && isInOrder; ++i) {
        isInOrder = part(options.requests / kParts);
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    printFigures(took.count());
    require(tally.wrongAnswers == 0, "answers were wrong");
    require(tally.lostAnswers == 0, "answers were lost or mixed up");
    require(isInOrder, "given up");
    if (isInOrder) {
        requireEnoughOfAll();
        requireNoGrowth();
    }
    return isGood;
}

/** Some rounds, then a sample; false: the library is not in order. */
bool Soak::part(std::uint64_t requests) {
    bool isLast = false;
    for (std::uint64_t left = requests; !isLast; left -= kRequestsPerRound) {
        isLast = left <= kRequestsPerRound;
        round(std::min(kRequestsPerRound, left));
        if (!rest(isLast)) {
            return false;
        }
    }
    return true;
}

void Soak::round(std::uint64_t requests) {
    watchdog.doing("serving the clients");
    ++rounds;
    std::vector<std::future<void>> clients;
    for (std::uint64_t number = 0; number < options.threads; ++number) {
        clients.push_back(std::async(std::launch::async, [this, number, requests] {
            const Client::Surroundings surroundings{manager, tally, outsiders, watchdog,
                                                    sharedKeys[number / 2]};
            const auto seed = (options.seed * 1'000'000 + rounds) * 1000 + number;
            Client(surroundings, number, seed).run(requests / options.threads);
        }));
    }
    for (auto& one : clients) {
        one.get();
    }
}

/** A moment of rest, in which the library is checked; false: it is not in order. */
bool Soak::rest(bool isSampled) {
    const auto lock = outsiders.pause();
    watchdog.doing("coming to rest");
    faultsStruck += countStrikes(simulator.faults());
    simulator.faults().reset(options.seed + rounds);
    simulator.serviceUp();
    simulator.releaseDelayed();
    if (!checkup.passes()) {
        return false;
    }
    if (isSampled) {
        samples.push_back(sample());
    }
    addFaults(simulator.faults());
    return true;
}

Soak::Sample Soak::sample() {
    watchdog.doing("taking a sample");
    simulator.restore({});  // whatever is held with empty tables is not a profile
    manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    Sample sample;
    sample.pendingRecords = countPending(manager.dump());
    simulator.journal().clear();
    velasim::DiagLog::instance().clear();
    sample.resources = Resources::now();
    return sample;
}

void Soak::require(bool holds, const char* complaint) {
    if (!holds) {
        std::fprintf(stderr, "soak: %s\n", complaint);
        isGood = false;
    }
}

void Soak::printFigures(double seconds) {
    const auto lock = outsiders.pause();
    std::printf(
        "%" PRIu64 " requests of %" PRIu64 " threads in %" PRIu64 " rounds; %.0f requests/s\n",
        tally.asked.load(), options.threads, rounds, static_cast<double>(tally.asked) / seconds);
    std::printf("%" PRIu64 " changes by a second writer, %" PRIu64 " faults, %" PRIu64
                " restarts, %" PRIu64 " outages; %" PRIu64 " times reconnected by init, %" PRIu64
                " times subscribed by a restart\n",
                outsiders.changesMade(), faultsStruck, outsiders.restartsMade(),
                outsiders.outagesMade(), checkup.reconnectedByInit(),
                checkup.subscribedByRestart());
    std::printf("%" PRIu64 " of %" PRIu64 " additions succeeded, %" PRIu64 " expirations, %" PRIu64
                " answers wrong, %" PRIu64 " lost or mixed up\n",
                tally.added.load(), tally.addsAsked.load(), tally.expirations.load(),
                tally.wrongAnswers.load(), tally.lostAnswers.load());
    const char* when = "after warm-up";
    for (const auto& [resources, pendingRecords] : samples) {
        std::printf(
            "%s: %.1f MB resident, %.3f MB allocated, %zu descriptors, %zu threads, "
            "%zu pending records\n",
            when, megabytes(resources.residentBytes), megabytes(resources.allocatedBytes),
            resources.descriptors, resources.threads, pendingRecords);
        when = "later        ";
    }
}

void Soak::requireEnoughOfAll() {
    const auto lock = outsiders.pause();
    require(outsiders.changesMade() > 0 && outsiders.restartsMade() + outsiders.outagesMade() > 0,
            "too few requests for a restart");
    require(faultsStruck > 0, "no fault has struck");
    require(tally.added * 100 >= tally.addsAsked * kPercentAdded, "too few additions succeeded");
    require(tally.expirations > 0, "no listener has run");
    require(checkup.subscribedByRestart() <= rounds / 2, "subscriptions failed too often");
}

/** Bytes without those of the records, which stay for good, on purpose, when their indication is
 * lost. */
std::int64_t Soak::Sample::unexplained(std::uint64_t bytes) const {
    return static_cast<std::int64_t>(bytes) -
           static_cast<std::int64_t>(pendingRecords) * kBytesPerPendingRecord;
}

void Soak::requireNoGrowth() {
    const auto& first = samples.front();
    const auto& last = samples.back();
    require(last.resources.descriptors <= first.resources.descriptors, "descriptors leak");
    require(last.resources.threads <= first.resources.threads, "threads leak");
    require(last.allocated() <= first.allocated() + kAllocatedSlack, "allocated memory grows");
    const auto isNoRise = [](const Sample& one, const Sample& next) {
        return next.allocated() <= one.allocated() + kRiseSlack;
    };
    require(std::adjacent_find(samples.begin(), samples.end(), isNoRise) != samples.end(),
            "allocated memory rises steadily");
    // Sanitizers, and emulators for each thread, keep books of their own in resident memory.
    const bool isJudged = last.resources.allocatedBytes != 0 && options.requests >= kLongRun;
    require(!isJudged || last.resident() <= first.resident() + kResidentSlack,
            "resident memory grows");
}
