// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The modem of programs that link this file: a device's.
#include <algorithm>
#include <chrono>

#include "modem/Workbench.h"
#include "profiles/Text.h"

namespace velactl {

namespace {

/** A real modem, of which the tool knows what the library's public interface tells. */
class DeviceModem : public Backend {
  public:
    explicit DeviceModem(const ModemOptions& options) : log(options.log) {}

    void connect(vela::Manager& manager, Recorder& recorder, int instance) override {
        manager.init(instance, false);
        recorder.awaitService(std::chrono::seconds(10));
    }

    /** Knows only of the indications of the library's own changes when they are due; what others
     * change arrives when it does. */
    void settle(vela::Manager& manager, Recorder& recorder) override {
        manager.settle();
        recorder.awaitConfirmations(std::chrono::milliseconds(500));
        if (log) {
            tellLog(manager.dump());
        }
    }

    std::optional<ProfileRecords> modemProfiles() override { return std::nullopt; }
    std::string errorName(std::uint32_t error) const override {
        return "error " + std::to_string(error);
    }
    bool keepsMemory() const override { return true; }
    void save() override {}

  private:
    /** Gives the log what is new at the end of the library's dump: its diagnostic log goes to the
     * vendor. */
    void tellLog(const std::vector<std::string>& dump) {
        const auto begin = std::find(dump.rbegin(), dump.rend(), "Logs:").base();
        const auto seen =
            std::find(dump.rbegin(), std::make_reverse_iterator(begin), lastLine).base();
        std::for_each(seen, dump.end(), log);
        lastLine = dump.empty() ? "" : dump.back();
    }

    const std::function<void(std::string_view line)> log;
    std::string lastLine;
};

}  // namespace

std::unique_ptr<Backend> makeBackend(const ModemOptions& options) {
    if (!options.file.empty() || options.capacity) {
        throw badUsage("--modem and --capacity are for the simulated modem; this is a device");
    }
    return std::make_unique<DeviceModem>(options);
}

}  // namespace velactl
