// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "IndicationSender.h"
#include "velasim/FaultPlan.h"

namespace velasim {

class SimulatedPlatform;

/** One request on its way through the modem and the faults that strike it. Used once. */
class Exchange {
  public:
    Exchange(SimulatedPlatform& platform, std::uint32_t client, std::uint32_t messageId,
             std::span<const std::uint8_t> request, std::span<std::uint8_t> response,
             unsigned timeoutMs);

    /** The result of the call (RLINK_...). */
    int run();

  private:
    using Lock = std::unique_lock<std::mutex>;
    using Outgoing = std::vector<IndicationSender::Outgoing>;

    std::optional<int> failBeforeEffect(Lock& lock);
    std::optional<ModemError> refusal();
    int complete(Lock& lock, Outgoing indications);
    void sendEarly(Lock& lock, Outgoing& indications);
    void carryOut();
    void noteRequest();
    const FiredFault* strikes(Fault fault);
    int timeOut(Lock& lock);
    int finish(int result);

    SimulatedPlatform& platform;
    const std::uint32_t client;
    const std::uint32_t messageId;
    const std::span<const std::uint8_t> request;
    const std::span<std::uint8_t> response;
    const unsigned timeoutMs;

    std::int32_t instance = 0;
    std::vector<FiredFault> faults;
    std::vector<std::uint8_t> reply;
    WdsService::Reply outcome;
};

}  // namespace velasim
