// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <velasim/Random.h>
#include <wds_service_v01.h>

#include <sstream>
#include <utility>

#include "Driver.h"

namespace coherence {

namespace {

using Params = vela::ProfileParams;
using velasim::Random;
using velasim::Simulator;
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
constexpr vela::TechType kTechnologies[] = {vela::TechType::TECH_3GPP, vela::TechType::TECH_3GPP,
                                            vela::TechType::TECH_3GPP2};

template <typename Action>
void maybe(Random& random, double probability, Action action) {
    if (random.chance(probability)) {
        action();
    }
}

/** Of many types, of one, of none, and with one that means nothing. */
unsigned randomTypes(Random& random) {
    constexpr unsigned kMasks[] = {0, 1, 0x45, 0x1001, 0xFFF};
    return random.chance(0.6) ? oneOf(random, kMasks) : 1U << random.below(12);
}

/** All but the IP types. APN names and types are likelier: filters ask for parts of them, too. */
void setPlainFields(Random& random, double probability, Params& params) {
    const auto draw = [&](auto set, const auto& pool, double often = 1) {
        maybe(random, often * probability, [&] { (params.*set)(oneOf(random, pool)); });
    };
    draw(&Params::setApnName, kNames, 2);
    maybe(random, 2 * probability, [&] { params.setApnTypesMask(randomTypes(random)); });
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
    for (const auto set : {&Params::setHomeIPType, &Params::setRoamIPType}) {
        maybe(random, probability, [&] {
            (params.*set)(static_cast<vela::IPType>(random.chance(0.03) ? 5 : random.below(4)));
        });
    }
}

/** What the library never writes but understands: any number that is not 0 is true, high bits are
 * kept or ignored, a type that is not configured is none, one that means nothing is unknown,
 * roaming types differ, and an override may say what is so without it. */
const std::pair<const char*, std::vector<std::uint64_t>> kRawNumbers[] = {
    {"apn_type_mask", {0x8000'0000'0000'0001U, 0x1001, 0x1'0000'1013U}},
    {"clat_enabled", {2}},
    {"pdp_type", {1}},
    {"pdn_type_3gpp2", {3}},
    {"lte_roaming_pdp_type", {7, 0, 255}},
    {"override_home_pdp_type", {0, 1, 255}},
    {"umts_roaming_pdp_type", {1, 255}},
    {"apn_disabled_flag", {255}},
    {"emergency_calls_support", {128}},
    {"authentication_preference", {6}},
    {"authentication_protocol", {6}},
    {"pdn_level_authentication_protocol", {2}},
    {"apn_class", {200}},
    {"apn_class_3gpp2", {200}},
};

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
        maybe(random, 0.4, [&] { filter.addFilterMatchCriteria(bit); });
    }
    maybe(random, 0.3, [&] { filter.setFilterByTechType(oneOf(random, kTechnologies)); });
    maybe(random, 0.1, [&] { filter.setFilterByProfileId(static_cast<int>(random.below(8))); });
    maybe(random, 0.2, [&] { filter.setFilterByIsVelaProfile(random.chance(0.8)); });
    maybe(random, 0.1, [&] { filter.setFilterByIsIAProfile(random.chance(0.5)); });
    return filter;
}

velasim::Settings randomSettings(Random& random, bool is3gpp2) {
    const auto params = randomParams(random, kManyFields);
    const Image nothing{is3gpp2, {}};
    auto settings = nothing.changesFor(params).settings();
    const auto setText = [&](double probability, const char* field, const std::string& text) {
        maybe(random, probability, [&] { velasim::setText(settings, field, text); });
    };
    if (params.hasApnName()) {  // others need not write lower case
        setText(0.5, is3gpp2 ? "apn_string_3gpp2" : "apn_name",
                params.getApnName().substr(0, kApnLimit));
    }
    setText(0.2, "profile_name", "vela_profile");
    setText(0.1, "profile_name", "somebody");
    setText(0.1, "pdn_level_user_id", "nobody");
    maybe(random, 0.3, [&] { velasim::setNumber(settings, "persistence_flag", random.below(2)); });
    while (random.chance(0.7)) {
        const auto& [field, values] = oneOf(random, kRawNumbers);
        velasim::setNumber(settings, field, values[random.below(values.size())]);
    }
    return settings;
}

constexpr std::uint32_t kMessages[] = {
    RLINK_WDS_CREATE_PROFILE_REQ_V01,   RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01,
    RLINK_WDS_DELETE_PROFILE_REQ_V01,   RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01,
    RLINK_WDS_GET_PROFILE_LIST_REQ_V01, velasim::kForeignChange};

velasim::FaultRule randomRule(Random& random) {
    const auto all = velasim::allFaults();
    velasim::FaultRule rule;
    do {  // what needs an init to heal comes less often
        rule.fault = all[random.below(all.size())];
    } while (pointOf(rule.fault) == velasim::FaultPoint::Connect && random.chance(0.7));
    do {
        rule.messageId = random.chance(0.5) ? velasim::kAnyMessage : oneOf(random, kMessages);
    } while (rule.messageId != velasim::kAnyMessage && !appliesTo(rule.fault, rule.messageId));
    rule.first = static_cast<std::uint32_t>(1 + random.below(3));
    rule.count = static_cast<std::uint32_t>(1 + random.below(3));
    // Of what a fault can be told, what the model need not know: an error, or how far it goes.
    const bool isIndication = pointOf(rule.fault) == velasim::FaultPoint::Indication;
    rule.value = static_cast<std::uint32_t>(random.below(rule.fault == velasim::Fault::Refuse ? 100U
                                                         : isIndication                       ? 4U
                                                                        : 1U));
    return rule;
}

// ---- Operations: their text is what follows the name of their kind

unsigned randomSlot(Random& random) {
    return static_cast<unsigned>(random.below(Model::kSlots));
}

/** Keys are found in the first slots, mostly. */
unsigned fullSlot(Random& random) {
    return random.chance(0.8) ? static_cast<unsigned>(random.below(3)) : randomSlot(random);
}

template <auto Method>
Operation plain(Random& /*random*/) {
    return {"", [](Driver& driver) { (driver.*Method)(); }};
}

template <auto OfSimulator, auto OfModel>
Operation plain(Random& /*random*/) {
    return {"", [](Driver& driver) { driver.onBoth<OfSimulator, OfModel>(); }};
}

template <auto Method, typename... Params>
Operation atSlot(unsigned slot, const Params&... params) {
    return {(" key" + std::to_string(slot) + ... + (" " + params.dump())),
            [=](Driver& driver) { (driver.*Method)(slot, params...); }};
}

template <auto Method>
Operation onKey(Random& random) {
    return atSlot<Method>(randomSlot(random));
}

Operation add(Random& random) {
    const auto slot = randomSlot(random);
    const auto params = randomParams(random, kManyFields);
    const bool isOdd = random.chance(0.01);  // a technology that does not exist
    const auto technology = isOdd ? vela::TechType{2} : oneOf(random, kTechnologies);
    const bool isPersistent = random.chance(0.4);
    return atSlot<&Driver::add>(
        slot, vela::AddProfileParams(params, isPersistent, technology, random.chance(0.2)));
}

Operation modify(Random& random) {
    const auto slot = fullSlot(random);
    return atSlot<&Driver::modify>(slot,
                                   vela::ModifyProfileParams(randomParams(random, kFewFields)));
}

Operation match(Random& random) {
    const auto slot = fullSlot(random);
    return atSlot<&Driver::match>(slot, randomFilter(random));
}

Operation filter(Random& random) {
    const auto params = randomFilter(random);
    return {" " + params.dump(), [=](Driver& driver) { driver.filter(params); }};
}

Operation listen(Random& random) {
    const auto slot = randomSlot(random);
    const auto victim = randomSlot(random);
    return {" key" + std::to_string(slot) + ", then drop key" + std::to_string(victim),
            [=](Driver& driver) { driver.listen(slot, victim); }};
}

Operation init(Random& random) {
    const auto instance = static_cast<int>(random.below(Model::kInstances));
    return {" on instance " + std::to_string(instance),
            [=](Driver& driver) { driver.init(instance); }};
}

/** Of the modem's instance at hand, mostly. */
template <typename Act>
Operation onInstance(Random& random, const std::string& text, Act act) {
    const bool isElsewhere = random.chance(0.15);
    return {text + (isElsewhere ? " of another instance" : ""),
            [=](Driver& driver) { act(driver, driver.instance(isElsewhere)); }};
}

/** Someone else's change of a profile that the modem may have. */
enum class Change { Create, Modify, Delete };
template <Change Kind>
Operation foreign(Random& random) {
    const auto technology = random.chance(0.3) ? Technology::ThreeGpp2 : Technology::ThreeGpp;
    const ProfileId id{technology, static_cast<int>(1 + random.below(6))};
    const auto settings = randomSettings(random, id.is3gpp2());
    const auto text = Kind == Change::Delete
                          ? " " + id.text()
                          : " " + id.text() + " with " + velasim::describe(settings, technology);
    return onInstance(random, text, [=](Driver& driver, int instance) {
        driver.onBoth([&](auto& modem) {
            if constexpr (Kind == Change::Create) {  // under another number, maybe
                return modem.foreignCreate(instance, technology, settings);
            } else if constexpr (Kind == Change::Modify) {
                return modem.foreignModify(instance, technology, id.index, settings);
            } else {
                return modem.foreignDelete(instance, technology, id.index);
            }
        });
    });
}

template <bool (Simulator::*Report)(std::int32_t, Technology, int)>
Operation report(Random& random) {
    return onInstance(random, "", [](Driver& driver, int instance) {
        driver.onSimulator(
            [=](auto& simulator) { (simulator.*Report)(instance, Technology::ThreeGpp, 0); });
    });
}

/** An indication that no modem should send. */
Operation inject(Random& random) {
    const auto odd = [&](unsigned limit) {  // mostly sensible
        return static_cast<std::uint8_t>(random.below(random.chance(0.2) ? 256 : limit));
    };
    std::vector<std::uint8_t> bytes{0x7F, 0, 0};  // decodable, and says nothing
    if (random.chance(0.8)) {
        bytes = {0x10, 9, 0, odd(2), 0, 0, 0, odd(7), odd(6), 0, 0, 0};
    }
    const std::uint32_t wrong = random.chance(0.2) ? 1 : 0;
    return {"", [=](Driver& driver) {
                driver.onSimulator([&](auto& simulator) {
                    simulator.injectIndication(bytes, RLINK_WDS_PROFILE_CHANGED_IND_V01 + wrong);
                });
            }};
}

Operation fault(const velasim::FaultRule& rule) {
    std::ostringstream text;
    text << "fault " << toString(rule.fault) << " value=" << rule.value << " on message "
         << (rule.messageId == velasim::kAnyMessage ? "any" : velasim::messageName(rule.messageId))
         << ", from number " << rule.first << ", at most " << rule.count
         << " times (0: always), with probability " << rule.probability;
    return {text.str(), [=](Driver& driver) { driver.addFault(rule); }};
}

/** What a run may be without. */
enum class Group { None, Restarts, Faults };

struct Kind {
    const char* name;
    unsigned weight;
    Operation (*make)(Random& random);
    Group group = Group::None;
};

constexpr Kind kKinds[] = {
    {"add", 90, add},
    {"modify", 120, modify},
    {"delete", 50, onKey<&Driver::remove>},
    {"filter", 70, filter},
    {"match", 60, match},
    {"drop", 70, onKey<&Driver::drop>},
    {"listen", 90, listen},
    {"refresh start", 6, plain<&Driver::startRefresh>},
    {"refresh end", 60, plain<&Driver::endRefresh>},
    {"init", 5, init},
    {"foreign create", 35, foreign<Change::Create>},
    {"foreign modify", 60, foreign<Change::Modify>},
    {"foreign delete", 35, foreign<Change::Delete>},
    {"subscription change", 8, report<&Simulator::subscriptionChange>},
    {"profile ready", 8, report<&Simulator::profileReady>},
    {"service down", 5, plain<&Simulator::serviceDown, &Model::serviceDown>, Group::Restarts},
    {"service up", 10, plain<&Simulator::serviceUp, &Model::serviceUp>, Group::Restarts},
    {"restart", 8, plain<&Simulator::restart, &Model::restart>, Group::Restarts},
    {"deliver one", 100, plain<&Driver::deliver>},
    {"deliver all", 120, plain<&Driver::deliverAll>},
    {"deliver at once", 60, plain<&Driver::deliverAtOnce>},
    {"release delayed", 15, plain<&Simulator::releaseDelayed, &Model::releaseDelayed>},
    {"inject", 6, inject, Group::Faults},
    {"", 90, [](Random& random) { return fault(randomRule(random)); }, Group::Faults},
    {"clear faults", 12, plain<&Driver::clearFaults>, Group::Faults},
};

}  // namespace

std::vector<Operation> randomOperations(std::uint64_t seed, std::size_t count,
                                        const std::vector<velasim::FaultRule>& mix) {
    Random random(seed);
    const bool hasFaults = !random.chance(0.2) && mix.empty();
    const bool hasRestarts = !random.chance(0.2);
    std::vector<const Kind*> lots;  // each as often as it weighs
    for (const auto& kind : kKinds) {
        const bool isLeftOut = (kind.group == Group::Faults && !hasFaults) ||
                               (kind.group == Group::Restarts && !hasRestarts);
        lots.insert(lots.end(), isLeftOut ? 0 : kind.weight, &kind);
    }
    std::vector<Operation> operations;
    for (const auto& rule : mix) {
        operations.push_back(fault(rule));
    }
    while (operations.size() < count + mix.size()) {
        const auto& kind = *lots[random.below(lots.size())];
        operations.push_back(kind.make(random));
        operations.back().text.insert(0, kind.name);
    }
    return operations;
}

}  // namespace coherence
