// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// A device for the tool: the simulator stands below the platform's interface, where the tool cannot
// tell it from one. And what only a device's backend does.
#include <wds_service_v01.h>

#include <algorithm>
#include <regex>

#include "ToolRun.h"

namespace velactl {

namespace {

/** Takes an option that is the simulator's from the command line; 0: it is not there. */
unsigned takeCapacity(std::vector<std::string>& arguments) {
    const auto option = std::find(arguments.begin(), arguments.end(), "--capacity");
    if (option == arguments.end() || std::next(option) == arguments.end()) {
        return 0;
    }
    const unsigned long capacity = std::strtoul(std::next(option)->c_str(), nullptr, 10);
    if (capacity != 0) {
        arguments.erase(option, option + 2);
    }
    return static_cast<unsigned>(capacity);
}

velasim::Snapshot memoryOf(const std::string& file, unsigned capacity) {
    velasim::Snapshot memory = velasim::Snapshot::load(file).snapshot.value_or(velasim::Snapshot());
    memory.modems.resize(std::max<std::size_t>(memory.modems.size(), 2));
    if (capacity != 0) {
        memory.modems[0].capacity = capacity;
    }
    return memory;
}

}  // namespace

ToolRun runOnModem(const std::string& file, std::vector<std::string> arguments) {
    const velasim::Snapshot memory = memoryOf(file, takeCapacity(arguments));
    velasim::Simulator simulator(
        {.instances = static_cast<unsigned>(memory.modems.size()), .capacity = 255});
    EXPECT_EQ(simulator.restore(memory), "");
    ToolRun result = runTool(arguments);
    simulator.waitIdle();
    EXPECT_EQ(simulator.snapshot().save(file), "");
    return result;
}

std::unique_ptr<velasim::Simulator> makeDevice() {
    return std::make_unique<velasim::Simulator>();
}

std::string asToldHere(std::string text) {
    for (int error = 0; error < 256; ++error) {
        const std::string name = velasim::toString(static_cast<velasim::ModemError>(error));
        if (name != std::to_string(error)) {
            text = std::regex_replace(text, std::regex(": " + name),
                                      ": error " + std::to_string(error));
        }
    }
    return text;
}

namespace {

using velasim::Fault;

velasim::FaultRule always(Fault fault, std::uint32_t message = velasim::kAnyMessage) {
    return {.fault = fault, .messageId = message, .count = 0};
}

TEST(Device, SaysWhyItDoesNotAnswer) {
    const std::pair<velasim::FaultRule, const char*> cases[] = {
        {always(Fault::Refuse, RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01),
         "modem instance 0 does not answer: the modem refused to bind to the subscription: error "},
        {always(Fault::Timeout, RLINK_WDS_GET_PROFILE_LIST_REQ_V01),
         "modem instance 0 does not answer: the modem did not answer the request to list"},
    };
    for (const auto& [fault, reason] : cases) {
        const velasim::Simulator simulator({.faults = {fault}});
        const ToolRun result = runTool({"list"});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, HasSubstr(reason));
    }
}

TEST(Device, WaitsForIndicationsThatAreLateAndNotForThoseThatAreLost) {
    velasim::Simulator simulator({.faults = {always(Fault::LoseIndication)}});
    EXPECT_EQ(runTool({"add", "--apn", "a"}).status, 0);
    EXPECT_EQ(simulator.profiles(0, velasim::Technology::ThreeGpp).size(), 1U);
}

TEST(Device, HasNoFileAndShowsTheLibrarysOwnLog) {
    const velasim::Simulator simulator;
    EXPECT_THAT(runTool({"--modem", "m.json", "list"}).err, HasSubstr("this is a device"));
    const ToolRun result = runTool({"--log", "add", "--apn", "a", "--password", "geheim"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, AllOf(HasSubstr("log: "), HasSubstr("Manager::addProfile"),
                                  Not(HasSubstr("geheim"))));
}

}  // namespace
}  // namespace velactl
