// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Explorer.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <sstream>

#include "Races.h"
#include "Scheduler.h"
#include "coherence/Apart.h"
#include "coherence/Shrink.h"

namespace schedules {

namespace {

using Switches = std::vector<Switch>;

constexpr std::chrono::seconds kPatience{10};

Execution* current = nullptr;

void runHere(const Script& script, Execution& execution) {
    current = &execution;
    std::atexit([] { current->isDone = true; });  // after the library's
    startWatching();
    Scheduler::instance().start(execution);
    script.run();
    execution.isDone = true;
}

/** The function that an address is in; empty when it has no name. */
std::string functionAt(const void* address) {
    Dl_info info{};
    if (address == nullptr || ::dladdr(address, &info) == 0 || info.dli_sname == nullptr) {
        return {};
    }
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status), &std::free);
    const std::string text = status == 0 ? name.get() : info.dli_sname;
    return text.substr(0, text.find('('));
}

/** The library's function that does the step, but for its wrappers of locks. */
std::string placeOf(const Execution::Step& step) {
    for (const auto* frame : step.frames) {
        const auto name = functionAt(frame);
        const auto isOf = [&](const char* part) { return name.find(part) != std::string::npos; };
        if (name.rfind("vela::", 0) == 0 && !isOf("Lock::") && !isOf("vela::Condition")) {
            return " in " + name;
        }
    }
    return {};
}

/** "decision:thread,decision:thread"; nothing is "none". */
std::string textOf(const Switches& switches) {
    std::string text;
    for (const auto& one : switches) {
        text += (text.empty() ? "" : ",") + std::to_string(one.decision) + ":" +
                std::to_string(one.thread);
    }
    return text.empty() ? "none" : text;
}

Switches switchesFrom(const std::string& text) {
    Switches switches;
    std::istringstream in(text);
    char sign = ',';
    for (Switch one{}; in >> one.decision >> sign >> one.thread;) {
        switches.push_back(one);
        in >> sign;
    }
    return switches;
}

/** Executes one script again and again, each time in a process of its own. */
class Explorer {
  public:
    Explorer(const Script& script, const Options& options) : script(script), options(options) {}

    bool passesAll();
    bool passesRandom();
    bool passes(const Switches& switches);
    void shorten();
    void report() const;
    std::uint64_t executions() const { return count; }
    /** The most decisions that an execution had. */
    std::uint32_t decisions() const { return longest; }

  private:
    bool execute();
    Switches taken() const;

    const Script& script;
    const Options& options;
    const coherence::Shared<Execution> execution;
    std::uint64_t count = 0;
    std::uint32_t longest = 1;
};

bool Explorer::execute() {
    ++count;
    std::fflush(stdout);  // which an execution may end, too
    execution->decisionCount = execution->stepCount = 0;
    execution->isDone = false;
    execution->failure.fill('\0');
    const auto end = coherence::runApart([this] { runHere(script, *execution); }, kPatience);
    if (!execution->isFailure()) {
        execution->fail(end.empty() && !execution->isDone ? "ends without a word" : end);
    }
    longest = std::max(longest, execution->decisionCount);
    return !execution->isFailure();
}

bool Explorer::passes(const Switches& switches) {
    execution->seed = 0;
    execution->switchCount = static_cast<std::uint32_t>(switches.size());
    std::copy(switches.begin(), switches.end(), execution->switches.begin());
    return execute();
}

/** Each schedule is one list of switches. What follows the last of them goes its usual way, and
 * every other way from there is a schedule to come. */
bool Explorer::passesAll() {
    std::vector<std::pair<Switches, unsigned>> plans{{{}, options.preemptions}};
    while (!plans.empty()) {
        const auto [switches, left] = std::move(plans.back());
        plans.pop_back();
        if (!passes(switches)) {
            return false;
        }
        const auto first = switches.empty() ? 0 : switches.back().decision + 1;
        for (auto i = first; i < execution->decisionCount; ++i) {
            const auto& decision = execution->decisions.at(i);
            const unsigned cost = decision.isPreemption ? 1 : 0;
            for (std::uint32_t thread = 0; thread < Scheduler::kMostThreads; ++thread) {
                const bool isPossible = (decision.possible >> thread & 1U) != 0;
                if (isPossible && thread != decision.usual && cost <= left) {
                    plans.emplace_back(switches, left - cost);
                    plans.back().first.push_back({i, thread});
                }
            }
        }
    }
    return true;
}

/** Priorities, and where they change, follow from the seed. */
bool Explorer::passesRandom() {
    for (auto seed = options.first; seed < options.first + options.seeds; ++seed) {
        velasim::Random random(seed);
        execution->seed = seed;
        execution->switchCount = 0;
        execution->changeCount = options.depth - 1;
        for (auto& change : execution->changes) {
            change = static_cast<std::uint32_t>(random.below(longest));
        }
        if (!execute()) {
            std::printf("random priorities of seed %s:\n", std::to_string(seed).c_str());
            return false;
        }
    }
    return true;
}

Switches Explorer::taken() const {
    Switches switches;
    for (std::uint32_t i = 0; i < execution->decisionCount; ++i) {
        const auto& decision = execution->decisions.at(i);
        if (decision.chosen != decision.usual) {
            switches.push_back({i, decision.chosen});
        }
    }
    return switches;
}

void Explorer::shorten() {
    passes(coherence::shrink(taken(), [this](const auto& some) { return !passes(some); }));
}

void Explorer::report() const {
    const auto switches = taken();
    std::printf("%s: %s\nthe schedule, with %zu switches:\n", script.name,
                execution->isFailure() ? execution->failure.data() : "passes", switches.size());
    const char* last = "";
    for (std::uint32_t i = 0; i < execution->stepCount; ++i) {
        const auto& step = execution->steps.at(i);
        if (step.thread != last) {
            std::printf("  %s\n", step.thread);
        }
        std::printf("    %u. %s%s\n", i + 1, step.action, placeOf(step).c_str());
        last = step.thread;
    }
    std::printf("replay: ./dev schedules --script %s --replay %s\n", script.name,
                textOf(switches).c_str());
}

}  // namespace

bool explore(const Script& script, const Options& options) {
    Explorer explorer(script, options);
    if (!options.replay.empty()) {
        const bool isGood = explorer.passes(switchesFrom(options.replay));
        explorer.report();
        return isGood;
    }
    const auto begin = std::time(nullptr);
    const bool isGood = explorer.passesAll();
    const auto all = explorer.executions();
    if (!isGood || !explorer.passesRandom()) {
        explorer.shorten();
        explorer.report();
        return false;
    }
    std::printf(
        "%-24s %s schedules with up to %u preemptions, %s random ones, up to %u decisions: "
        "passes in %ld s\n",
        script.name, std::to_string(all).c_str(), options.preemptions,
        std::to_string(options.seeds).c_str(), explorer.decisions(),
        static_cast<long>(std::time(nullptr) - begin));
    return true;
}

}  // namespace schedules
