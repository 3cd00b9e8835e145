// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/FaultPlan.h"

#include <algorithm>

namespace velasim {

namespace {

bool matchesAll(const FaultRule& rule, FaultPoint point, std::uint32_t messageId,
                std::int32_t instance) {
    return pointOf(rule.fault) == point && appliesTo(rule.fault, messageId) &&
           (rule.messageId == kAnyMessage || rule.messageId == messageId) &&
           (!rule.instance || *rule.instance == instance);
}

}  // namespace

FaultPlan::FaultPlan(std::uint64_t seed, const std::vector<FaultRule>& rules) : seed(seed) {
    for (const auto& rule : rules) {
        add(rule);
    }
}

std::size_t FaultPlan::add(const FaultRule& rule) {
    const std::lock_guard lock(mutex);
    Random spread(Random(seed).next() + states.size());
    states.push_back(State{rule, Random(spread.next())});
    return states.size() - 1;
}

void FaultPlan::remove(std::size_t rule) {
    const std::lock_guard lock(mutex);
    if (rule < states.size()) {
        states[rule].ended = true;
    }
}

void FaultPlan::reset(std::uint64_t newSeed) {
    const std::lock_guard lock(mutex);
    seed = newSeed;
    states.clear();
}

void FaultPlan::clear() {
    const std::lock_guard lock(mutex);
    std::for_each(states.begin(), states.end(), [](State& state) { state.ended = true; });
}

std::uint32_t FaultPlan::occurrences(std::size_t rule) const {
    const std::lock_guard lock(mutex);
    return rule < states.size() ? states[rule].occurrences : 0;
}

std::uint32_t FaultPlan::strikes(std::size_t rule) const {
    const std::lock_guard lock(mutex);
    return rule < states.size() ? states[rule].strikes : 0;
}

std::vector<FiredFault> FaultPlan::onRequest(std::uint32_t messageId, std::int32_t instance) {
    return fire([=](const FaultRule& rule) {
        return matchesAll(rule, FaultPoint::Request, messageId, instance);
    });
}

std::vector<FiredFault> FaultPlan::onIndication(std::uint32_t cause, ChangeEvent event,
                                                std::int32_t instance) {
    return fire([=](const FaultRule& rule) {
        return matchesAll(rule, FaultPoint::Indication, cause, instance) &&
               (!rule.event || *rule.event == event);
    });
}

std::vector<FiredFault> FaultPlan::onConnect(Fault fault) {
    return fire([=](const FaultRule& rule) { return rule.fault == fault; });
}

bool FaultPlan::isDue(State& state) {
    const auto& rule = state.rule;
    const auto every = std::max(rule.every, 1U);
    ++state.occurrences;
    if (state.occurrences < rule.first || (state.occurrences - rule.first) % every != 0 ||
        (rule.count != 0 && state.strikes >= rule.count)) {
        return false;
    }
    return rule.probability >= 1.0 || state.random.chance(rule.probability);
}

template <typename Matches>
std::vector<FiredFault> FaultPlan::fire(Matches matches) {
    const std::lock_guard lock(mutex);
    std::vector<FiredFault> fired;
    for (auto& state : states) {
        if (!state.ended && matches(state.rule) && isDue(state)) {
            ++state.strikes;
            fired.push_back({state.rule.fault, state.rule.value, state.random.next()});
        }
    }
    return fired;
}

}  // namespace velasim
