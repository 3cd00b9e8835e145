// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Soak.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <list>
#include <thread>

#include "velasim/DiagLog.h"

namespace {

using velasim::Fault;
using velasim::Technology;

constexpr std::chrono::seconds kStandstill{30};
constexpr std::uint64_t kRequestsPerChange = 40;
constexpr std::uint64_t kRequestsPerRestart = 4000;
constexpr std::size_t kKeysPerThread = 6;

// What may differ between two moments of rest: fragments, buffers that grow to their bound.
constexpr std::uint64_t kAllocatedSlack = 256U << 10U;
constexpr std::uint64_t kResidentSlack = 8U << 20U;
constexpr std::uint64_t kBytesPerPendingRecord = 64;

velasim::SimulatorOptions optionsFor(std::uint64_t seed) {
    velasim::SimulatorOptions options;
    options.instances = 1;
    options.capacity = 100;
    options.seed = seed;
    options.journalLimit = 1024;
    for (const auto fault : {Fault::Timeout, Fault::Refuse, Fault::LoseIndication,
                             Fault::TruncateIndication, Fault::TimeoutAfterEffect}) {
        velasim::FaultRule rule;
        rule.fault = fault;
        rule.count = 0;
        rule.probability = 0.005;
        options.faults.push_back(rule);
    }
    return options;
}

double megabytes(std::uint64_t bytes) {
    return static_cast<double>(bytes) / (1 << 20);
}

using Key = std::shared_ptr<vela::IProfileKey>;

vela::AddProfileParams someProfile(velasim::Random& random, const std::string& name) {
    vela::AddProfileParams params(random.chance(0.1), static_cast<vela::TechType>(random.below(2)),
                                  false);
    params.setApnName(name);
    params.setHomeIPType(static_cast<vela::IPType>(random.below(4)));
    return params;
}

/** Whether a line of the library's log says that a caller got another's answer, or none. */
bool isMixUp(const velasim::DiagLog::Line& line) {
    return line.text.find("Unable to cast") != std::string::npos ||
           line.text.find("Error in getProfile") != std::string::npos;
}

std::size_t countPending(const std::vector<std::string>& dump) {
    const auto pending = std::find(dump.begin(), dump.end(), "Pending:");
    return static_cast<std::size_t>(std::find(pending, dump.end(), "") - pending - 1);
}

}  // namespace

Soak::Soak(const Options& options) : options(options), simulator(optionsFor(options.seed)) {
    velasim::DiagLog::instance().setSink(
        [this](const velasim::DiagLog::Line& line) { mixedUp += isMixUp(line) ? 1 : 0; });
    manager.init(0, false);
}

Soak::~Soak() {
    velasim::DiagLog::instance().setSink({});
}

bool Soak::run() {
    std::thread writer([this] { secondWriter(); });
    std::thread modem([this] { restarter(); });
    const auto warmUp = options.requests / 5;
    phase(warmUp);
    const auto before = sample();
    const auto begin = std::chrono::steady_clock::now();
    phase(options.requests - warmUp);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    const auto after = sample();
    isOver = true;
    changesDue.release();
    restartsDue.release();
    writer.join();
    modem.join();
    return report(before, after, took.count());
}

/** One thread of radio software, which calls by chance and holds some keys. */
class Soak::Client {
  public:
    Client(Soak& soak, std::uint64_t number)
        : soak(soak),
          name("client" + std::to_string(number)),
          random(soak.options.seed * 1000 + number + soak.asked) {
        own.setApnName(name);
    }

    void run(std::uint64_t requests) {
        for (std::uint64_t i = 0; i < requests; ++i) {
            const auto key = keys.empty() ? nullptr : keys[random.below(keys.size())];
            call(key);
            std::erase(keys, nullptr);
            while (keys.size() > kKeysPerThread) {
                dropOne();
            }
        }
        while (!keys.empty()) {
            dropOne();
        }
    }

  private:
    void call(const Key& key) {
        vela::Manager& library = soak.manager;
        switch (random.below(key ? 8 : 2)) {
            case 0:
                return ask([&] { keys.push_back(library.addProfile(someProfile(random, name))); });
            case 1:
                return ask([&] {
                    const auto found = library.filter(own);
                    keys.insert(keys.end(), found.begin(), found.end());
                });
            case 2:
                return ask([&] { library.getProfile(key); });
            case 3:
                return ask([&] {
                    const auto profile = someProfile(random, name);
                    library.modifyProfile(vela::ModifyProfileParams(profile), key);
                });
            case 4:
                return ask([&] { library.match(own, key); });
            case 5:
                return ask([&] { library.deleteProfile(key); });
            case 6:
                return ask([&] {
                    key->registerExpirationListener([&soak = soak] { ++soak.expirations; });
                });
            default:
                dropOne();
        }
    }

    void dropOne() {
        if (!keys.empty()) {
            std::swap(keys[random.below(keys.size())], keys.back());
            ask([&] { keys.pop_back(); });
        }
    }

