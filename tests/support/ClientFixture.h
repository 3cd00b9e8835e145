// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/TextTables.h"
#include "vela/Manager.h"
#include "velasim/DiagLog.h"
#include "velasim/Settle.h"
#include "velasim/Simulator.h"

namespace vela {

using Key = std::shared_ptr<IProfileKey>;
using Keys = std::list<Key>;
using velasim::Technology;

/** A simulated modem and a client of it, whose log lines go to the diagnostic log. */
class ClientFixture : public testing::Test {
  protected:
    ClientFixture() : own(std::make_unique<Manager>()), manager(*own) {}
    /** On a manager that lives longer. */
    explicit ClientFixture(Manager& existing, const velasim::SimulatorOptions& options = {})
        : sim(options), manager(existing) {}

    /** Connects, and loads the cache. The log and the journal start here. */
    void start() {
        connect(manager);
        velasim::DiagLog::instance().clear();
        sim.journal().clear();
    }

    void connect(Manager& client, int instance = 0) {
        client.init(instance, false);
        settle(client);
        ASSERT_GE(sim.subscribedClients(instance), 1U);
        reload(client);
    }

    static void reload(Manager& client) { client.refresh(PDCRefreshStatus::RefreshCompleted); }
    void reload() { reload(manager); }

    /** All callbacks have been made, and the worker has handled what they signalled. */
    void settle(Manager& client) { velasim::settle(client, sim); }
    void settle() { settle(manager); }

    Key add(const std::string& line, bool persistent = true,
            TechType techType = TechType::TECH_3GPP) {
        return manager.addProfile(AddProfileParams(paramsOf(line), persistent, techType, false));
    }
    bool modify(const std::string& line, const Key& key) {
        return manager.modifyProfile(ModifyProfileParams(paramsOf(line)), key);
    }
    Keys find(const std::string& line) {
        return manager.filter(FilterProfileParams(paramsOf(line)));
    }
    /** A profile's fields as text; "none" when it cannot be read. */
    std::string read(const Key& key) {
        const auto params = manager.getProfile(key);
        return params ? params->dump() : "none";
    }

    /** Everything that takes a key comes back with nothing. */
    static void expectNothingBy(Manager& client, const Key& key) {
        EXPECT_FALSE(client.modifyProfile(ModifyProfileParams(paramsOf("user=eve")), key));
        EXPECT_FALSE(client.deleteProfile(key));
        EXPECT_EQ(client.getProfile(key), std::nullopt);
        EXPECT_FALSE(client.match(FilterProfileParams(), key));
    }
    /** Nor does anything else. */
    static void expectNothing(Manager& client, const Key& key) {
        expectNothingBy(client, key);
        EXPECT_EQ(client.addProfile(AddProfileParams(true, TechType::TECH_3GPP, false)), nullptr);
        EXPECT_THAT(client.filter(FilterProfileParams()), testing::IsEmpty());
    }

    /** Puts a profile into the modem, unannounced; 3GPP2 when a setting says so. */
    void store(const std::string& line) {
        EXPECT_TRUE(sim.storeProfile(0, technologyOf(line), settingsOf(line))) << line;
    }
    void change(int index, const std::string& line) {
        EXPECT_TRUE(sim.foreignModify(0, technologyOf(line), index, settingsOf(line))) << line;
    }
    /** `line` with the values that the modem has; empty for a profile that it has not. */
    std::string stored(int index, const std::string& line) {
        const auto profile = sim.profile(0, technologyOf(line), index);
        return profile ? valuesOf(profile->settings, line) : "";
    }
    std::size_t profilesInModem() {
        return sim.profiles(0, Technology::ThreeGpp).size() +
               sim.profiles(0, Technology::ThreeGpp2).size();
    }
    std::size_t requests(std::uint32_t messageId = velasim::kAnyMessage) {
        return sim.journal().count(velasim::JournalKind::Request, messageId);
    }
    void fault(velasim::Fault fault, std::uint32_t messageId = velasim::kAnyMessage,
               std::uint32_t first = 1, std::uint32_t count = 1, std::uint32_t value = 0) {
        sim.faults().add({fault, messageId, first, 1, count, 1.0, value, {}, {}});
    }

    /** How many lines of the log are `line`, or start with it when it ends in "*". */
    static std::size_t logged(const std::string& line) {
        const bool isPrefix = !line.empty() && line.back() == '*';
        const std::string wanted = "|VELA| " + line.substr(0, line.size() - (isPrefix ? 1 : 0));
        const auto lines = velasim::DiagLog::instance().lines();
        const auto count = std::count_if(lines.begin(), lines.end(), [&](const auto& entry) {
            return isPrefix ? entry.text.rfind(wanted, 0) == 0 : entry.text == wanted;
        });
        return static_cast<std::size_t>(count);
    }

    /** The lines of a part of the dump from their `separator` on: profiles, expected changes. */
    static std::vector<std::string> dumped(Manager& client, const std::string& part,
                                           const std::string& separator) {
        std::vector<std::string> texts;
        const auto lines = client.dump();
        auto line = std::find(lines.begin(), lines.end(), part);
        while (line != lines.end() && ++line != lines.end() && line->rfind("  ", 0) == 0) {
            texts.push_back(line->substr(line->find(separator) + 2));
        }
        return texts;
    }
    static std::vector<std::string> cached(Manager& client) {
        return dumped(client, "Cache:", ": ");
    }
    std::vector<std::string> cached() { return cached(manager); }

    /** The client holds what one sees that has just read the modem, and waits for nothing. */
    void expectCacheEqualsModem() {
        settle();
        EXPECT_THAT(dumped(manager, "Pending:", "  "), testing::IsEmpty());
        Manager other;
        connect(other);
        EXPECT_EQ(cached(other).size(), profilesInModem());
        EXPECT_THAT(cached(), testing::UnorderedElementsAreArray(cached(other)));
    }

    velasim::Simulator sim;

  private:
    const std::unique_ptr<Manager> own;

  protected:
    Manager& manager;
};

}  // namespace vela
