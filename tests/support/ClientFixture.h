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
#include "velatesting/ModemTest.h"

namespace vela {

using Key = std::shared_ptr<IProfileKey>;
using Keys = std::list<Key>;
using velasim::Technology;

/** A simulated modem and a client of it, whose log lines go to the diagnostic log. */
class ClientFixture : public velatesting::ModemTest {
  protected:
    ClientFixture() : ClientFixture(std::make_unique<Manager>()) {}
    /** On a manager that lives longer. */
    explicit ClientFixture(Manager& existing, const velasim::SimulatorOptions& options = {})
        : ModemTest(options, existing) {}

    void SetUp() override {}

    /** Connects, and loads the cache. The log and the journal start here. */
    void start() { ModemTest::connect(); }

    using ModemTest::connect;
    void connect(Manager& client) { connect(client, 0); }

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
        EXPECT_TRUE(modem.storeProfile(0, technologyOf(line), settingsOf(line))) << line;
    }
    void change(int index, const std::string& line) {
        EXPECT_TRUE(modem.foreignModify(0, technologyOf(line), index, settingsOf(line))) << line;
    }
    /** `line` with the values that the modem has; empty for a profile that it has not. */
    std::string stored(int index, const std::string& line) {
        const auto profile = modem.profile(0, technologyOf(line), index);
        return profile ? valuesOf(profile->settings, line) : "";
    }
    std::size_t profilesInModem() {
        return modem.profiles(0, Technology::ThreeGpp).size() +
               modem.profiles(0, Technology::ThreeGpp2).size();
    }
    void fault(velasim::Fault fault, std::uint32_t messageId = velasim::kAnyMessage,
               std::uint32_t first = 1, std::uint32_t count = 1, std::uint32_t value = 0) {
        modem.faults().add({fault, messageId, first, 1, count, 1.0, value, {}, {}});
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

    /** What the client holds, without the library's numbering. */
    static std::vector<std::string> cached(Manager& client) { return profilesOf(client); }
    std::vector<std::string> cached() { return cached(manager); }

  private:
    explicit ClientFixture(std::unique_ptr<Manager> made)
        : ModemTest({}, *made), own(std::move(made)) {}

    const std::unique_ptr<Manager> own;
};

}  // namespace vela
