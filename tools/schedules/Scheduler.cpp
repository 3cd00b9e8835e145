// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Scheduler.h"

#include <unistd.h>

#include <algorithm>
#include <bit>
#include <utility>

namespace schedules {

namespace {

constexpr std::uint64_t kUsualPriority = std::uint64_t{1} << 32U;

bool isIn(std::size_t thread, std::uint32_t set) {
    return (set >> thread & 1U) != 0;
}

}  // namespace

Scheduler& Scheduler::instance() {
    static auto* const scheduler = new Scheduler;  // for threads that outlive main()
    return *scheduler;
}

void Scheduler::start(Execution& plan) {
    random = velasim::Random(plan.seed);
    nextName = "main";
    announce();
    execution = &plan;
}

void Scheduler::explore(bool on) {
    isExploring = on;
    isPrepared = true;
}

std::size_t Scheduler::announce() {
    if (threadCount == kMostThreads) {
        fail("too many threads");
    }
    auto& thread = threads.at(threadCount);
    thread.name = std::exchange(nextName, nullptr);
    if (thread.name == nullptr) {  // the library's own
        thread.name = ++workers > 1 ? "second worker" : "worker";
    }
    thread.priority = kUsualPriority + random.below(kUsualPriority);
    ::sem_init(&thread.turn, 0, 0);
    return threadCount++;
}

void Scheduler::enter(std::size_t thread) {
    while (::sem_wait(&threads.at(thread).turn) != 0) {
    }
}

void Scheduler::leave() {
    threads.at(running).hasLeft = true;
    handOver(next());
}

void Scheduler::point(const char* action, const void* caller, const Condition& isPossible,
                      Time deadline) {
    if (!isRunning()) {
        return;
    }
    const auto self = running;
    auto& thread = threads.at(self);
    thread.isPossible = &isPossible;
    thread.deadline = deadline;
    thread.isLate = false;
    thread.action = action;
    if (const auto chosen = next(); chosen != self) {
        handOver(chosen);
        enter(self);
    }
    thread.isPossible = nullptr;
    note(thread, caller);
}

void Scheduler::handOver(std::size_t thread) {
    running = thread;
    ::sem_post(&threads.at(thread).turn);
}

std::uint32_t Scheduler::runnable() const {
    std::uint32_t possible = 0;
    for (std::size_t i = 0; i < threadCount; ++i) {
        const auto& thread = threads.at(i);
        const auto* isPossible = thread.isPossible;
        const bool canRun =
            thread.isLate || isPossible == nullptr || !*isPossible || (*isPossible)();
        possible |= (canRun && !thread.hasLeft ? 1U : 0U) << i;
    }
    return possible;
}

/** Ends the wait that would end first. */
bool Scheduler::letTimePass() {
    const auto end = [](const Thread& thread) { return thread.hasLeft ? kNever : thread.deadline; };
    auto* first = std::min_element(
        threads.begin(), threads.end(),
        [&](const Thread& one, const Thread& other) { return end(one) < end(other); });
    if (end(*first) == kNever) {
        return false;
    }
    time = std::max(time, std::exchange(first->deadline, kNever));
    first->isLate = true;
    return true;
}

/** Who can go on, and of those whom the plan says. */
std::size_t Scheduler::next() {
    auto possible = runnable();
    if (possible == 0 && letTimePass()) {
        possible = runnable();
    }
    if (possible == 0) {
        std::string text = "nobody can go on; next would be: ";
        for (std::size_t i = 0; i < threadCount; ++i) {
            const auto& thread = threads.at(i);
            text += thread.hasLeft ? "" : std::string(thread.name) + " " + thread.action + "; ";
        }
        fail(text);
    }
    const bool canGoOn = isIn(running, possible);
    const auto usual = canGoOn ? static_cast<std::uint32_t>(running)
                               : static_cast<std::uint32_t>(std::countr_zero(possible));
    if (!isExploring || std::has_single_bit(possible)) {
        return usual;
    }
    const auto index = execution->decisionCount++;
    if (index >= Execution::kMost) {
        fail("no end in sight");
    }
    auto chosen = execution->seed != 0 ? byPriority(possible) : usual;
    for (std::size_t i = 0; i < execution->switchCount; ++i) {
        const auto& one = execution->switches.at(i);
        chosen = one.decision == index && isIn(one.thread, possible) ? one.thread : chosen;
    }
    execution->decisions.at(index) = {possible, usual, chosen, canGoOn};
    return chosen;
}

std::uint32_t Scheduler::byPriority(std::uint32_t possible) {
    const auto highest = [&] {
        auto best = static_cast<std::uint32_t>(std::countr_zero(possible));
        for (std::uint32_t i = best; i < threadCount; ++i) {
            best =
                isIn(i, possible) && threads.at(i).priority > threads.at(best).priority ? i : best;
        }
        return best;
    };
    for (std::uint32_t i = 0; i < execution->changeCount; ++i) {
        if (execution->changes.at(i) == execution->decisionCount - 1) {
            threads.at(highest()).priority = execution->changeCount - i;
        }
    }
    return highest();
}

void Scheduler::note(const Thread& thread, const void* caller) {
    if (!isExploring || execution->stepCount >= Execution::kMost) {
        return;
    }
    auto& step = execution->steps.at(execution->stepCount++);
    step = {thread.name, thread.isLate ? "gives up waiting" : thread.action, {caller}};
    for (std::size_t i = 1; i < step.frames.size() && i <= thread.calls.size(); ++i) {
        step.frames.at(i) = thread.calls[thread.calls.size() - i];
    }
}

void Scheduler::fail(const std::string& text) {
    execution->fail(text);
    ::_exit(0);
}

}  // namespace schedules
