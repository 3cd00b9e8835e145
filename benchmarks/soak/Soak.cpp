// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Many client threads, a second writer and a modem that restarts, fails requests and loses, repeats
// and delays indications, all at once, in rounds. Between two rounds the library has to be in
// order. A first part of the rounds warms up; what the process holds after it is compared with what
// it holds at the end.
#include <malloc.h>
#include <unistd.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <set>
#include <thread>
#include <tuple>
#include <vector>

#include "Load.h"
#include "vela/Observer.h"
#include "velasim/DiagLog.h"
#include "velasim/Settle.h"
#include "velasim/Simulator.h"

namespace {

using vela::TechType;
using velasim::Fault;
using velasim::JournalKind;
using velasim::Technology;

constexpr unsigned kStandstillSeconds = 30;
constexpr std::uint64_t kParts = 5;  // the first one warms up
constexpr std::uint64_t kRequestsPerRound = 2500;
constexpr std::uint64_t kLongRun = 200'000;

// What may differ between two moments of rest: fragments, buffers that grow to their bound.
constexpr std::int64_t kAllocatedSlack = 128 << 10;
constexpr std::int64_t kResidentSlack = 8 << 20;
constexpr std::int64_t kBytesPerPendingRecord = 48;

/** By probability. */
const std::pair<double, std::vector<Fault>> kFaults[] = {
    {0.005,
     {Fault::Timeout, Fault::Refuse, Fault::TimeoutAfterEffect, Fault::LoseIndication,
      Fault::TruncateIndication, Fault::DelayIndication, Fault::DuplicateIndication,
      Fault::ReorderIndication, Fault::IndicationBeforeResponse}},
    {0.0005, {Fault::RestartBeforeEffect, Fault::RestartAfterEffect, Fault::RestartAfterResponse}},
    {0.01, {Fault::ClientInitFailure}},
};

std::atomic<const char*> current{"starting"};

void endStandstill(int /*signal*/) {
    for (const char* text : {"soak: nothing moves; was ", current.load(), "\n"}) {
        static_cast<void>(::write(STDERR_FILENO, text, std::strlen(text)) == 0);
    }
    std::abort();
}

/** Counts the callers who got another's answer, or none. */
class AnswerCounter : public vela::Observer {
  public:
    explicit AnswerCounter(Scene::Count& lost) : lost(lost) {}

    void onResponse(const vela::ClientRequest& request, const vela::ClientResponse* response,
                    std::chrono::nanoseconds /*duration*/) override {
        const bool isOwn = response && response->getResponseType() == request.getRequestType();
        lost += isOwn || isInListener() ? 0 : 1;
    }

