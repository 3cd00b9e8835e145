// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What is done on one thread: searches, log lines, indications followed.

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Comparison.h"
#include "ConstantModem.h"
#include "LogWrapper.h"
#include "ModemConversions.h"
#include "ProfileCache.h"

namespace {

using namespace comparison;  // NOLINT(google-build-using-namespace): its words

std::shared_ptr<vela::ClientResponse> refuse(const std::shared_ptr<vela::ClientRequest>&) {
    return nullptr;
}

/** A cache of 255 profiles of each technology, of which the calling thread is the worker. */
struct LoadedCache {
    LoadedCache() {
        vela::LogWrapper::getInstance().setLogWriter(nullptr);
        constant_modem::hold(255, 255);
        cache.assumeWorker();
        constant_modem::deliver();
        events.processEvents();
        cache.refresh();
    }

    vela::EventManager events;
    vela::ProfileCache cache{events, 0, refuse};
};

/** What a search has to look at, laid out as the cache has it. */
struct PlainTable {
    struct Entry {
        vela::TechType techType;
        int profileId;
        std::optional<std::string> apnName;
    };

    PlainTable() {
        for (unsigned long token = 0; token < 510; ++token) {
            entries.emplace(
                token, std::make_shared<Entry>(Entry{
                           token < 255 ? vela::TechType::TECH_3GPP : vela::TechType::TECH_3GPP2,
                           static_cast<int>(token % 255 + 1), "internet.operator.example"}));
        }
    }

    template <typename Found>
    void search(std::string_view wanted, Found found) const {
        for (const auto& [token, entry] : entries) {
            if (entry->apnName &&
                std::equal(
                    entry->apnName->begin(), entry->apnName->end(), wanted.begin(), wanted.end(),
                    [](char own, char asked) { return own == vela::convertToLower(asked); })) {
                found(token, *entry);
            }
        }
    }

    std::unordered_map<unsigned long, std::shared_ptr<Entry>> entries;
};

void searchNone(benchmark::State& state) {
    LoadedCache loaded;
    const PlainTable table;
    vela::FilterProfileParams filter;
    filter.setApnName("internet.operator.exampl3");
    compare(
        state, [&] { benchmark::DoNotOptimize(loaded.cache.filter(filter)); },
        [&] {
            table.search("internet.operator.exampl3",
                         [](unsigned long token, const auto&) { benchmark::DoNotOptimize(token); });
        });
}
BENCHMARK(searchNone)->Apply(once);

void searchAll(benchmark::State& state) {
    LoadedCache loaded;
    const PlainTable table;
    vela::FilterProfileParams filter;
    filter.setApnName("internet.operator.example");
    std::list<std::shared_ptr<vela::ProfileKey>> ours;
    std::list<std::shared_ptr<vela::ProfileKey>> plain;
    compare(
        state, [&] { ours.splice(ours.end(), loaded.cache.filter(filter)); },
        [&] {
            table.search("internet.operator.example", [&](unsigned long token, const auto& entry) {
                plain.push_back(std::make_shared<vela::ProfileKey>(entry.techType, entry.profileId,
                                                                   token, refuse));
            });
        });
    vela::LogWrapper::getInstance().setLogWriter(nullptr);
}
BENCHMARK(searchAll)->Apply(once);

constexpr const char* kFormat = "Manager::%s > %s";
constexpr const char* kOperation = "getProfile";
constexpr const char* kText = "Get 3GPP:1 token=511";

/** A sink that drops what it is given. */
struct DroppingWriter : vela::LogWriter {
    void write(vela::LogLevel, std::string, std::string message) override {
        benchmark::DoNotOptimize(message);
    }
    int convertPrio(vela::LogLevel) override { return 0; }
};

void format() {
    std::array<char, 512> line;
    std::snprintf(line.data(), line.size(), kFormat, kOperation, kText);
    benchmark::DoNotOptimize(line);
}

void logLine(benchmark::State& state) {
    vela::LogWrapper::getInstance().setLogWriter(std::make_unique<DroppingWriter>());
    const auto level = static_cast<vela::LogLevel>(state.range(0));
    compare(
        state, [&] { vela::log(level, kFormat, kOperation, kText); },
        [&] {
            format();
            if (level == vela::LogLevel::Notice) {
                const std::time_t now = std::time(nullptr);
                tm local{};
                localtime_r(&now, &local);
                std::array<char, 50> text;
                std::strftime(text.data(), text.size(), "%F %X", &local);
                benchmark::DoNotOptimize(text);
            }
        });
    vela::LogWrapper::getInstance().setLogWriter(nullptr);
}
BENCHMARK(logLine)->Apply([](auto* benchmark) {
    once(benchmark->ArgName("level")->Arg(1)->Arg(5));
});

}  // namespace
