// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Locks whose use a compiler can check: what a lock guards and which function needs it is said in
// the declarations. Compilers without that analysis see ordinary mutexes.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <shared_mutex>

#if defined(__has_attribute) && __has_attribute(capability)
#define VELA_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define VELA_THREAD_SAFETY(attribute)
#endif

/** Of a member: it is read and written under this lock only. */
#define VELA_GUARDED_BY(lock) VELA_THREAD_SAFETY(guarded_by(lock))
/** Of a function: its caller holds this lock. */
#define VELA_REQUIRES(lock) VELA_THREAD_SAFETY(requires_capability(lock))
/** Of a function: its caller does not hold this lock. */
#define VELA_EXCLUDES(lock) VELA_THREAD_SAFETY(locks_excluded(lock))
/** Of a lock: where both are held, it is taken before that one. */
#define VELA_ACQUIRED_BEFORE(lock) VELA_THREAD_SAFETY(acquired_before(lock))

namespace vela {

class VELA_THREAD_SAFETY(capability("mutex")) Mutex {
  public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

  private:
    friend class MutexLock;
    std::mutex mutex;
};

/** Holds a mutex for a scope. */
class VELA_THREAD_SAFETY(scoped_lockable) MutexLock {
  public:
    explicit MutexLock(Mutex& mutex) VELA_THREAD_SAFETY(acquire_capability(mutex))
        : lock(mutex.mutex) {}
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    ~MutexLock() VELA_THREAD_SAFETY(release_capability()) = default;

  private:
    friend class Condition;
    std::unique_lock<std::mutex> lock;
};

/** Something that threads wait for, under the mutex that guards it. */
class Condition {
  public:
    /** May return early: call it in a loop that asks for what is waited for. */
    void wait(MutexLock& lock) { condition.wait(lock.lock); }
    /** False when the deadline came first; the latest of all stands for none. */
    bool waitUntil(MutexLock& lock, std::chrono::steady_clock::time_point deadline) {
        if (deadline == std::chrono::steady_clock::time_point::max()) {
            wait(lock);
            return true;
        }
        return condition.wait_until(lock.lock, deadline) == std::cv_status::no_timeout;
    }
    void notifyOne() { condition.notify_one(); }
    void notifyAll() { condition.notify_all(); }

  private:
    std::condition_variable condition;
};

/** A mutex that readers share. */
class VELA_THREAD_SAFETY(capability("mutex")) SharedMutex {
  public:
    SharedMutex() = default;
    SharedMutex(const SharedMutex&) = delete;
    SharedMutex& operator=(const SharedMutex&) = delete;

  private:
    friend class SharedLock;
    friend class ExclusiveLock;
    std::shared_mutex mutex;
};

class VELA_THREAD_SAFETY(scoped_lockable) SharedLock {
  public:
    explicit SharedLock(SharedMutex& mutex) VELA_THREAD_SAFETY(acquire_shared_capability(mutex))
        : lock(mutex.mutex) {}
    SharedLock(const SharedLock&) = delete;
    SharedLock& operator=(const SharedLock&) = delete;
    ~SharedLock() VELA_THREAD_SAFETY(release_capability()) = default;

  private:
    const std::shared_lock<std::shared_mutex> lock;
};

class VELA_THREAD_SAFETY(scoped_lockable) ExclusiveLock {
  public:
    explicit ExclusiveLock(SharedMutex& mutex) VELA_THREAD_SAFETY(acquire_capability(mutex))
        : lock(mutex.mutex) {}
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;
    ~ExclusiveLock() VELA_THREAD_SAFETY(release_capability()) = default;

  private:
    const std::unique_lock<std::shared_mutex> lock;
};

}  // namespace vela
