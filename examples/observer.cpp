// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Telemetry of a radio process: how often the modem fails, in what way, and how fast it answers.
#include <vela/Manager.h>
#include <vela/Observer.h>
#include <velasim/Simulator.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace {

/** Counts messages on the library's worker thread; prints on any. */
class Telemetry : public vela::Observer {
  public:
    void onMessage(const vela::ModemMessage& message) override {
        const std::lock_guard lock(mutex);
        Counts& counts = perType[message.type];
        ++counts.perOutcome.at(static_cast<std::size_t>(message.outcome));
        if (message.outcome == vela::MessageOutcome::Refused) {
            ++counts.perError[message.error];
        }
        counts.durations.emplace_back(message.duration);  // a long-lived process would bound them
    }

    void print() {
        const std::lock_guard lock(mutex);
        for (auto& [type, counts] : perType) {
            const auto& [answered, refused, timedOut, notSent, lost] = counts.perOutcome;
            std::printf("0x%02X: %d answered, %d refused, %d timed out, %d not sent, %d lost;",
                        static_cast<unsigned>(type), answered, refused, timedOut, notSent, lost);
            for (const auto& [error, count] : counts.perError) {
                std::printf(" error %u: %d;", error, count);
            }
            auto& durations = counts.durations;
            std::sort(durations.begin(), durations.end());
            std::printf(" median %.3f ms, longest %.3f ms\n",
                        durations[durations.size() / 2].count(), durations.back().count());
        }
    }

  private:
    struct Counts {
        std::array<int, 5> perOutcome{};  // in the order of the enumeration
        std::map<std::uint32_t, int> perError;
        std::vector<std::chrono::duration<double, std::milli>> durations;
    };

    std::mutex mutex;
    std::map<vela::ModemMessageType, Counts> perType;  // guarded by mutex
};

}  // namespace

int main() {
    velasim::Simulator modem;  // on a device the modem is there already
    const auto telemetry = std::make_shared<Telemetry>();
    vela::setObserver(telemetry);  // before init, so that connecting counts
    vela::Manager& manager = vela::Manager::getInstance();
    manager.init(0, false);
    modem.waitSubscribed();

    modem.faults().add({.fault = velasim::Fault::Refuse,
                        .messageId = RLINK_WDS_CREATE_PROFILE_REQ_V01,
                        .first = 2,
                        .value = 52});
    modem.faults().add(
        {.fault = velasim::Fault::Timeout, .messageId = RLINK_WDS_DELETE_PROFILE_REQ_V01});
    for (int i = 0; i < 3; ++i) {
        const auto key =
            manager.addProfile(vela::AddProfileParams(true, vela::TechType::TECH_3GPP, false));
        manager.deleteProfile(key);
    }
    telemetry->print();
}
