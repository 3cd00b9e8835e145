// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

#include "vela/Observer.h"
#include "wds_service_v01.h"

namespace vela {

class ModemProfile;

/** Follows one message after the other to the modem and tells the observer what became of each.
 * Worker thread only, unless something else is said. */
class MessageObservation {
  public:
    /** The request that the following messages serve; null: none. */
    void serve(const ClientRequest* request) { served = request; }

    /** A message is about to be sent. */
    void begin(std::uint32_t messageId);

    /** The number of the message that is under way; 0: none. Any thread. */
    std::uint32_t messageUnderWay() const { return underWay.load(std::memory_order_relaxed); }

    /** It has come back with this result of the messaging library and, if that is 0, this response.
     * True when the modem has carried it out. */
    bool end(int result, const wds_response_type_v01& response);

    /** Tells the latest message. `profile` is what was written or read; null for none. */
    void tell(ModemMessageType type, TechType techType = TechType::TECH_3GPP, int profileId = -1,
              const ModemProfile* profile = nullptr) const;

  private:
    std::atomic<std::uint32_t> underWay{0};
    const ClientRequest* served = nullptr;
    std::chrono::steady_clock::time_point started;
    std::optional<ModemMessage> latest;  // empty: nobody watched when it was sent
};

}  // namespace vela
