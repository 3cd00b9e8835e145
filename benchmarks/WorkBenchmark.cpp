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

/** A cache of profiles, half of them of each technology, of which the calling thread is the worker.
 */
struct LoadedCache {
    explicit LoadedCache(int profiles) {
        vela::LogWrapper::getInstance().setLogWriter(nullptr);
        constant_modem::hold(profiles / 2, profiles / 2);
        cache.assumeWorker();
        constant_modem::deliver();
        events.processEvents();
        cache.refresh();
    }

    /** A key of the second profile of 3GPP. */
    std::shared_ptr<vela::ProfileKey> secondKey() {
        vela::FilterProfileParams filter;
        filter.setFilterByTechType(vela::TechType::TECH_3GPP);
        filter.setFilterByProfileId(2);
        return cache.filter(filter).front();
    }

    /** Somebody else has changed a profile of 3GPP. */
    void follow(int profileId) {
        cache.onIndication(
            {vela::TechType::TECH_3GPP, profileId, vela::ProfileChangedEvent::Modify});
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

    explicit PlainTable(int profiles) {
        for (unsigned long token = 0; token < static_cast<unsigned long>(profiles); ++token) {
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

void growing(benchmark::internal::Benchmark* benchmark) {
    once(benchmark->ArgName("profiles")->Arg(2)->Arg(32)->Arg(128)->Arg(510));
}

void searchNone(benchmark::State& state) {
    LoadedCache loaded(static_cast<int>(state.range(0)));
    const PlainTable table(static_cast<int>(state.range(0)));
    vela::FilterProfileParams filter;
    filter.setApnName("internet.operator.exampl3");
    compare(
        state, [&] { benchmark::DoNotOptimize(loaded.cache.filter(filter)); },
        [&] {
            table.search("internet.operator.exampl3",
                         [](unsigned long token, const auto&) { benchmark::DoNotOptimize(token); });
        });
}
BENCHMARK(searchNone)->Apply(growing);

void searchAll(benchmark::State& state) {
    LoadedCache loaded(static_cast<int>(state.range(0)));
    const PlainTable table(static_cast<int>(state.range(0)));
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
BENCHMARK(searchAll)->Apply(growing);

/** A reload, beside the messages that it takes. */
void reload(benchmark::State& state) {
    const auto profiles = static_cast<int>(state.range(0));
    LoadedCache loaded(profiles);
    const auto send = [](unsigned int message, auto request, auto response) {
        rlink_client_send_msg_sync(nullptr, message, &request, sizeof request, &response,
                                   sizeof response, 1000);
        benchmark::DoNotOptimize(response);
    };
    compare(
        state, [&] { loaded.cache.refresh(); },
        [&] {
            for (int list = 0; list < 2; ++list) {
                send(RLINK_WDS_GET_PROFILE_LIST_REQ_V01, wds_get_profile_list_req_msg_v01{},
                     wds_get_profile_list_resp_msg_v01{});
            }
            for (int profile = 0; profile < profiles; ++profile) {
                send(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01, wds_get_profile_settings_req_msg_v01{},
                     wds_get_profile_settings_resp_msg_v01{});
            }
        });
}
BENCHMARK(reload)->Apply(growing);

/** A foreign change while own ones wait to be announced, beside one while none does. */
void foreignChange(benchmark::State& state) {
    LoadedCache waiting(4);
    LoadedCache quiet(4);
    const auto key = waiting.secondKey();
    vela::ModifyProfileParams params;
    for (int change = 0; change < state.range(0); ++change) {
        params.setApnName(change % 2 == 0 ? "one" : "other");
        waiting.cache.modify(params, key);
    }
    compare(
        state, [&] { waiting.follow(1); }, [&] { quiet.follow(1); });
}
BENCHMARK(foreignChange)->Apply([](auto* benchmark) {
    once(benchmark->ArgName("pending")->Arg(1)->Arg(64)->Arg(4096));
});

/** A profile dies with its listeners, beside one without. */
void profileDeath(benchmark::State& state) {
    LoadedCache watched(4);
    LoadedCache quiet(4);
    const auto key = watched.secondKey();
    int calls = 0;
    compare(state,
            Prepared{[&] {
                         for (int listener = 0; listener < state.range(0); ++listener) {
                             watched.cache.registerExpirationListener([&calls] { ++calls; }, key,
                                                                      key->getToken());
                         }
                     },
                     [&] { watched.follow(2); }},
            Prepared{[] {}, [&] { quiet.follow(2); }});
    benchmark::DoNotOptimize(calls);
}
BENCHMARK(profileDeath)->Apply([](auto* benchmark) {
    once(benchmark->ArgName("listeners")->Arg(1)->Arg(64)->Arg(4096));
});

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
