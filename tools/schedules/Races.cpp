// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The functions that a compiler calls from code that it was asked to watch for races, and the end
// of memory, which is never used twice.

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "Scheduler.h"

namespace schedules {

namespace {

/** How far each thread had come when something was known of it. */
using Clock = std::array<std::uint16_t, Scheduler::kMostThreads>;

/** The latest accesses to one place. */
struct Cell {
    std::uintptr_t place;
    std::uint16_t writer;
    std::uint16_t written;
    Clock read;
};

// Places that fall together forget one another: a race may be missed, none is invented.
constexpr std::size_t kCells = 1U << 13U;
constexpr std::ptrdiff_t kOwnStack = 1 << 18;
constexpr int kSpoilt = 0xDB;

bool isWatching = false;
std::array<Cell, kCells> cells;
std::array<Clock, Scheduler::kMostThreads> clocks;

/** By object; never destroyed. */
std::unordered_map<const void*, Clock>& releases() {
    static auto* const map = new std::unordered_map<const void*, Clock>;
    return *map;
}

Clock& ownClock() {
    return clocks.at(Scheduler::instance().self());
}

void join(Clock& clock, const Clock& other) {
    std::transform(clock.begin(), clock.end(), other.begin(), clock.begin(),
                   [](auto one, auto two) { return std::max(one, two); });
}

bool isOrdered(const Cell& cell, bool isWrite) {
    const auto& clock = ownClock();
    return cell.written <= clock.at(cell.writer) &&
           (!isWrite || std::equal(cell.read.begin(), cell.read.end(), clock.begin(),
                                   [](auto read, auto known) { return read <= known; }));
}

void touch(std::uintptr_t place, bool isWrite) {
    auto& cell = cells[(place ^ (place >> 13U)) % kCells];
    if (cell.place != place) {
        cell = {place, 0, 0, {}};
    }
    if (!isOrdered(cell, isWrite)) {
        auto& scheduler = Scheduler::instance();
        scheduler.point("touches what another thread touches", nullptr);
        scheduler.fail("two threads touch the same memory, and nothing orders them");
    }
    const auto self = static_cast<std::uint16_t>(Scheduler::instance().self());
    if (isWrite) {
        cell = {place, self, ownClock()[self], {}};
    } else {
        cell.read[self] = ownClock()[self];
    }
}

void access(const volatile void* address, std::size_t size, bool isWrite) {
    constexpr std::size_t kWord = 8;
    const auto* begin = static_cast<const volatile char*>(address);
    const auto* here = static_cast<const char*>(__builtin_frame_address(0));
    if (!Scheduler::instance().hasExplored() || (begin > here && begin < here + kOwnStack)) {
        return;
    }
    for (std::size_t i = 0; i < size; i += kWord) {
        touch(reinterpret_cast<std::uintptr_t>(begin + i), isWrite);
    }
}

/** What an atomic operation works on; it is ordered after those that it may have seen. */
template <typename Type>
Type* at(const volatile void* place, int order) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): loads tell of constant places
    auto* object = static_cast<Type*>(const_cast<void*>(place));
    if (order != __ATOMIC_RELAXED) {
        acquire(object);
        release(object);
    }
    return object;
}

}  // namespace

void acquire(const void* object) {
    if (isWatching) {
        join(ownClock(), releases()[object]);
    }
}

void release(const void* object) {
    if (isWatching) {
        join(releases()[object], ownClock());
        ++ownClock()[Scheduler::instance().self()];
    }
}

void startWatching() {
    for (std::size_t i = 0; i < clocks.size(); ++i) {
        clocks.at(i).at(i) = 1;
    }
    isWatching = true;
}

}  // namespace schedules

// ---- Memory

// NOLINTNEXTLINE(misc-new-delete-overloads): the usual new goes with it
void operator delete(void* block) noexcept {
    if (!schedules::isWatching || block == nullptr) {
        std::free(block);
        return;
    }
    schedules::access(block, 1, true);
    std::memset(block, schedules::kSpoilt, malloc_usable_size(block));
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    operator delete(block);
}

// ---- Accesses

// NOLINTBEGIN(*-reserved-identifier, readability-identifier-naming, bugprone-macro-parentheses)
#define VELA_ACCESS(size)                      \
    void __tsan_read##size(void* place) {      \
        schedules::access(place, size, false); \
    }                                          \
    void __tsan_write##size(void* place) {     \
        schedules::access(place, size, true);  \
    }

#define VELA_CHANGE(bits, Type, change)                                                       \
    Type __tsan_atomic##bits##_##change(volatile void* place, Type value, int order) {        \
        return __atomic_##change(schedules::at<Type>(place, order), value, __ATOMIC_SEQ_CST); \
    }

#define VELA_ATOMIC(bits, Type)                                                              \
    VELA_CHANGE(bits, Type, fetch_add)                                                       \
    VELA_CHANGE(bits, Type, fetch_sub)                                                       \
    VELA_CHANGE(bits, Type, fetch_or)                                                        \
    VELA_CHANGE(bits, Type, fetch_and)                                                       \
    Type __tsan_atomic##bits##_load(const volatile void* place, int order) {                 \
        return __atomic_load_n(schedules::at<Type>(place, order), __ATOMIC_SEQ_CST);         \
    }                                                                                        \
    void __tsan_atomic##bits##_store(volatile void* place, Type value, int order) {          \
        __atomic_store_n(schedules::at<Type>(place, order), value, __ATOMIC_SEQ_CST);        \
    }                                                                                        \
    int __tsan_atomic##bits##_compare_exchange_weak(volatile void* place, void* expected,    \
                                                    Type value, int order, int /*failed*/) { \
        const bool isDone = __atomic_compare_exchange_n(                                     \
            schedules::at<Type>(place, order), static_cast<Type*>(expected), value, false,   \
            __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);                                             \
        return isDone ? 1 : 0;                                                               \
    }

extern "C" {

void __tsan_init() {}
void __tsan_func_entry(void* caller) {
    schedules::Scheduler::instance().enterFunction(caller);
}
void __tsan_func_exit(void* /*caller*/) {
    schedules::Scheduler::instance().leaveFunction();
}
void __tsan_vptr_update(void* /*place*/, void* /*value*/) {}
void __tsan_read_range(void* place, std::size_t size) {
    schedules::access(place, size, false);
}
void __tsan_write_range(void* place, std::size_t size) {
    schedules::access(place, size, true);
}
VELA_ACCESS(1)
VELA_ACCESS(2)
VELA_ACCESS(4)
VELA_ACCESS(8)
VELA_ACCESS(16)
VELA_ATOMIC(8, std::uint8_t)
VELA_ATOMIC(32, std::uint32_t)
VELA_ATOMIC(64, std::uint64_t)

}  // extern "C"
// NOLINTEND(*-reserved-identifier, readability-identifier-naming, bugprone-macro-parentheses)
