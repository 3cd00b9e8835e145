// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vela/Manager.h>
#include <velasim/DiagLog.h>
#include <velasim/Settle.h>
#include <velasim/Simulator.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace velatesting {

/** Settings of a profile in the modem by their names there (velasim::fieldNames): texts, and
 * numbers, enumerators among them. */
using Fields = std::vector<std::pair<std::string, std::variant<std::string, std::uint64_t>>>;

/** Empty, and a failure of the test, when the modem has no such setting. */
inline velasim::Settings settingsOf(const Fields& fields) {
    velasim::Settings settings{};
    for (const auto& [name, value] : fields) {
        const auto* text = std::get_if<std::string>(&value);
        EXPECT_TRUE(text != nullptr
                        ? velasim::setText(settings, name, *text)
                        : velasim::setNumber(settings, name, std::get<std::uint64_t>(value)))
            << "no setting " << name << " that could hold this";
    }
    return settings;
}

/**
 * A test of code that uses the library: a modem of its own, and the library connected to it.
 *
 * Nothing in it waits for a time. When a test fails, what went between library and modem is
 * printed.
 */
class ModemTest : public testing::Test {
  protected:
    /** @param manager lives longer than the test */
    explicit ModemTest(const velasim::SimulatorOptions& options = {},
                       vela::Manager& manager = vela::Manager::getInstance())
        : modem(options), manager(manager) {}

    /** Connects. Tests that want a modem in another state first override it. */
    void SetUp() override { connect(); }

    void TearDown() override {
        if (HasFailure()) {
            std::cout << "Between library and modem:\n" << modem.journal().text();
        }
    }

    /** Connects the library to a modem instance and has it read the modem's tables. The journal
     * begins here. */
    void connect(int instance = 0) {
        connect(manager, instance);
        modem.journal().clear();
        velasim::DiagLog::instance().clear();
    }

    void connect(vela::Manager& client, int instance) {
        client.init(instance, false);
        settle(client);
        ASSERT_GE(modem.subscribedClients(instance), 1U) << "the library has not subscribed";
        reload(client);
    }

    /** Has the library read the modem's tables again. */
    static void reload(vela::Manager& client) {
        client.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    }
    void reload() { reload(manager); }

    /** Returns when all that is under way has arrived: nothing is queued in the modem, held back
     * callbacks included, and nothing is left for the library to do. */
    void settle() { settle(manager); }
    void settle(vela::Manager& client) { velasim::settle(client, modem); }

    /** From now on the modem's callbacks wait: its indications, its news of the service. */
    void hold() { modem.setDelivery(velasim::DeliveryMode::Stepped); }
    /** Has the oldest of them made, and waits until the library has handled it. False: none waits.
     */
    bool deliver() {
        const bool isMade = modem.deliverNext();
        manager.settle();
        return isMade;
    }
    /** Ends hold(): what waits is made, and what comes of it. */
    void letGo() {
        modem.setDelivery(velasim::DeliveryMode::Immediate);
        settle();
    }

    /** Has a fault strike the next `count` times (0: from now on) that it can, or only at one kind
     * of message (RLINK_WDS_..._REQ_V01). */
    void strike(velasim::Fault fault, std::uint32_t message = velasim::kAnyMessage,
                std::uint32_t count = 1, std::uint32_t value = 0) {
        modem.faults().add({.fault = fault, .messageId = message, .count = count, .value = value});
    }

    /** Puts a profile into the modem as somebody else does, who is announced. Its number; 0 when
     * the modem has no room. */
    int store(const Fields& fields,
              velasim::Technology technology = velasim::Technology::ThreeGpp) {
        return modem.foreignCreate(0, technology, settingsOf(fields)).value_or(0);
    }

    /** What the modem holds. */
    std::vector<velasim::StoredProfile> profiles(
        velasim::Technology technology = velasim::Technology::ThreeGpp) const {
        return modem.profiles(0, technology);
    }

    /** How many messages the library has sent since it was connected. */
    std::size_t requests(std::uint32_t message = velasim::kAnyMessage) {
        return modem.journal().count(velasim::JournalKind::Request, message);
    }

    /** Whether the library, at rest, holds what one sees that has just read the modem, and expects
     * nothing of it. */
    testing::AssertionResult agrees() {
        settle();
        vela::Manager reader;
        connect(reader, 0);
        const auto pending = dumped(manager, "Pending:");
        const auto held = profilesOf(manager);
        const auto read = profilesOf(reader);
        const std::size_t stored = profiles(velasim::Technology::ThreeGpp).size() +
                                   profiles(velasim::Technology::ThreeGpp2).size();
        if (pending.empty() && held == read && read.size() == stored) {
            return testing::AssertionSuccess() << "the library agrees with the modem";
        }
        return testing::AssertionFailure()
               << "the library holds " << testing::PrintToString(held) << " and expects "
               << testing::PrintToString(pending) << "; one that has just read the modem holds "
               << testing::PrintToString(read) << " of " << stored << " profiles there";
    }

    /** The lines of one part of the library's dump, "Cache:" or "Pending:". */
    static std::vector<std::string> dumped(vela::Manager& client, const std::string& part) {
        std::vector<std::string> texts;
        const auto lines = client.dump();
        auto line = std::find(lines.begin(), lines.end(), part);
        while (line != lines.end() && ++line != lines.end() && line->rfind("  ", 0) == 0) {
            texts.push_back(line->substr(2));
        }
        return texts;
    }

    /** What the library holds, sorted: the lines of its cache's dump without its own numbering. */
    static std::vector<std::string> profilesOf(vela::Manager& client) {
        auto profiles = dumped(client, "Cache:");
        for (std::string& profile : profiles) {
            profile.erase(0, profile.find(": ") + 2);
        }
        std::sort(profiles.begin(), profiles.end());
        return profiles;
    }

    velasim::Simulator modem;
    vela::Manager& manager;
};

}  // namespace velatesting