    template <typename Request>
    void ask(Request request) {
        const auto count = ++soak.asked;
        if (count % kRequestsPerChange == 0) {
            soak.changesDue.release();
        }
        if (count % kRequestsPerRestart == 0) {
            soak.restartsDue.release();
        }
        request();
        ++soak.answered;
    }

    Soak& soak;
    const std::string name;
    velasim::Random random;
    vela::FilterProfileParams own;
    std::vector<Key> keys;
};

void Soak::phase(std::uint64_t requests) {
    std::vector<std::future<void>> clients;
    for (std::uint64_t number = 0; number < options.threads; ++number) {
        clients.push_back(std::async(std::launch::async, [this, number, requests] {
            Client(*this, number).run(requests / options.threads);
        }));
    }
    for (auto& one : clients) {
        auto seen = answered.load();
        while (one.wait_for(kStandstill) != std::future_status::ready) {
            if (answered == seen) {
                std::fprintf(stderr,
                             "soak: nothing moves, %" PRIu64 " of %" PRIu64 " requests answered\n",
                             answered.load(), asked.load());
                std::abort();
            }
            seen = answered;
        }
    }
}

void Soak::secondWriter() {
    velasim::Random random(options.seed + 1);
    for (changesDue.acquire(); !isOver; changesDue.acquire()) {
        change(random);
        ++foreignChanges;
    }
}

void Soak::change(velasim::Random& random) {
    const auto technology = static_cast<Technology>(random.below(2));
    const auto index = static_cast<int>(1 + random.below(100));
    velasim::Settings settings{};
    velasim::setText(settings, technology == Technology::ThreeGpp ? "apn_name" : "apn_string_3gpp2",
                     "foreign");
    switch (random.below(16)) {
        case 0:
            simulator.profileReady(0);
            break;
        case 1:
        case 2:
        case 3:
            simulator.foreignCreate(0, technology, settings);
            break;
        case 4:
        case 5:
        case 6:
        case 7:
            simulator.foreignModify(0, technology, index, settings);
            break;
        default:
            simulator.foreignDelete(0, technology, index);
    }
}

void Soak::restarter() {
    for (restartsDue.acquire(); !isOver; restartsDue.acquire()) {
        simulator.restart();
        ++restarts;
    }
}

/** Between the phases only the second writer and the restarts may be at work, for a moment. */
Soak::Sample Soak::sample() {
    while (changesDue.try_acquire() || restartsDue.try_acquire()) {
    }
    manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    simulator.waitIdle();
    manager.getProfile(nullptr);
    Sample sample;
    sample.pendingRecords = countPending(manager.dump());
    simulator.journal().clear();
    velasim::DiagLog::instance().clear();
    sample.resources = Resources::now();
    return sample;
}

bool Soak::report(const Sample& before, const Sample& after, double seconds) const {
    const std::uint64_t measured = options.requests - options.requests / 5;
    std::printf(
        "%" PRIu64 " requests of %" PRIu64 " threads, %" PRIu64 " answered; %.0f requests/s\n",
        asked.load(), options.threads, answered.load(), static_cast<double>(measured) / seconds);
    std::printf("%" PRIu64 " changes by a second writer, %" PRIu64 " restarts, %" PRIu64
                " expirations, %" PRIu64 " answers mixed up\n",
                foreignChanges, restarts, expirations.load(), mixedUp.load());
    const auto print = [](const char* when, const Sample& sample) {
        std::printf(
            "%s: %.1f MB resident, %.2f MB allocated, %zu descriptors, %zu threads, "
            "%zu pending records\n",
            when, megabytes(sample.resources.residentBytes),
            megabytes(sample.resources.allocatedBytes), sample.resources.descriptors,
            sample.resources.threads, sample.pendingRecords);
    };
    print("after warm-up", before);
    print("at the end   ", after);

    bool isGood = true;
    const auto require = [&](bool holds, const char* complaint) {
        if (!holds) {
            std::fprintf(stderr, "soak: %s\n", complaint);
            isGood = false;
        }
    };
    // Records whose indication was lost stay for good, on purpose.
    const auto forRecords = after.pendingRecords * kBytesPerPendingRecord;
    const auto& first = before.resources;
    const auto& last = after.resources;
    require(asked == answered && mixedUp == 0, "answers were lost");
    require(restarts > 0 && foreignChanges > 0, "too few requests for a restart");
    require(last.descriptors <= first.descriptors, "descriptors leak");
    require(last.threads <= first.threads, "threads leak");
    require(last.allocatedBytes <= first.allocatedBytes + forRecords + kAllocatedSlack,
            "allocated memory grows");
    // Sanitizers keep books of their own in resident memory.
    require(last.allocatedBytes == 0 ||
                last.residentBytes <= first.residentBytes + forRecords + kResidentSlack,
            "resident memory grows");
    return isGood;
}
