// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "RandomProfile.h"

#include <wds_service_v01.h>

#include <string>

#include "Image.h"

namespace coherence {

namespace {

using velasim::Random;
using Params = vela::ProfileParams;

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

void addCriteria(Random& random, vela::FilterProfileParams& filter) {
    for (unsigned bit = 1; bit <= toMask(vela::FilterMatchCriteria::RoamIPSuperset); bit *= 2) {
        if (random.chance(0.4)) {
            filter.addFilterMatchCriteria(bit);
        }
    }
}

}  // namespace

vela::ProfileParams randomParams(Random& random, double probability) {
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
    addCriteria(random, filter);
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
    const Image nothing{is3gpp2, {}, {}};
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

}  // namespace coherence
