// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "DeviceModem.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "ToolError.h"

namespace velactl {

namespace {

/** The log lines at the end of the library's dump. */
std::vector<std::string> logOf(const std::vector<std::string>& dump) {
    const auto heading = std::find(dump.rbegin(), dump.rend(), "Logs:");
    return {heading.base(), dump.end()};
}

bool hasAnswered(const std::vector<std::string>& log) {
    return std::any_of(log.begin(), log.end(), [](const std::string& line) {
        return line.find("GET_PROFILE_LIST_REQ_V01 request successful") != std::string::npos;
    });
}

}  // namespace

DeviceModem::DeviceModem(const ModemOptions& options, LogSink sink)
    : instance(options.instance), sink(std::move(sink)) {
    if (!options.file.empty() || options.capacity) {
        throw badUsage("--modem and --capacity are for the simulated modem; this is a device");
    }
}

void DeviceModem::connect(vela::Manager& manager) {
    constexpr auto kPatience = std::chrono::seconds(10);
    constexpr auto kPause = std::chrono::milliseconds(100);
    manager.init(instance, false);
    const auto end = std::chrono::steady_clock::now() + kPatience;
    // Nothing tells a client when the modem's service has come up: ask until it answers.
    while (std::chrono::steady_clock::now() < end) {
        manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);
        if (hasAnswered(takeLog())) {
            return;
        }
        std::this_thread::sleep_for(kPause);
    }
    throw refused("modem instance " + std::to_string(instance) + " does not answer");
}

void DeviceModem::settle(vela::Manager& /*manager*/) {}

std::vector<std::string> DeviceModem::takeLog() {
    std::vector<std::string> lines = logOf(vela::Manager::getInstance().dump());
    const auto seen = std::find(lines.rbegin(), lines.rend(), lastLine);
    lines.erase(lines.begin(), seen == lines.rend() ? lines.begin() : seen.base());
    if (!lines.empty()) {
        lastLine = lines.back();
    }
    if (sink) {
        std::for_each(lines.begin(), lines.end(), sink);
    }
    return lines;
}

std::unique_ptr<Backend> makeBackend(const ModemOptions& options, LogSink sink) {
    return std::make_unique<DeviceModem>(options, std::move(sink));
}

}  // namespace velactl
