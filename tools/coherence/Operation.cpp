// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Operation.h"

#include <velasim/Random.h>
#include <wds_service_v01.h>

#include <iterator>
#include <numeric>

#include "Model.h"
#include "RandomProfile.h"

namespace coherence {

namespace {

using Kind = Operation::Kind;
using velasim::Random;
using velasim::Technology;

struct KindInfo {
    Kind kind;
    const char* name;
    unsigned weight;
};

constexpr KindInfo kKinds[] = {
    {Kind::Add, "add", 90},
    {Kind::Modify, "modify", 120},
    {Kind::Delete, "delete", 50},
    {Kind::Filter, "filter", 70},
    {Kind::Match, "match", 60},
    {Kind::Drop, "drop", 70},
    {Kind::Listen, "listen", 90},
    {Kind::RefreshStart, "refresh start", 6},
    {Kind::RefreshEnd, "refresh end", 60},
    {Kind::Init, "init", 5},
    {Kind::ForeignCreate, "foreign create", 35},
    {Kind::ForeignModify, "foreign modify", 60},
    {Kind::ForeignDelete, "foreign delete", 35},
    {Kind::SubscriptionChange, "subscription change", 8},
    {Kind::ProfileReady, "profile ready", 8},
    {Kind::ServiceDown, "service down", 5},
    {Kind::ServiceUp, "service up", 10},
    {Kind::Restart, "restart", 8},
    {Kind::DeliverOne, "deliver one", 100},
    {Kind::DeliverAll, "deliver all", 120},
    {Kind::DeliverAtOnce, "deliver at once", 60},
    {Kind::ReleaseDelayed, "release delayed", 15},
    {Kind::Inject, "inject", 6},
    {Kind::SetFault, "fault", 90},
    {Kind::ClearFaults, "clear faults", 12},
};

constexpr std::uint32_t kMessages[] = {
    RLINK_WDS_CREATE_PROFILE_REQ_V01,   RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01,
    RLINK_WDS_DELETE_PROFILE_REQ_V01,   RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01,
    RLINK_WDS_GET_PROFILE_LIST_REQ_V01, velasim::kForeignChange};

bool isMeaningful(const velasim::FaultRule& rule) {
    if (rule.messageId == velasim::kAnyMessage ||
        pointOf(rule.fault) == velasim::FaultPoint::Connect) {
        return true;
    }
    const bool isChange = rule.messageId <= RLINK_WDS_DELETE_PROFILE_REQ_V01;
    return pointOf(rule.fault) == velasim::FaultPoint::Indication
               ? isChange
               : rule.messageId != velasim::kForeignChange && appliesTo(rule.fault, rule.messageId);
}

/** Of what a fault can be told, what the model need not know: an error, or how far it goes. */
std::uint32_t randomValue(Random& random, velasim::Fault fault) {
    const bool isRefusal = fault == velasim::Fault::Refuse;
    return isRefusal || pointOf(fault) == velasim::FaultPoint::Indication
               ? static_cast<std::uint32_t>(random.below(isRefusal ? 100 : 4))
               : 0;
}

std::string messageText(const velasim::FaultRule& rule) {
    return rule.messageId == velasim::kAnyMessage      ? "any"
           : rule.messageId == velasim::kForeignChange ? "of someone else"
                                                       : velasim::messageName(rule.messageId);
}

std::string describe(const velasim::FaultRule& rule) {
    const auto value = rule.value == 0 ? "" : " " + std::to_string(rule.value);
    const auto text = toString(rule.fault) + value + " on message " + messageText(rule);
    if (rule.probability < 1) {
        return text + " with probability " + std::to_string(rule.probability);
    }
    return text + ", number " + std::to_string(rule.first) + ", " + std::to_string(rule.count) +
           " times";
}

/** Keys are found in the first slots, mostly. */
unsigned randomSlot(Random& random, Kind kind) {
    const bool isQuestion = kind == Kind::Modify || kind == Kind::Match;
    const auto slots = isQuestion && random.chance(0.8) ? 3 : Model::kSlots;
    return static_cast<unsigned>(random.below(slots));
}

}  // namespace

vela::ProfileParams Operation::params() const {
    Random random(detail);
    return randomParams(random, kFewFields);
}

vela::AddProfileParams Operation::addParams() const {
    Random random(detail);
    const auto params = randomParams(random, kManyFields);
    const bool isOdd = random.chance(0.01);  // a technology that does not exist
    const auto technology = isOdd ? 2 : random.chance(0.3) ? 1 : 0;
    const bool isPersistent = random.chance(0.4);
    return {params, isPersistent, static_cast<vela::TechType>(technology), random.chance(0.2)};
}

vela::FilterProfileParams Operation::filter() const {
    Random random(detail);
    return randomFilter(random);
}

int Operation::instance() const {
    return static_cast<int>(detail % Model::kInstances);
}

bool Operation::isElsewhere() const {
    return Random(detail ^ 3U).chance(0.15);
}

ProfileId Operation::id() const {
    Random random(detail ^ 1U);
    const auto technology = random.chance(0.3) ? Technology::ThreeGpp2 : Technology::ThreeGpp;
    return {technology, static_cast<int>(1 + random.below(6))};
}

velasim::Settings Operation::settings() const {
    Random random(detail);
    return randomSettings(random, id().is3gpp2());
}

velasim::FaultRule Operation::rule() const {
    if (givenRule) {
        return *givenRule;
    }
    Random random(detail);
    const auto all = velasim::allFaults();
    velasim::FaultRule rule;
    do {  // what needs an init to heal comes less often
        rule.fault = all[random.below(all.size())];
    } while (pointOf(rule.fault) == velasim::FaultPoint::Connect && random.chance(0.7));
    do {
        rule.messageId = random.chance(0.5) ? velasim::kAnyMessage : oneOf(random, kMessages);
    } while (!isMeaningful(rule));
    rule.first = static_cast<std::uint32_t>(1 + random.below(3));
    rule.count = static_cast<std::uint32_t>(1 + random.below(3));
    rule.value = randomValue(random, rule.fault);
    return rule;
}

std::vector<std::uint8_t> Operation::bytes() const {
    Random random(detail);
    const auto odd = [&](unsigned limit) {  // mostly sensible
        return static_cast<std::uint8_t>(random.below(random.chance(0.2) ? 256 : limit));
    };
    if (random.chance(0.2)) {
        return {0x7F, 0, 0};  // decodable, and says nothing
    }
    const auto type = odd(2);
    const auto index = odd(7);
    const auto event = odd(6);
    return {0x10, 9, 0, type, 0, 0, 0, index, event, 0, 0, 0};
}

std::uint32_t Operation::messageId() const {
    constexpr std::uint32_t kExpected = RLINK_WDS_PROFILE_CHANGED_IND_V01;
    return Random(detail ^ 2U).chance(0.2) ? kExpected + 1 : kExpected;
}

std::string Operation::line() const {
    std::string text = kKinds[static_cast<std::size_t>(kind)].name;
    if (kind <= Kind::Listen && kind != Kind::Filter) {
        text += " key" + std::to_string(slot);
    }
    switch (kind) {
        case Kind::Add:
            return text + " " + addParams().dump();
        case Kind::Modify:
            return text + " " + params().dump();
        case Kind::Filter:
        case Kind::Match:
            return text + " " + filter().dump();
        case Kind::Listen:
            return text + ", then drop key" + std::to_string(other);
        case Kind::ForeignCreate:
        case Kind::ForeignModify:
            text += " " + velasim::describe(settings(), id().technology) + " as";
            [[fallthrough]];
        case Kind::ForeignDelete:
            return text + " " +
                   (kind == Kind::ForeignCreate ? toString(id().technology) : id().text()) +
                   (isElsewhere() ? " of another instance" : "");
        case Kind::SetFault:
            return text + " " + describe(rule());
        case Kind::Init:
            return text + " on instance " + std::to_string(instance());
        default:
            return text;
    }
}

std::vector<Operation> randomOperations(std::uint64_t seed, std::size_t count,
                                        const std::vector<velasim::FaultRule>& mix) {
    Random random(seed);
    const bool hasFaults = !random.chance(0.2) && mix.empty();
    const bool hasRestarts = !random.chance(0.2);
    const auto weightOf = [&](const KindInfo& info) {
        const bool isFault = info.kind == Kind::SetFault || info.kind == Kind::ClearFaults ||
                             info.kind == Kind::Inject;
        const bool isRestart = info.kind >= Kind::ServiceDown && info.kind <= Kind::Restart;
        return (isFault && !hasFaults) || (isRestart && !hasRestarts) ? 0U : info.weight;
    };
    std::vector<unsigned> weights;
    std::transform(std::begin(kKinds), std::end(kKinds), std::back_inserter(weights), weightOf);
    const auto total = std::accumulate(weights.begin(), weights.end(), 0U);

    std::vector<Operation> operations(count);
    for (auto& operation : operations) {
        auto pick = random.below(total);
        std::size_t kind = 0;
        while (pick >= weights[kind]) {
            pick -= weights[kind++];
        }
        operation.kind = kKinds[kind].kind;
        operation.slot = randomSlot(random, operation.kind);
        operation.other = static_cast<unsigned>(random.below(Model::kSlots));
        operation.detail = random.next();
    }
    std::transform(mix.begin(), mix.end(), std::inserter(operations, operations.begin()),
                   [](const auto& rule) {
                       return Operation{Kind::SetFault, 0, 0, 0, rule};
                   });
    return operations;
}

}  // namespace coherence
