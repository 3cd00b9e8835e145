// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Times something beside its yardstick: in turns, in one process, so that whatever else the machine
// does meets both. Reported is the ratio of the medians, with the quartiles of the rounds' ratios.
#pragma once

#include <benchmark/benchmark.h>
#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace comparison {

inline constexpr int kRounds = 31;

/** Every thread that the calling one starts from now on stays on this core, like itself. */
inline void pinTo(unsigned core) {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(core, &cores);
    pthread_setaffinity_np(pthread_self(), sizeof cores, &cores);
}

template <typename Work>
double nanosecondsOf(Work& work, int times) {
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < times; ++i) {
        work();
    }
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
    return taken.count() / times;
}

/** Work that each time needs something first, which is not timed. */
template <typename Prepare, typename Work>
struct Prepared {
    Prepared(Prepare prepare, Work work) : prepare(prepare), work(work) {}

    Prepare prepare;
    Work work;
};

template <typename Prepare, typename Work>
double nanosecondsOf(Prepared<Prepare, Work>& prepared, int times) {
    double taken = 0;
    for (int i = 0; i < times; ++i) {
        prepared.prepare();
        taken += nanosecondsOf(prepared.work, 1);
    }
    return taken / times;
}

/** How often to repeat something so that the clock does not count. */
template <typename Work>
int repetitionsOf(Work& work) {
    constexpr double kBatch = 1e6;
    return std::max(1, static_cast<int>(kBatch / nanosecondsOf(work, 10)));
}

inline double quantile(std::vector<double> values, double part) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

/** What rounds of the library and of its yardstick took, in pairs. */
inline void report(benchmark::State& state, const std::vector<double>& ours,
                   const std::vector<double>& limits) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < ours.size(); ++round) {
        ratios.push_back(ours[round] / limits[round]);
    }
    state.SetIterationTime(quantile(ours, 0.5) / 1e9);
    state.counters["limit_ns"] = quantile(limits, 0.5);
    state.counters["ratio"] = quantile(ours, 0.5) / quantile(limits, 0.5);
    state.counters["ratio_q1"] = quantile(ratios, 0.25);
    state.counters["ratio_q3"] = quantile(ratios, 0.75);
}

/** One iteration of a benchmark is the whole comparison. */
template <typename Subject, typename Yardstick>
void compare(benchmark::State& state, Subject subject, Yardstick yardstick) {
    for ([[maybe_unused]] const auto _ : state) {
        std::vector<double> ours;
        std::vector<double> limits;
        const int ourTimes = repetitionsOf(subject);
        const int limitTimes = repetitionsOf(yardstick);
        for (int round = 0; round < kRounds; ++round) {
            ours.push_back(nanosecondsOf(subject, ourTimes));
            limits.push_back(nanosecondsOf(yardstick, limitTimes));
        }
        report(state, ours, limits);
    }
}

/** Registers comparisons: run once, whatever they take. */
inline void once(benchmark::internal::Benchmark* benchmark) {
    benchmark->Iterations(1)->UseManualTime()->Unit(benchmark::kNanosecond);
}

/** The same on one core, and with caller and worker on two. */
inline void onOneCoreAndTwo(benchmark::internal::Benchmark* benchmark) {
    once(benchmark->ArgName("cores")->Arg(1)->Arg(2));
}

/** Where the worker is started, for a benchmark of onOneCoreAndTwo(). */
inline void pinWorker(const benchmark::State& state) {
    pinTo(static_cast<unsigned>(state.range(0)) - 1);
}

/** Where calls are made from then on. */
inline void pinCaller() {
    pinTo(0);
}

}  // namespace comparison
