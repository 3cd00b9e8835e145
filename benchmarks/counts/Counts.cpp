// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What operations cost in things that can be counted, whatever the machine does meanwhile:
// allocations, system calls and messages to the modem, and the memory of a cached profile. Fails
// when one costs more than it may.
//
// usage: vela_counts [OPERATION TIMES]
//
// With arguments it only carries out one operation so often, for a tool that counts instructions;
// the operation "start" once or not at all.
#include <malloc.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
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
    std::atomic<std::uint64_t> bytes{0};  // in use
    std::atomic<std::uint64_t> systemCalls{0};
} counts;

}  // namespace

void* operator new(std::size_t size) {
    ++counts.allocations;
    if (void* memory = std::malloc(size)) {
        counts.bytes += malloc_usable_size(memory);
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    counts.bytes -= malloc_usable_size(memory);
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    ::operator delete(memory);
}

#pragma GCC visibility push(default)  // for sanitizers that are libraries
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names
extern "C" {

ssize_t __real_read(int fd, void* data, size_t size);
ssize_t __wrap_read(int fd, void* data, size_t size) {
    ++counts.systemCalls;
    return __real_read(fd, data, size);
}

ssize_t __real_write(int fd, const void* data, size_t size);
ssize_t __wrap_write(int fd, const void* data, size_t size) {
    ++counts.systemCalls;
    return __real_write(fd, data, size);
}

int __real_epoll_wait(int epoll, epoll_event* events, int most, int timeOut);
int __wrap_epoll_wait(int epoll, epoll_event* events, int most, int timeOut) {
    ++counts.systemCalls;
    return __real_epoll_wait(epoll, events, most, timeOut);
}

int __real_epoll_create1(int flags);
int __wrap_epoll_create1(int flags) {
    ++counts.systemCalls;
    return __real_epoll_create1(flags);
}

int __real_epoll_ctl(int epoll, int operation, int fd, epoll_event* event);
int __wrap_epoll_ctl(int epoll, int operation, int fd, epoll_event* event) {
    ++counts.systemCalls;
    return __real_epoll_ctl(epoll, operation, fd, event);
}

int __real_eventfd(unsigned int count, int flags);
int __wrap_eventfd(unsigned int count, int flags) {
    ++counts.systemCalls;
    return __real_eventfd(count, flags);
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
    /** The library's start, until it has answered for the first time: there is nothing yet. */
    Workload() {
        manager.init(0, false);
        constant_modem::deliver();
        missing.setApnName("missing");
        manager.filter(missing);
    }

    /** Has it read so many profiles of each technology. */
    void load(int profiles) {
        constant_modem::hold(profiles, profiles);
        manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    }

    /** Finds what operations are about. */
    void prepare() {
        load(kProfiles);
        vela::FilterProfileParams filter;
        filter.setFilterByTechType(vela::TechType::TECH_3GPP);
        filter.setFilterByProfileId(1);
        key = manager.filter(filter).front();
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
    return {static_cast<double>(counts.allocations), static_cast<double>(counts.systemCalls),
            static_cast<double>(constant_modem::messages())};
}

bool print(double cost, double most) {
    const bool isTooMuch = cost > most + 0.05;
    std::printf("  %8.1f%s", cost, isTooMuch ? "!" : " ");
    return !isTooMuch;
}

/** Prints what one of something costs, on average; false when that is too much. */
bool isWithin(const char* name, const Cost& before, int times, const Cost& most) {
    const Cost after = total();
    std::printf("%-8s", name);
    bool areWithin = true;
    for (double Cost::*const part : {&Cost::allocations, &Cost::systemCalls, &Cost::messages}) {
        areWithin = print((after.*part - before.*part) / times, most.*part) && areWithin;
    }
    std::printf("\n");
    return areWithin;
}

bool isWithin(const Case& operation) {
    constexpr int kTimes = 100;
    for (int i = 0; i < 2 * kTimes; ++i) {
        operation.run();  // until the log holds lines like these
    }
    const Cost before = total();
    for (int i = 0; i < kTimes; ++i) {
        operation.run();
    }
    return isWithin(operation.name, before, kTimes, operation.most);
}

/** What is in use with so many profiles of each technology, and the same lines in the log. */
double bytesWith(Workload& workload, int profiles) {
    workload.load(profiles);
    for (int line = 0; line < 250; ++line) {
        vela::log(vela::LogLevel::Notice, "%s", "longer than short");
    }
    return static_cast<double>(counts.bytes);
}

/** Prints the memory of one cached profile, with a name of 25 letters and little else. */
bool isProfileWithin(double most) {
    Workload workload;
    const double none = bytesWith(workload, 0);
    const double all = bytesWith(workload, kProfiles);
    std::printf("%-8s", "bytes");
    const bool isWithin = print((all - none) / (2 * kProfiles), most);
    std::printf("\n");
    return isWithin;
}

int countAll() {
    std::printf("%-8s  %9s  %9s  %9s\n", "", "memory", "system", "modem");
    const Cost before = total();
    Workload workload;
    bool areWithin = isWithin("start", before, 1, {58, 21, 3});
    workload.prepare();
    for (const Case& operation : workload.cases()) {
        areWithin = isWithin(operation) && areWithin;
    }
    areWithin = isProfileWithin(377) && areWithin;
    return areWithin ? EXIT_SUCCESS : EXIT_FAILURE;
}

void carryOut(const char* name, int times) {
    const bool isStart = std::strcmp(name, "start") == 0;
    if (isStart && times == 0) {
        return;
    }
    Workload workload;
    if (isStart) {
        return;
    }
    workload.prepare();
    for (const Case& operation : workload.cases()) {
        if (std::strcmp(operation.name, name) == 0) {
            for (int i = 0; i < times; ++i) {
                operation.run();
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 1) {
        return countAll();
    }
    if (argc == 3) {
        carryOut(argv[1], std::atoi(argv[2]));
    }
    return EXIT_SUCCESS;
}
