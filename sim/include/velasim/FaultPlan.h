// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

#include "velasim/Export.h"
#include "velasim/Fault.h"
#include "velasim/Random.h"

namespace velasim {

/** A fault that strikes now. */
struct FiredFault {
    Fault fault = Fault::Timeout;
    std::uint32_t value = 0;
    /** Random bits for faults that need some (which byte is corrupted). */
    std::uint64_t random = 0;
};

/**
 * Decides which faults strike. Every rule counts its own occurrences and draws from its own stream
 * of random numbers, derived from the plan's seed and the rule's number, so that adding a rule does
 * not move the others and the same seed gives the same decisions.
 *
 * Any thread. Nothing here has an effect by itself: the simulator asks and acts.
 */
class VELASIM_API FaultPlan {
  public:
    explicit FaultPlan(std::uint64_t seed, const std::vector<FaultRule>& rules = {});

    FaultPlan(const FaultPlan&) = delete;
    FaultPlan& operator=(const FaultPlan&) = delete;

    /** Adds a rule and returns its number, from 0. Its occurrences count from now. */
    std::size_t add(const FaultRule& rule);

    /** Ends one rule; the numbers of the others stay. */
    void remove(std::size_t rule);

    /** Ends every rule and starts the numbering and the random streams again from `seed`. */
    void reset(std::uint64_t seed);

    /** Ends every rule; nothing strikes any more. Numbers go on. */
    void clear();

    /** How often a rule has matched and how often it has struck; 0 for an unknown rule. */
    std::uint32_t occurrences(std::size_t rule) const;
    std::uint32_t strikes(std::size_t rule) const;

    /** Counts one request and returns the faults that strike it, in the order of the rules. */
    std::vector<FiredFault> onRequest(std::uint32_t messageId, std::int32_t instance);

    /** The same for one indication that is about to be queued for one client. */
    std::vector<FiredFault> onIndication(std::uint32_t cause, ChangeEvent event,
                                         std::int32_t instance);

    /** The same for one attempt that only the connection fault `fault` can strike. */
    std::vector<FiredFault> onConnect(Fault fault);

  private:
    struct State {
        FaultRule rule;
        Random random;
        bool ended = false;
        std::uint32_t occurrences = 0;
        std::uint32_t strikes = 0;
    };

    static bool isDue(State& state);
    template <typename Matches>
    std::vector<FiredFault> fire(Matches matches);

    mutable std::mutex mutex;
    // Guarded by `mutex`.
    std::uint64_t seed;
    std::vector<State> states;
};

}  // namespace velasim
