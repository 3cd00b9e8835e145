// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Operation.h"

#include <velasim/Random.h>
#include <wds_service_v01.h>

#include <iterator>
#include <numeric>
#include <string>

#include "Model.h"

namespace coherence {

namespace {

using Kind = Operation::Kind;
using Params = vela::ProfileParams;
using velasim::Random;
using velasim::Technology;

// Values come from small pools, so that filters match and changes repeat; some do not fit.

template <typename Value, std::size_t Size>
const Value& oneOf(Random& random, const Value (&values)[Size]) {
    return values[random.below(Size)];
}

/** How probable each field is, of a change and of a new profile. */
constexpr double kFewFields = 0.12;
constexpr double kManyFields = 0.3;

const std::string kNames[] = {
    "internet",           "IMS", "ims", "Internet.Operator", "", std::string("net\0work", 8), "net",
    std::string(160, 'N')};
const std::string kUsers[] = {"bob", "Bob", std::string(130, 'u')};
const std::string kPasswords[] = {"", "secret", "Secret", std::string("sec\0ret", 7),
                                  std::string(140, 's')};
constexpr int kCounts[] = {0, 1, 65536, 70000, -1};
constexpr vela::ApnClass kClasses[] = {vela::ApnClass::IMS, vela::ApnClass::INET,
                                       static_cast<vela::ApnClass>(300)};
constexpr vela::AuthType kAuthTypes[] = {vela::AuthType::NONE, vela::AuthType::PAP,
                                         vela::AuthType::PAP_CHAP, static_cast<vela::AuthType>(6)};
constexpr bool kFlags[] = {false, true};

/** Of many types, of one, of none, and with one that means nothing. */
unsigned randomTypes(Random& random) {
    constexpr unsigned kMasks[] = {0, 1, 0x45, 0x1001, 0xFFF};
    return random.chance(0.6) ? oneOf(random, kMasks) : 1U << random.below(12);
}

vela::IPType randomIPType(Random& random) {
    return static_cast<vela::IPType>(random.chance(0.03) ? 5 : random.below(4));
}

/** Each with the same probability, but for those that are found by a part of theirs. */
void setPlainFields(Random& random, double probability, Params& params) {
    const auto draw = [&](auto set, const auto& pool) {
        if (random.chance(probability)) {
            (params.*set)(oneOf(random, pool));
        }
    };
    if (random.chance(2 * probability)) {
        params.setApnName(oneOf(random, kNames));
    }
    if (random.chance(2 * probability)) {
        params.setApnTypesMask(randomTypes(random));
    }
    draw(&Params::setUserName, kUsers);
    draw(&Params::setPassword, kPasswords);
    draw(&Params::setAuthType, kAuthTypes);
    draw(&Params::setApnClass, kClasses);
    draw(&Params::setIsClatEnabled, kFlags);
    draw(&Params::setMaxPdnsConnPerBlock, kCounts);
    draw(&Params::setMaxPdnConnTimer, kCounts);
    draw(&Params::setPdnReqWaitInterval, kCounts);
    draw(&Params::setIsApnDisabled, kFlags);
    draw(&Params::setIsEmergencySupported, kFlags);
}

void setIPTypes(Random& random, double probability, Params& params) {
    if (random.chance(probability)) {
        params.setHomeIPType(randomIPType(random));
    }
    if (random.chance(probability)) {
        params.setRoamIPType(randomIPType(random));
    }
}

struct RawNumber {
    const char* name;
    std::uint64_t value;
};

/** What the library never writes but understands: any number that is not 0 is true, high bits are
 * kept or ignored, a type that is not configured is none, one that means nothing is unknown,
 * roaming types differ, and an override may say what is so without it. */
constexpr RawNumber kRawNumbers[] = {
    {"apn_type_mask", 0x8000'0000'0000'0001U},
    {"apn_type_mask", 0x1001},
    {"apn_type_mask", 0x1'0000'1013U},
    {"clat_enabled", 2},
    {"pdp_type", 1},
    {"pdn_type_3gpp2", 3},
    {"lte_roaming_pdp_type", 7},
    {"override_home_pdp_type", 0},
    {"override_home_pdp_type", 1},
    {"override_home_pdp_type", 255},
    {"lte_roaming_pdp_type", 0},
    {"lte_roaming_pdp_type", 255},
    {"umts_roaming_pdp_type", 1},
    {"umts_roaming_pdp_type", 255},
    {"apn_disabled_flag", 255},
    {"emergency_calls_support", 128},
    {"authentication_preference", 6},
    {"authentication_protocol", 6},
    {"pdn_level_authentication_protocol", 2},
    {"apn_class", 200},
    {"apn_class_3gpp2", 200},
};

void setRawNumbers(Random& random, velasim::Settings& settings) {
    while (random.chance(0.7)) {
        const auto& raw = oneOf(random, kRawNumbers);
        velasim::setNumber(settings, raw.name, raw.value);
    }
}

Params randomParams(Random& random, double probability) {
    Params params;
    setPlainFields(random, probability, params);
    setIPTypes(random, 1.5 * probability, params);
    return params;
}

vela::FilterProfileParams randomFilter(Random& random) {
    vela::FilterProfileParams filter;
    if (random.chance(0.2)) {
        return filter;  // keys to everything
    }
    setPlainFields(random, 0.05, filter);
    setIPTypes(random, 0.15, filter);
    for (unsigned bit = 1; bit <= toMask(vela::FilterMatchCriteria::RoamIPSuperset); bit *= 2) {
        filter.addFilterMatchCriteria(random.chance(0.4) ? bit : 0);
    }
    if (random.chance(0.3)) {
        filter.setFilterByTechType(static_cast<vela::TechType>(random.below(2)));
    }
    if (random.chance(0.1)) {
        filter.setFilterByProfileId(static_cast<int>(random.below(8)));
    }
    if (random.chance(0.2)) {
        filter.setFilterByIsVelaProfile(random.chance(0.8));
    }
    if (random.chance(0.1)) {
        filter.setFilterByIsIAProfile(random.chance(0.5));
    }
    return filter;
}

velasim::Settings randomSettings(Random& random, bool is3gpp2) {
    const auto params = randomParams(random, kManyFields);
    const Image nothing{is3gpp2, {}};
    auto settings = nothing.changesFor(params).settings();
    if (params.hasApnName() && random.chance(0.5)) {  // others need not write lower case
        velasim::setText(settings, is3gpp2 ? "apn_string_3gpp2" : "apn_name",
                         params.getApnName().substr(0, WDS_APN_NAME_MAX_V01));
    }
    if (random.chance(0.3)) {
        velasim::setText(settings, "profile_name",
                         random.chance(0.5) ? "vela_profile" : "somebody");
    }
    if (random.chance(0.1)) {
        velasim::setText(settings, "pdn_level_user_id", "nobody");
    }
    if (random.chance(0.3)) {
        velasim::setNumber(settings, "persistence_flag", random.below(2));
    }
    setRawNumbers(random, settings);
    return settings;
}

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

std::string describe(const velasim::FaultRule& rule) {
    const auto value = rule.value == 0 ? "" : " " + std::to_string(rule.value);
    const auto message = rule.messageId == velasim::kAnyMessage ? "any"
                         : rule.messageId == velasim::kForeignChange
                             ? "of someone else"
                             : velasim::messageName(rule.messageId);
    const auto text = toString(rule.fault) + value + " on message " + message;
    return rule.probability < 1 ? text + " with probability " + std::to_string(rule.probability)
                                : text + ", number " + std::to_string(rule.first) + ", " +
                                      std::to_string(rule.count) + " times";
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
