// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What operations cost in things that can be counted, whatever the machine does meanwhile:
// allocations, system calls and messages to the modem. Fails when one costs more than it may.
//
// usage: vela_counts [OPERATION TIMES]
//
// With arguments it only carries out one operation so often, for a tool that counts instructions.
#include <sys/epoll.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "ConstantModem.h"
#include "LogWrapper.h"
#include "vela/Manager.h"

namespace {

struct Counts {
    std::atomic<std::uint64_t> allocations{0};
    std::atomic<std::uint64_t> reads{0};
    std::atomic<std::uint64_t> writes{0};
    std::atomic<std::uint64_t> waits{0};
} counts;

}  // namespace

void* operator new(std::size_t size) {
    ++counts.allocations;
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

#pragma GCC visibility push(default)  // for sanitizers that are libraries
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names
extern "C" {

ssize_t __real_read(int fd, void* data, size_t size);
ssize_t __wrap_read(int fd, void* data, size_t size) {
    ++counts.reads;
    return __real_read(fd, data, size);
}

ssize_t __real_write(int fd, const void* data, size_t size);
ssize_t __wrap_write(int fd, const void* data, size_t size) {
    ++counts.writes;
    return __real_write(fd, data, size);
}

int __real_epoll_wait(int epoll, epoll_event* events, int most, int timeOut);
int __wrap_epoll_wait(int epoll, epoll_event* events, int most, int timeOut) {
    ++counts.waits;
    return __real_epoll_wait(epoll, events, most, timeOut);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
#pragma GCC visibility pop

namespace {

using vela::Manager;

constexpr int kProfiles = 255;  // of each technology

struct Cost {
    double allocations;
    double systemCalls;
    double messages;
};

/** An operation and the most that one of it may cost. */
struct Case {
    const char* name;
    std::function<void()> run;
    Cost most;
};

class Workload {
  public:
    Workload() {
        constant_modem::hold(kProfiles, kProfiles);
        manager.init(0, false);
        constant_modem::deliver();
        manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);
        vela::FilterProfileParams filter;
        filter.setFilterByTechType(vela::TechType::TECH_3GPP);
        filter.setFilterByProfileId(1);
        key = manager.filter(filter).front();
        missing.setApnName("missing");
        added.setApnName("internet");
    }

    std::vector<Case> cases() {
        // One write, two reads (until nothing is left) and one wait for each way to the worker.
        return {
            {"get", [this] { manager.getProfile(key); }, {13.1, 4, 0}},
            {"search", [this] { manager.filter(missing); }, {11.2, 4, 0}},
            {"add", [this] { manager.addProfile(added); }, {37, 8, 2}},
            {"refresh",
             [this] { manager.refresh(vela::PDCRefreshStatus::RefreshCompleted); },
             {12.0 * 2 * kProfiles, 4, 2 + 2 * kProfiles}},
            {"notice",
             [] { vela::log(vela::LogLevel::Notice, "%s", "longer than short"); },
             {1.1, 0, 0}},
            {"idle", [] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }, {0, 0, 0}},
        };
    }

  private:
    Manager manager;
    std::shared_ptr<vela::IProfileKey> key;
    vela::FilterProfileParams missing;
    vela::AddProfileParams added{false, vela::TechType::TECH_3GPP, false};
};

Cost total() {
    return {static_cast<double>(counts.allocations),
            static_cast<double>(counts.reads + counts.writes + counts.waits),
            static_cast<double>(constant_modem::messages())};
}

/** Prints what one of the operation costs, on average; false when that is too much. */
bool isWithin(const Case& operation) {
    constexpr int kTimes = 100;
    for (int i = 0; i < 2 * kTimes; ++i) {
        operation.run();  // until the log holds lines like these
    }
    const Cost before = total();
    for (int i = 0; i < kTimes; ++i) {
        operation.run();
    }
    const Cost after = total();
    const auto print = [&](double Cost::*part) {
        const double cost = (after.*part - before.*part) / kTimes;
        const bool isTooMuch = cost > operation.most.*part + 0.05;
        std::printf("  %8.1f%s", cost, isTooMuch ? "!" : " ");
        return !isTooMuch;
    };
    std::printf("%-8s", operation.name);
    const bool areWithin[] = {print(&Cost::allocations), print(&Cost::systemCalls),
                              print(&Cost::messages)};
    std::printf("\n");
    return areWithin[0] && areWithin[1] && areWithin[2];
}

}  // namespace

int main(int argc, char** argv) {
    Workload workload;
    bool areWithin = true;
    if (argc == 1) {
        std::printf("%-8s  %9s  %9s  %9s\n", "", "memory", "system", "modem");
    }
    for (const Case& operation : workload.cases()) {
        if (argc == 1) {
            areWithin = isWithin(operation) && areWithin;
        } else if (argc == 3 && std::strcmp(operation.name, argv[1]) == 0) {
            for (int times = std::atoi(argv[2]); times > 0; --times) {
                operation.run();
            }
        }
    }
    return areWithin ? EXIT_SUCCESS : EXIT_FAILURE;
}
