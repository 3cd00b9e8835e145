// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// A client's calls, beside a bare hand-over to another thread and back.

#include <list>
#include <memory>
#include <string>

#include "Comparison.h"
#include "Connection.h"
#include "ConstantModem.h"
#include "HandOver.h"
#include "ProfileKey.h"

namespace {

using namespace comparison;  // NOLINT(google-build-using-namespace): its words

/** `yardstick` makes something with a call() of its own, on the worker's core. */
template <typename HandOver, typename Call>
void compareGetProfile(benchmark::State& state, Call call) {
    pinWorker(state);
    Connection connection(1, 0);
    HandOver handOver;
    pinCaller();
    constant_modem::setFormatting(state.range(1) != 0);
    compare(
        state, [&] { benchmark::DoNotOptimize(connection.manager.getProfile(connection.key)); },
        [&] { call(handOver); });
}

void sinks(benchmark::internal::Benchmark* benchmark) {
    once(benchmark->ArgNames({"cores", "formatted"})->ArgsProduct({{1, 2}, {0, 1}}));
}

void getProfile(benchmark::State& state) {
    compareGetProfile<BareHandOver>(state, [](BareHandOver& bare) { bare.call(); });
}
BENCHMARK(getProfile)->Apply(sinks);

void getProfileBesideLibuv(benchmark::State& state) {
    compareGetProfile<UvHandOver>(state, [](UvHandOver& loop) { loop.call([] {}); });
}
BENCHMARK(getProfileBesideLibuv)->Apply(sinks);

void getProfileBesideAsio(benchmark::State& state) {
    compareGetProfile<AsioHandOver>(state, [](AsioHandOver& context) { context.call([] {}); });
}
BENCHMARK(getProfileBesideAsio)->Apply(sinks);

/** What further profiles add. */
void getProfileAmong510(benchmark::State& state) {
    pinTo(0);
    Connection two(1, 1);
    Connection many(255, 255);
    compare(
        state, [&] { benchmark::DoNotOptimize(many.manager.getProfile(many.key)); },
        [&] { benchmark::DoNotOptimize(two.manager.getProfile(two.key)); });
}
BENCHMARK(getProfileAmong510)->Apply(once);

/** The keys live on, so that no release is timed. The yardstick makes as many on the way. */
void filterAll(benchmark::State& state) {
    pinWorker(state);
    Connection connection(255, 255);
    BareHandOver bare;
    pinCaller();
    std::list<std::shared_ptr<vela::IProfileKey>> kept;
    const auto makeKeys = [&kept] {
        for (unsigned long token = 0; token < 510; ++token) {
            kept.push_back(std::make_shared<vela::ProfileKey>(vela::TechType::TECH_3GPP, 1, token,
                                                              [](const auto&) { return nullptr; }));
        }
    };
    compare(
        state,
        [&] { kept.splice(kept.end(), connection.manager.filter(vela::FilterProfileParams())); },
        [&] {
            bare.call();
            makeKeys();
        });
}
BENCHMARK(filterAll)->Apply(onOneCoreAndTwo);

/** A temporary profile comes and goes with its key; what the modem announces comes in between. */
void addAndRelease(benchmark::State& state) {
    pinTo(static_cast<unsigned>(state.range(0)) - 1);
    Connection connection(0, 0);
    BareHandOver bare;
    pinCaller();
    constant_modem::setAnnouncing(state.range(1) != 0);
    vela::AddProfileParams params(false, vela::TechType::TECH_3GPP, false);
    params.setApnName("internet.operator.example");
    compare(
        state,
        [&] {
            benchmark::DoNotOptimize(connection.manager.addProfile(params));
            constant_modem::deliver();
        },
        [&] {
            bare.call();
            bare.call();
        });
}
void announcements(benchmark::internal::Benchmark* benchmark) {
    once(benchmark->ArgNames({"cores", "announced"})->ArgsProduct({{1, 2}, {0, 1}}));
}
BENCHMARK(addAndRelease)->Apply(announcements);

/** From the modem's announcement of a foreign change until the profile has been read again. */
void indication(benchmark::State& state) {
    pinTo(0);
    const auto profiles = static_cast<int>(state.range(0)) / 2;
    Connection connection(profiles, profiles);
    BareHandOver bare;
    compare(
        state,
        [] {
            const auto before = constant_modem::messages();
            constant_modem::announce(1, WDS_PROFILE_CHANGE_EVENT_MODIFY_V01);
            while (constant_modem::messages() == before) {
                std::this_thread::yield();
            }
        },
        [&] { bare.tell(); });
}
BENCHMARK(indication)->Apply([](auto* benchmark) {
    once(benchmark->ArgName("profiles")->Arg(2)->Arg(510));
});

}  // namespace
