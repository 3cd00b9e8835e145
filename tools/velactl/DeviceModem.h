// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Backend.h"

namespace velactl {

/** A real modem, of which the tool knows what the library's public interface tells. */
class DeviceModem : public Backend {
  public:
    explicit DeviceModem(const ModemOptions& options, LogSink sink);

    void connect(vela::Manager& manager) override;
    void settle(vela::Manager& manager) override;
    std::optional<ProfileRecords> modemProfiles() override { return std::nullopt; }
    std::vector<std::string> takeLog() override;
    std::optional<Answers> takeAnswers() override { return std::nullopt; }
    std::string save() override { return {}; }

  private:
    const int instance;
    const LogSink sink;
    std::string lastLine;
};

}  // namespace velactl
