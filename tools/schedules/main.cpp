// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <cxxabi.h>
#include <dlfcn.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "Scheduler.h"
#include "coherence/Runs.h"

namespace {

using schedules::Execution;
using schedules::Scheduler;
using schedules::Script;
using schedules::Switch;
using Switches = std::vector<Switch>;

constexpr std::chrono::seconds kPatience{10};

struct Options {
    unsigned preemptions = 2;
    std::uint64_t seeds = 10'000;
    std::uint64_t first = 1;
    unsigned depth = 3;
    std::string replay;  // instead of all that
};

Execution* current = nullptr;

void runHere(const Script& script, Execution& execution) {
    current = &execution;
    std::atexit([] { current->isDone = true; });  // after the library's
    schedules::startWatching();
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

/** From "decision:thread,decision:thread"; anything else is none. */
Switches switchesFrom(const std::string& text) {
    Switches switches;
    std::istringstream in(text);
    char sign = ',';
    for (Switch one{}; in >> one.decision >> sign >> one.thread; in >> sign) {
        switches.push_back(one);
    }
    return switches;
}

/** Executes one script again and again, each time in a process of its own. */
class Explorer {
  public:
    Explorer(const Script& script, const Options& options) : script(script), options(options) {}

    /** All schedules with so few preemptions, then random ones. Prints their number, or the
     * shortest schedule found that fails; true: none. */
    bool run();

  private:
    bool execute();
    bool passes(const Switches& switches);
    bool passesAll();
    bool passesRandom();
    Switches taken() const;
    void report() const;

    const Script& script;
    const Options& options;
    const std::shared_ptr<Execution> execution = coherence::shared<Execution>();
    std::uint64_t executions = 0;
    std::uint32_t longest = 1;  // in decisions
};

bool Explorer::execute() {
    ++executions;
    std::cout.flush();  // which an execution may end, too
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
            std::cout << "random priorities of seed " << seed << ":\n";
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

void Explorer::report() const {
    const auto switches = taken();
    std::cout << script.name << ": "
              << (execution->isFailure() ? execution->failure.data() : "passes")
              << "\nthe schedule, with " << switches.size() << " switches:\n";
    const char* last = "";
    for (std::uint32_t i = 0; i < execution->stepCount; ++i) {
        const auto& step = execution->steps.at(i);
        if (step.thread != last) {
            std::cout << "  " << step.thread << "\n";
        }
        std::cout << "    " << i + 1 << ". " << step.action << placeOf(step) << "\n";
        last = step.thread;
    }
    std::cout << "replay: ./dev schedules --script " << script.name << " --replay "
              << (switches.empty() ? "none" : "");
    for (const auto& one : switches) {
        std::cout << (&one == &switches.front() ? "" : ",") << one.decision << ":" << one.thread;
    }
    std::cout << std::endl;
}

bool Explorer::run() {
    if (!options.replay.empty()) {
        const bool isGood = passes(switchesFrom(options.replay));
        report();
        return isGood;
    }
    const auto begin = std::time(nullptr);
    const bool isGood = passesAll();
    const auto all = executions;
    if (!isGood || !passesRandom()) {
        passes(coherence::shrink(taken(), [this](const auto& some) { return !passes(some); }));
        report();
        return false;
    }
    std::cout << std::left << std::setw(24) << script.name << " " << all << " schedules with up to "
              << options.preemptions << " preemptions, " << options.seeds << " random ones, up to "
              << longest << " decisions: passes in " << std::time(nullptr) - begin << " s"
              << std::endl;
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    std::vector<std::string> scripts;
    std::vector<std::string> names;
    for (const auto& script : schedules::allScripts()) {
        names.emplace_back(script.name);
    }
    CLI::App app("explores the schedules of small scripts against the library");
    app.option_defaults()->always_capture_default();
    app.add_option("--script", scripts, "only these")->check(CLI::IsMember(names));
    bool isList = false;
    app.add_flag("--list", isList, "name the scripts, and do no more");
    app.add_option("--preemptions", options.preemptions, "at most, of the exhaustive part");
    app.add_option("--random", options.seeds, "how many random schedules");
    app.add_option("--first", options.first, "seed of the first");
    app.add_option("--depth", options.depth, "of the bugs that they are to find")
        ->check(CLI::Range(1, 9));
    app.add_option("--replay", options.replay, "one schedule, as a failure prints it");
    CLI11_PARSE(app, argc, argv);
    bool isGood = true;
    for (const auto& script : schedules::allScripts()) {
        if (isList) {
            std::cout << script.name << "\n";
        } else if (scripts.empty() || std::count(scripts.begin(), scripts.end(), script.name)) {
            isGood = Explorer(script, options).run() && isGood;
        }
    }
    return isGood ? 0 : 1;
}
