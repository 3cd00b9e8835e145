// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// A call from a client thread to the worker and back.

#include <benchmark/benchmark.h>
#include <poll.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "EventFd.h"
#include "LogWrapper.h"
#include "vela/Manager.h"
#include "velasim/Simulator.h"

namespace {

/** A manager whose cache holds `count` profiles, without a log sink. */
struct Connection {
    explicit Connection(int count) {
        manager.init(0, false);
        vela::LogWrapper::getInstance().setLogWriter(nullptr);
        modem.waitSubscribed();
        for (int i = 0; i < count; ++i) {
            vela::AddProfileParams params(true, vela::TechType::TECH_3GPP, false);
            params.setApnName("apn" + std::to_string(i));
            keys.push_back(manager.addProfile(params));
        }
    }

    static velasim::SimulatorOptions options() {
        velasim::SimulatorOptions result;
        result.capacity = 255;
        return result;
    }

    velasim::Simulator modem{options()};
    vela::Manager manager;
    std::vector<std::shared_ptr<vela::IProfileKey>> keys;
};

/** The limit: two threads that wake each other through eventfds, with nothing in between. */
void eventFdRoundTrip(benchmark::State& state) {
    const vela::EventFd request;
    const vela::EventFd response;
    std::atomic<bool> running{true};
    ssize_t written = 0;
    const auto await = [](const vela::EventFd& fd) {
        pollfd poll{fd.get(), POLLIN, 0};
        ::poll(&poll, 1, -1);
        vela::EventFd::drain(fd.get());
    };
    std::thread peer([&] {
        ssize_t answered = 0;
        while (running) {
            await(request);
            response.signal(answered);
        }
    });
    for ([[maybe_unused]] const auto _ : state) {
        request.signal(written);
        await(response);
    }
    running = false;
    request.signal(written);
    peer.join();
}
BENCHMARK(eventFdRoundTrip)->UseRealTime();

void getProfile(benchmark::State& state) {
    Connection connection(1);
    for ([[maybe_unused]] const auto _ : state) {
        benchmark::DoNotOptimize(connection.manager.getProfile(connection.keys.front()));
    }
}
BENCHMARK(getProfile)->UseRealTime();

/** Finds one profile among many; the key goes at once, which is a second round trip. */
void filterOneOf(benchmark::State& state) {
    Connection connection(static_cast<int>(state.range(0)));
    vela::FilterProfileParams filter;
    filter.setApnName("apn0");
    for ([[maybe_unused]] const auto _ : state) {
        benchmark::DoNotOptimize(connection.manager.filter(filter));
    }
}
BENCHMARK(filterOneOf)->Arg(1)->Arg(16)->Arg(255)->UseRealTime();

void refresh(benchmark::State& state) {
    Connection connection(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] const auto _ : state) {
        connection.manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(refresh)->Arg(16)->Arg(255)->UseRealTime();

}  // namespace
