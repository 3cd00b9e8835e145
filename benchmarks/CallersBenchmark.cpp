// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// Several callers at once, beside as many that take turns at a bare hand-over.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <latch>
#include <mutex>
#include <thread>
#include <vector>

#include "Comparison.h"
#include "Connection.h"
#include "HandOver.h"

namespace {

using namespace comparison;  // NOLINT(google-build-using-namespace): its words

constexpr auto kRound = std::chrono::milliseconds(100);
constexpr int kCallerRounds = 11;

/** What one caller got in a round. */
struct Share {
    int calls = 0;
    double worstWait = 0;
};

/** Rounds of one kind of call. */
struct Tally {
    std::vector<double> nanoseconds;  // from one answer to the next, whoever gets it
    std::vector<double> worstWaits;
    std::vector<double> evenness;  // fewest calls of a caller in most calls of one
    int starved = 0;               // callers that got no answer in a whole round

    void add(const std::vector<Share>& shares) {
        int calls = 0;
        for (const Share& share : shares) {
            calls += share.calls;
            starved += share.calls == 0 ? 1 : 0;
        }
        const auto [fewest, most] =
            std::minmax_element(shares.begin(), shares.end(),
                                [](const Share& a, const Share& b) { return a.calls < b.calls; });
        const auto worst = std::max_element(
            shares.begin(), shares.end(),
            [](const Share& a, const Share& b) { return a.worstWait < b.worstWait; });
        nanoseconds.push_back(std::chrono::nanoseconds(kRound).count() /
                              std::max(1.0, calls * 1.0));
        worstWaits.push_back(worst->worstWait);
        evenness.push_back(fewest->calls / std::max(1.0, most->calls * 1.0));
    }
};

/** Lets so many threads call for a round. Of a call that is under way when it ends only the wait
 * counts. */
template <typename Call>
std::vector<Share> callAtOnce(int callers, Call& call) {
    std::vector<Share> shares(static_cast<std::size_t>(callers));
    std::vector<std::thread> threads;
    std::latch start(callers + 1);
    std::atomic<bool> over{false};
    for (Share& share : shares) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            while (!over) {
                share.worstWait = std::max(share.worstWait, nanosecondsOf(call, 1));
                share.calls += over ? 0 : 1;
            }
        });
    }
    start.arrive_and_wait();
    std::this_thread::sleep_for(kRound);
    over = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    return shares;
}

void callers(benchmark::State& state) {
    pinWorker(state);
    Connection connection(1, 0);
    BareHandOver bare;
    pinCaller();
    const auto count = static_cast<int>(state.range(1));
    auto call = [&] { benchmark::DoNotOptimize(connection.manager.getProfile(connection.key)); };
    std::mutex turn;
    auto bareCall = [&] {
        const std::lock_guard lock(turn);
        bare.call();
    };
    Tally ours;
    Tally limit;
    for ([[maybe_unused]] const auto _ : state) {
        for (int round = 0; round < kCallerRounds; ++round) {
            ours.add(callAtOnce(count, call));
            limit.add(callAtOnce(count, bareCall));
        }
        report(state, ours.nanoseconds, limit.nanoseconds);
    }
    const auto tell = [&state](const char* name, const char* limitName, double own, double other) {
        state.counters[name] = own;
        state.counters[limitName] = other;
    };
    tell("calls_per_s", "limit_calls_per_s", 1e9 / quantile(ours.nanoseconds, 0.5),
         1e9 / quantile(limit.nanoseconds, 0.5));
    tell("worst_us", "limit_worst_us", quantile(ours.worstWaits, 0.5) / 1e3,
         quantile(limit.worstWaits, 0.5) / 1e3);
    tell("evenness", "limit_evenness", quantile(ours.evenness, 0.5), quantile(limit.evenness, 0.5));
    tell("starved", "limit_starved", ours.starved, limit.starved);
}
BENCHMARK(callers)->Apply([](auto* benchmark) {
    once(benchmark->ArgNames({"cores", "callers"})->ArgsProduct({{1, 2}, {1, 2, 4, 8, 16}}));
});

}  // namespace
