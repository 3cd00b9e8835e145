// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

#include "Change.h"
#include "RlinkRuntime.h"
#include "WdsService.h"
#include "velasim/FaultPlan.h"
#include "velasim/Journal.h"

namespace velasim {

/**
 * Tells clients of changes, as far as the fault plan lets it. Takes no lock: its owner calls it
 * under the lock that guards the service.
 */
class IndicationSender {
  public:
    struct Outgoing {
        RlinkRuntime::Indication indication;
        std::vector<FiredFault> faults;

        bool comesBeforeResponse() const;
    };

    IndicationSender(Journal& journal, FaultPlan& plan, const WdsService& service,
                     RlinkRuntime& runtime);

    /** The indications of the changes, one per change and client that is told, and what will happen
     * to each. `author` and `cause`: the client and the request that made the changes, or 0. */
    std::vector<Outgoing> prepare(const std::vector<Change>& changes, std::uint32_t author,
                                  std::uint32_t cause);

    /** Queues, holds back or loses them. Returns the tickets of what was queued. */
    std::vector<DeliveryQueue::Ticket> send(const std::vector<Outgoing>& all);

  private:
    void sendOne(const Outgoing& outgoing, std::vector<DeliveryQueue::Ticket>& tickets);

    Journal& journal;
    FaultPlan& plan;
    const WdsService& service;
    RlinkRuntime& runtime;
};

}  // namespace velasim
