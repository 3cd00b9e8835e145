// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The system's primitives, as the library and the C++ runtime find them in this program: each comes
// to a point of the scheduler first. Locks and conditions are kept in their own memory and never
// reach the system; descriptors do.
#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <vector>

#include "LocalLogBuffer.h"
#include "Scheduler.h"

namespace {

using schedules::Scheduler;

Scheduler& scheduler() {
    return Scheduler::instance();
}

// ---- Locks: who holds it, 0 for nobody

std::array<int, Scheduler::kMostThreads> locksHeld{};

int& holderOf(pthread_mutex_t* mutex) {
    return mutex->__data.__owner;
}

/** Lines commute: nobody notices whose comes first, so nobody is stopped before or within one. */
bool isLogs(const void* lock) {
    static const auto* const buffer = &vela::LocalLogBuffer::getInstance();
    return lock >= buffer && lock < buffer + 1;
}

int unlock(pthread_mutex_t* mutex) {
    if (scheduler().isRunning() && holderOf(mutex) != static_cast<int>(scheduler().self()) + 1) {
        scheduler().fail("a mutex is released by a thread that does not hold it");
    }
    schedules::release(mutex);
    holderOf(mutex) = 0;
    --locksHeld.at(scheduler().self());
    return 0;
}

void lock(pthread_mutex_t* mutex) {
    holderOf(mutex) = static_cast<int>(scheduler().self()) + 1;
    ++locksHeld.at(scheduler().self());
    schedules::acquire(mutex);
}

// ---- Conditions: who waits, in order

struct Waiter {
    const pthread_cond_t* condition;
    bool isNotified;
};
std::vector<Waiter*> waiters;

int wait(pthread_cond_t* condition, pthread_mutex_t* mutex, Scheduler::Time deadline,
         const void* caller) {
    scheduler().point("is about to wait", caller);
    Waiter waiter{condition, false};
    waiters.push_back(&waiter);
    unlock(mutex);
    const auto canLock = [&] { return holderOf(mutex) == 0; };
    scheduler().point(
        "wakes up", caller, [&] { return waiter.isNotified && canLock(); }, deadline);
    std::erase(waiters, &waiter);
    if (!canLock()) {
        scheduler().point("takes its lock again", caller, canLock);
    }
    lock(mutex);
    return waiter.isNotified ? 0 : ETIMEDOUT;
}

int notify(const pthread_cond_t* condition, bool isForAll, const void* caller) {
    if (locksHeld.at(scheduler().self()) == 0) {  // else its waiters have to wait on
        scheduler().point("notifies", caller);
    }
    for (auto* waiter : waiters) {
        if (waiter->condition == condition && !waiter->isNotified) {
            waiter->isNotified = true;
            if (!isForAll) {
                break;
            }
        }
    }
    return 0;
}

// ---- Threads

using Routine = void* (*)(void* argument);

struct Start {
    Routine routine;
    void* argument;
    pthread_t thread;
};
std::array<Start, Scheduler::kMostThreads> starts;

void* run(void* argument) {
    const auto& start = *static_cast<Start*>(argument);
    scheduler().enter(static_cast<std::size_t>(&start - starts.data()));
    schedules::acquire(&start);
    void* result = start.routine(start.argument);
    schedules::release(&start);
    scheduler().leave();
    return result;
}

template <typename Function>
Function systems(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

/** What stands for a descriptor where things are ordered. */
const void* objectOf(int fd) {
    static std::array<char, 1024> objects;
    return &objects.at(static_cast<std::size_t>(fd));
}

}  // namespace

extern "C" {

int pthread_mutex_lock(pthread_mutex_t* mutex) {
    if (holderOf(mutex) < 0) {
        scheduler().fail("a thread comes to a lock in memory that was given back");
    }
    if (!isLogs(mutex)) {
        scheduler().point("takes a lock", __builtin_return_address(0),
                          [=] { return holderOf(mutex) == 0; });
    }
    lock(mutex);
    return 0;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) {
    return unlock(mutex);
}

// Only the log has such a lock, and nobody is stopped while he holds it.

int pthread_rwlock_rdlock(pthread_rwlock_t* lock) {
    schedules::acquire(lock);
    return 0;
}

int pthread_rwlock_wrlock(pthread_rwlock_t* lock) {
    scheduler().point("takes the log's lock", __builtin_return_address(0));
    schedules::acquire(lock);
    return 0;
}

int pthread_rwlock_unlock(pthread_rwlock_t* lock) {
    schedules::release(lock);
    return 0;
}

int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    return wait(condition, mutex, Scheduler::kNever, __builtin_return_address(0));
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t /*clock*/,
                           const timespec* deadline) {
    return wait(condition, mutex, deadline->tv_sec * 1'000'000'000 + deadline->tv_nsec,
                __builtin_return_address(0));
}

int pthread_cond_signal(pthread_cond_t* condition) {
    return notify(condition, false, __builtin_return_address(0));
}

int pthread_cond_broadcast(pthread_cond_t* condition) {
    return notify(condition, true, __builtin_return_address(0));
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, Routine routine,
                   void* argument) {
    static const auto create = systems<decltype(&pthread_create)>("pthread_create");
    auto& start = starts.at(scheduler().announce());
    start = {routine, argument, {}};
    schedules::release(&start);
    const int result = create(thread, attributes, run, &start);
    start.thread = *thread;
    return result;
}

int pthread_join(pthread_t thread, void** result) {
    static const auto join = systems<decltype(&pthread_join)>("pthread_join");
    const auto start = std::find_if(starts.rbegin(), starts.rend(), [=](const Start& one) {
        return one.routine != nullptr && one.thread == thread;  // the latest of that handle
    });
    scheduler().point("waits for the end of a thread", __builtin_return_address(0), [=] {
        return scheduler().hasLeft(static_cast<std::size_t>(&*start - starts.data()));
    });
    schedules::acquire(&*start);
    return join(thread, result);
}

ssize_t read(int fd, void* buffer, std::size_t size) {
    scheduler().point("reads a descriptor", __builtin_return_address(0));
    return ::syscall(SYS_read, fd, buffer, size);
}

ssize_t write(int fd, const void* data, std::size_t size) {
    scheduler().point("writes to a descriptor", __builtin_return_address(0));
    schedules::release(objectOf(fd));
    return ::syscall(SYS_write, fd, data, size);
}

int epoll_wait(int fd, epoll_event* events, int most, int /*timeout*/) {
    scheduler().point("waits for events", __builtin_return_address(0), [=] {
        pollfd one{fd, POLLIN, 0};
        return ::poll(&one, 1, 0) > 0;
    });
    const auto count =
        static_cast<int>(::syscall(SYS_epoll_pwait, fd, events, most, 0, nullptr, 8));
    for (int i = 0; i < count; ++i) {
        schedules::acquire(objectOf(events[i].data.fd));
    }
    return count;
}

int clock_gettime(clockid_t clock, timespec* result) {
    if (clock != CLOCK_MONOTONIC) {
        return static_cast<int>(::syscall(SYS_clock_gettime, clock, result));
    }
    constexpr Scheduler::Time kSecond = 1'000'000'000;
    *result = {scheduler().now() / kSecond, scheduler().now() % kSecond};
    return 0;
}

// A static object of a function, which threads may come to at the same time.

int beginStatic(char* guard) asm("__cxa_guard_acquire");
int beginStatic(char* guard) {
    constexpr int kBusy = 1;
    scheduler().point("comes to a static object", __builtin_return_address(0),
                      [=] { return guard[kBusy] == 0; });
    schedules::acquire(guard);
    if (guard[0] != 0) {
        return 0;
    }
    guard[kBusy] = 1;
    return 1;
}

void endStatic(char* guard) asm("__cxa_guard_release");
void endStatic(char* guard) {
    schedules::release(guard);
    guard[0] = 1;
    guard[1] = 0;
}

}  // extern "C"
