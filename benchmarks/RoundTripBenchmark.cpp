// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The parts of one getProfile, from time stamps that are taken on its way: where a log line reaches
// the sink, and in the system and library calls that the linker has come by here.

#include <sys/epoll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <numeric>
#include <vector>

#include "Comparison.h"
#include "Connection.h"
#include "ConstantModem.h"

namespace {

/** In the order of a round trip. */
enum Stamp {
    kBegin,
    kRequestLine,
    kWrite,
    kWoken,
    kRead,
    kDrained,
    kHandlingLine,
    kNotify,
    kBack,
    kResponseLine,
    kEnd,
    kStamps,
};

/** What lies between a stamp and the one before; scripts/picture.py knows these names. */
constexpr std::array<const char*, kStamps> kParts = {
    "",         "request", "enqueue",     "wake_worker", "loop_lines", "drain",
    "handling", "answer",  "wake_caller", "response",    "return"};

std::array<std::atomic<std::int64_t>, kStamps> stamps{};
std::atomic<bool> isTracing{false};
thread_local bool isCaller = false;

void stamp(Stamp place) {
    stamps[place].store(std::chrono::steady_clock::now().time_since_epoch().count(),
                        std::memory_order_relaxed);
}

bool isStamped(Stamp place) {
    return stamps[place].load(std::memory_order_relaxed) != 0;
}

/** Of what happens more than once the first counts. */
void stampFirst(Stamp place) {
    if (!isStamped(place)) {
        stamp(place);
    }
}

void onLine() {
    if (isCaller) {
        stampFirst(isStamped(kWrite) ? kResponseLine : kRequestLine);
    } else {
        stamp(kHandlingLine);  // the last line of the worker's
    }
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names
extern "C" {

ssize_t __real_write(int fd, const void* data, size_t size);
ssize_t __wrap_write(int fd, const void* data, size_t size) {
    if (isTracing && isCaller) {
        stamp(kWrite);
    }
    return __real_write(fd, data, size);
}

int __real_epoll_wait(int epoll, epoll_event* events, int most, int timeOut);
int __wrap_epoll_wait(int epoll, epoll_event* events, int most, int timeOut) {
    const int count = __real_epoll_wait(epoll, events, most, timeOut);
    if (isTracing) {
        stampFirst(kWoken);
    }
    return count;
}

ssize_t __real_read(int fd, void* data, size_t size);
ssize_t __wrap_read(int fd, void* data, size_t size) {
    if (!isTracing) {
        return __real_read(fd, data, size);
    }
    stampFirst(kRead);
    const ssize_t count = __real_read(fd, data, size);
    stamp(kDrained);
    return count;
}

// std::condition_variable's notify_one() and wait()
void __real__ZNSt18condition_variable10notify_oneEv(std::condition_variable* condition);
void __wrap__ZNSt18condition_variable10notify_oneEv(std::condition_variable* condition) {
    if (isTracing) {
        stamp(kNotify);
    }
    __real__ZNSt18condition_variable10notify_oneEv(condition);
}

void __real__ZNSt18condition_variable4waitERSt11unique_lockISt5mutexE(
    std::condition_variable* condition, std::unique_lock<std::mutex>* lock);
void __wrap__ZNSt18condition_variable4waitERSt11unique_lockISt5mutexE(
    std::condition_variable* condition, std::unique_lock<std::mutex>* lock) {
    __real__ZNSt18condition_variable4waitERSt11unique_lockISt5mutexE(condition, lock);
    if (isTracing && isCaller) {
        stamp(kBack);
    }
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace {

using namespace comparison;  // NOLINT(google-build-using-namespace): its words

/** Nanoseconds: first the whole, then each part. */
using Trip = std::array<double, kStamps>;

template <typename Call>
Trip trace(Call& call) {
    for (auto& place : stamps) {
        place = 0;
    }
    isTracing = true;
    stamp(kBegin);
    call();
    stamp(kEnd);
    isTracing = false;
    Trip trip{static_cast<double>(stamps[kEnd] - stamps[kBegin])};
    for (std::size_t part = 1; part < kStamps; ++part) {
        trip[part] = static_cast<double>(stamps[part] - stamps[part - 1]);
    }
    return trip;
}

/** The parts add up to the whole: all are means of the same trips, the fifth of them in the middle
 * by what the whole took. */
void roundTrip(benchmark::State& state) {
    constexpr int kTrips = 200;
    pinWorker(state);
    Connection connection(1, 0);
    pinCaller();
    isCaller = true;
    auto call = [&] { benchmark::DoNotOptimize(connection.manager.getProfile(connection.key)); };
    std::vector<Trip> trips;
    std::vector<double> unstamped;
    for ([[maybe_unused]] const auto _ : state) {
        for (int round = 0; round < kRounds; ++round) {
            constant_modem::setLineHook(onLine);
            for (int trip = 0; trip < kTrips; ++trip) {
                trips.push_back(trace(call));
            }
            constant_modem::setLineHook(nullptr);
            for (int trip = 0; trip < kTrips; ++trip) {
                unstamped.push_back(nanosecondsOf(call, 1));
            }
        }
        std::sort(trips.begin(), trips.end());
        const auto begin = trips.begin() + static_cast<long>(trips.size() * 2 / 5);
        const auto end = trips.begin() + static_cast<long>(trips.size() * 3 / 5);
        for (std::size_t part = 0; part < kStamps; ++part) {
            const double sum = std::accumulate(
                begin, end, 0.0,
                [part](double before, const Trip& trip) { return before + trip[part]; });
            const double mean = sum / static_cast<double>(end - begin);
            if (part == 0) {
                state.SetIterationTime(mean / 1e9);
            } else {
                state.counters[kParts[part]] = mean;
            }
        }
        state.counters["unstamped_ns"] = quantile(unstamped, 0.5);
    }
    isCaller = false;
}
BENCHMARK(roundTrip)->Apply(onOneCoreAndTwo);

}  // namespace