  private:
    Scene::Count& lost;
};

// ---- Moments of rest: no faults, no restarts, no other thread inside the library

/** Nothing repeats the steps of connecting: where one has failed, the library waits, as it may. */
bool isConnected(Scene& scene) {
    if (scene.simulator.waitSubscribed(0, std::chrono::milliseconds(100))) {
        return true;
    }
    const auto entries = scene.simulator.journal().snapshot();
    const auto step = std::find_if(entries.rbegin(), entries.rend(), [](const auto& entry) {
        return entry.fault == Fault::ClientInitFailure ||
               entry.kind == JournalKind::ClientConnected ||
               entry.kind == JournalKind::NotifierCreated || entry.kind == JournalKind::Released;
    });
    if (step == entries.rend() ||
        (step->kind == JournalKind::ClientConnected && step->result == 0)) {
        scene.simulator.restart();  // a step of the subscription failed
    } else if (step->kind != JournalKind::NotifierCreated && step->kind != JournalKind::Released) {
        // The client could not be made. Listeners run before the cache goes.
        scene.library.refresh(vela::PDCRefreshStatus::RefreshCompleted);
        scene.library.init(0, false);
    }
    return false;
}

/** Callbacks have been made, and the worker has handled what they signalled. */
void settle(Scene& scene) {
    velasim::settle(scene.library, scene.simulator);
    progress();
}

/** Technology, number and name of each profile. */
using Profiles = std::set<std::tuple<bool, int, std::string>>;

Profiles cached(vela::Manager& library) {
    Profiles profiles;
    for (const auto& key : library.filter({})) {
        const auto params = library.getProfile(key);
        profiles.emplace(key->getTechType() == TechType::TECH_3GPP2, key->getProfileId(),
                         params ? params->getApnName() : "none");
    }
    return profiles;
}

Profiles stored(const velasim::Simulator& simulator) {
    Profiles profiles;
    for (const bool is3gpp2 : {false, true}) {
        const char* name = is3gpp2 ? "apn_string_3gpp2" : "apn_name";
        for (const auto& one :
             simulator.profiles(0, is3gpp2 ? Technology::ThreeGpp2 : Technology::ThreeGpp)) {
            profiles.emplace(is3gpp2, one.index,
                             velasim::textOf(one.settings, name).value_or("none"));
        }
    }
    return profiles;
}

bool agrees(Scene& scene) {
    scene.library.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    settle(scene);
    return cached(scene.library) == stored(scene.simulator);
}

bool require(bool holds, const char* complaint) {
    if (!holds) {
        std::cerr << "soak: " << complaint << "\n";
    }
    return holds;
}

/** Indications of before may wait behind one that could not be decoded, and strike late: what fails
 * is tried again. */
bool comesTrue(Scene& scene, const char* activity, bool (*passes)(Scene& scene),
               const char* complaint) {
    begin(activity);
    int attempts = 50;
    while (attempts > 0 && !passes(scene)) {
        settle(scene);
        --attempts;
    }
    return require(attempts > 0, complaint);
}

// ---- The run

struct Options {
    std::uint64_t requests = 1'000'000;
    std::uint64_t threads = 8;
    std::uint64_t seed = 1;
};

/** What is held at a moment of rest. */
struct Sample {
    std::int64_t resident = 0;
    /** In use by the program; 0 where a sanitizer has its own allocator. */
    std::int64_t allocated = 0;
    std::int64_t descriptors = 0;
    std::int64_t threads = 0;
    std::int64_t pendingRecords = 0;

