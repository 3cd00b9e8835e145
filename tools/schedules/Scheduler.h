// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <semaphore.h>
#include <velasim/Random.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "coherence/Runs.h"

namespace schedules {

/** At a decision, another thread than the one that would run anyway. */
struct Switch {
    std::uint32_t decision;
    std::uint32_t thread;
};

/** One execution of a script, in memory that it shares with who started it. */
struct Execution : coherence::Verdict {
    static constexpr std::size_t kMost = 4096;

    // The plan: these switches, and if there is a seed, random priorities, of which at some
    // decisions the highest becomes the lowest.
    std::uint32_t switchCount;
    std::array<Switch, kMost> switches;
    std::uint64_t seed;
    std::uint32_t changeCount;
    std::array<std::uint32_t, 8> changes;

    struct Decision {
        std::uint32_t possible;  // a bit for each thread
        std::uint32_t usual;
        std::uint32_t chosen;
        bool isPreemption;  // for any other than the usual thread
    };
    struct Step {
        const char* thread;
        const char* action;
        std::array<const void*, 6> frames;  // addresses in functions, the innermost first
    };

    // What came of it.
    std::uint32_t decisionCount;
    std::array<Decision, kMost> decisions;
    std::uint32_t stepCount;
    std::array<Step, kMost> steps;
    bool isDone;
};

// What happened before what, for the thread that runs (Races.cpp). Switching before operations on
// locks and the like shows all there is to see only if everything else is ordered by them; so the
// library is compiled to report each access, and one that is not ordered after a conflicting one
// fails.

/** All that was released to `object` happened before what follows. */
void acquire(const void* object);

/** What went before happens before who acquires from `object`. */
void release(const void* object);

/** From now on memory is never used twice, and what was freed is spoilt. */
void startWatching();

/** Whether a thread that wants to go on could; empty: always. */
using Condition = std::function<bool()>;

/**
 * Lets one thread of the process run at a time. A thread comes to a point before each operation
 * that others could notice; there the plan of the execution decides who is next. Time stands still,
 * but for waits that end when nothing else can happen.
 */
class Scheduler {
  public:
    using Time = std::int64_t;  // nanoseconds
    static constexpr Time kNever = std::numeric_limits<Time>::max();
    static constexpr std::size_t kMostThreads = 8;

    static Scheduler& instance();

    /** The calling thread becomes the first one. */
    void start(Execution& plan);
    bool isRunning() const { return execution != nullptr; }

    /** While on, the plan decides; otherwise the running thread goes on as long as it can. */
    void explore(bool on);
    /** From then on races are looked for, too. */
    bool hasExplored() const { return isPrepared; }

    /** The running thread is about to do `action`, as soon as `isPossible`. Returns when it is its
     * turn, or at the deadline, if nothing else can happen before. */
    void point(const char* action, const void* caller, const Condition& isPossible = {},
               Time deadline = kNever);

    /** A thread that is about to be made: its number. */
    std::size_t announce();
    /** On that thread: waits for its first turn, and gives up its last. */
    void enter(std::size_t thread);
    void leave();
    bool hasLeft(std::size_t thread) const { return threads.at(thread).hasLeft; }
    /** What the next thread that is made is called. */
    void nameNext(const char* name) { nextName = name; }

    std::size_t self() const { return running; }
    Time now() const { return time; }

    /** Ends the process: the execution has failed. */
    [[noreturn]] void fail(const std::string& text);

    // The functions that the running thread is in, by addresses in their callers.
    void enterFunction(const void* caller) { threads[running].calls.push_back(caller); }
    void leaveFunction() { threads[running].calls.pop_back(); }

  private:
    struct Thread {
        const char* name = "main";
        sem_t turn{};
        const Condition* isPossible = nullptr;  // while it waits for its turn
        Time deadline = kNever;
        bool isLate = false;
        bool hasLeft = false;
        std::uint64_t priority = 0;
        const char* action = "starts";
        std::vector<const void*> calls;
    };

    std::uint32_t runnable() const;
    bool letTimePass();
    std::size_t next();
    std::uint32_t byPriority(std::uint32_t possible);
    void note(const Thread& thread, const void* caller);
    void handOver(std::size_t thread);

    Execution* execution = nullptr;
    bool isExploring = false;
    bool isPrepared = false;
    std::array<Thread, kMostThreads> threads;  // does not move: new threads wait in it already
    std::size_t threadCount = 0;
    std::size_t running = 0;
    const char* nextName = nullptr;
    std::size_t workers = 0;
    Time time = 1'000'000'000;
    velasim::Random random{0};
};

/** A small program of a few threads, whose schedules are explored. */
struct Script {
    const char* name;
    void (*run)();
};

const std::vector<Script>& allScripts();

}  // namespace schedules