    /** Bytes without those of the records, which stay for good, on purpose, when their indication
     * is lost. */
    std::int64_t unexplained(std::int64_t bytes) const {
        return bytes - pendingRecords * kBytesPerPendingRecord;
    }
};

std::int64_t entriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

Sample sampleOf(Scene& scene) {
    begin("taking a sample");
    scene.simulator.restore({});  // whatever is held with empty tables is not a profile
    scene.library.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    Sample sample;
    {
        const auto dump = scene.library.dump();
        const auto pending = std::find(dump.begin(), dump.end(), "Pending:");
        sample.pendingRecords = std::find(pending, dump.end(), "") - pending - 1;
    }
    scene.simulator.journal().clear();
    velasim::DiagLog::instance().clear();
    malloc_trim(0);  // what is free is not held, whichever thread's heap it is in
    std::ifstream("/proc/self/statm") >> sample.resident >> sample.resident;
    sample.resident *= sysconf(_SC_PAGESIZE);
    const auto heap = mallinfo2();
    sample.allocated = static_cast<std::int64_t>(heap.uordblks + heap.hblkhd);
    sample.descriptors = entriesOf("/proc/self/fd");
    sample.threads = entriesOf("/proc/self/task");
    return sample;
}

std::ostream& operator<<(std::ostream& out, const Sample& sample) {
    return out << sample.resident / 1024 << " KB resident, " << sample.allocated / 1024
               << " KB allocated, " << sample.descriptors << " descriptors, " << sample.threads
               << " threads, " << sample.pendingRecords << " pending records\n";
}

void round(Scene& scene, const Options& options, std::uint64_t number) {
    begin("serving the clients");
    for (const auto& [probability, faults] : kFaults) {
        for (const auto fault : faults) {
            scene.simulator.faults().add({fault, velasim::kAnyMessage, 1, 1, 0, probability});
        }
    }
    std::vector<std::jthread> clients;  // which end before they go
    for (std::uint64_t client = 0; client < options.threads; ++client) {
        clients.emplace_back(runClient, std::ref(scene), client,
                             (options.seed * 1'000'000 + number) * 1000 + client,
                             kRequestsPerRound / options.threads);
    }
}

/** True: the library is in order. */
bool rest(Scene& scene, std::uint64_t seed, std::uint64_t& faults) {
    begin("coming to rest");
    for (std::size_t rule = 0; rule < velasim::allFaults().size(); ++rule) {
        faults += scene.simulator.faults().strikes(rule);
    }
    scene.simulator.faults().reset(seed);
    scene.simulator.serviceUp();
    scene.simulator.releaseDelayed();
    return comesTrue(scene, "waiting for the library's subscription", isConnected,
                     "the library has lost the service") &&
           comesTrue(scene, "comparing cache and modem", agrees,
                     "cache and modem differ after a reload") &&
           comesTrue(
               scene, "counting handles",
               [](Scene& held) { return held.simulator.openHandles() == 1; },
               "messaging clients or notifiers leak");
}

bool hasNoGrowth(const Sample& first, const Sample& last, bool isLong) {
    // Sanitizers, and emulators for each thread, keep books of their own in resident memory.
    const bool isJudged = last.allocated != 0 && isLong;
    const auto rise = [&](std::int64_t Sample::*bytes) {
        return last.unexplained(last.*bytes) - first.unexplained(first.*bytes);
    };
    return require(last.descriptors <= first.descriptors, "descriptors leak") &&
           require(last.threads <= first.threads, "threads leak") &&
           require(rise(&Sample::allocated) <= kAllocatedSlack, "allocated memory grows") &&
           require(!isJudged || rise(&Sample::resident) <= kResidentSlack, "resident memory grows");
}

/** Prints the figures and what is wrong with them. True: nothing. */
bool run(Scene& scene, const Options& options) {
    const auto start = std::chrono::steady_clock::now();
    const auto rounds = options.requests / kRequestsPerRound + 1;
    std::uint64_t faults = 0;
    Sample first;
    bool isSound = rest(scene, options.seed, faults);
    for (std::uint64_t number = 1; number <= rounds && isSound; ++number) {
        round(scene, options, number);
        isSound = rest(scene, options.seed + number, faults);
        if (number == (rounds + kParts - 1) / kParts) {
            first = sampleOf(scene);
        }
    }
    const auto last = sampleOf(scene);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::cout << scene.asked << " requests of " << options.threads << " threads in " << rounds
              << " rounds; " << static_cast<int>(static_cast<double>(scene.asked) / took.count())
              << " requests/s\n"
              << scene.changes << " changes by a second writer, " << faults << " faults, "
              << scene.outages << " restarts and outages\n"
              << scene.added << " of " << scene.addsAsked << " additions succeeded, "
              << scene.expirations << " expirations\nafter warm-up: " << first
              << "at the end:    " << last;
    return isSound && require(scene.wrongAnswers == 0, "answers were wrong") &&
           require(scene.lostAnswers == 0, "answers were lost or mixed up") &&
           require(scene.outages > 0 && faults > 0, "too few requests for a restart") &&
           require(scene.added * 2 >= scene.addsAsked, "too few additions succeeded") &&
           require(scene.expirations > 0, "no listener has run") &&
           hasNoGrowth(first, last, options.requests >= kLongRun);
}

}  // namespace

void progress() {
    ::alarm(kStandstillSeconds);
}

void begin(const char* activity) {
    current = activity;
    progress();
}

int main(int argc, char** argv) {
    Options options;
    CLI::App app("load for a long time: many threads, a second writer, restarts, faults");
    app.add_option("--requests", options.requests, "how many")->capture_default_str();
    app.add_option("--threads", options.threads, "that make them")->capture_default_str();
    app.add_option("--seed", options.seed, "of all chances")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    std::signal(SIGALRM, endStandstill);
    velasim::SimulatorOptions modem;
    modem.instances = 1;
    modem.capacity = 100;
    modem.seed = options.seed;
    modem.journalLimit = 1024;
    Scene scene(modem);
    vela::setObserver(std::make_shared<AnswerCounter>(scene.lostAnswers));
    begin("initialising the library");
    scene.library.init(0, false);
    const bool isGood = run(scene, options);
    begin("destroying all");
    vela::setObserver(nullptr);
    return isGood ? 0 : 1;
}
