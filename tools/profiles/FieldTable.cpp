// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <charconv>
#include <sstream>
#include <type_traits>

#include "profiles/ProfileField.h"
#include "profiles/Text.h"

namespace velactl {

template <typename Value>
const Words& wordsOf() {
    static const Words kTechnologies{{"3GPP", "3GPP2"}, {0, 1}};
    static const Words kIPTypes{{"IPv4", "IPv6", "IPv4v6"}, {1, 2, 3}};
    static const Words kAuthTypes{{"none", "PAP", "CHAP", "PAP_CHAP"}, {0, 1, 2, 3}};
    static const Words kClasses{{"IMS", "ADMN", "INET", "APP"}, {1, 2, 3, 4}};
    static const Words kTypes{{"default", "mms", "supl", "dun", "hipri", "fota", "ims", "cbs", "ia",
                               "emergency", "mcx", "xcap"},
                              {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048}};
    return std::is_same_v<Value, vela::TechType>   ? kTechnologies
           : std::is_same_v<Value, vela::IPType>   ? kIPTypes
           : std::is_same_v<Value, vela::AuthType> ? kAuthTypes
           : std::is_same_v<Value, vela::ApnClass> ? kClasses
                                                   : kTypes;
}

template const Words& wordsOf<vela::TechType>();
template const Words& wordsOf<vela::IPType>();
template const Words& wordsOf<vela::AuthType>();
template const Words& wordsOf<vela::ApnClass>();
template const Words& wordsOf<vela::ApnTypes>();

Json nameOf(std::uint64_t number, const Words& words) {
    const auto found = std::find(words.numbers.begin(), words.numbers.end(), number);
    const auto place = static_cast<std::size_t>(found - words.numbers.begin());
    return place < words.names.size() ? Json(words.names[place]) : Json(number);
}

Json namesOf(std::uint64_t mask, const Words& bits) {
    Json list = Json::array();
    for (std::size_t i = 0; i < bits.names.size(); ++i) {
        if ((mask & bits.numbers[i]) != 0) {
            list.push_back(bits.names[i]);
            mask &= ~bits.numbers[i];
        }
    }
    if (mask != 0) {
        std::ostringstream rest;
        rest << "0x" << std::hex << mask;
        list.push_back(rest.str());
    }
    return list;
}

std::optional<std::size_t> placeOf(std::string_view text, const Names& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (sameLetters(text, words[i])) {
            return i;
        }
    }
    return std::nullopt;
}

std::size_t readOneOf(std::string_view option, std::string_view text, const Names& words) {
    if (const auto place = placeOf(text, words)) {
        return *place;
    }
    throw badUsage(std::string(option) + ": " + inQuotes(text) + " is not one of them; use " +
                   alternatives(words));
}

vela::TechType readTech(std::string_view option, std::string_view text) {
    const Words& words = wordsOf<vela::TechType>();
    return static_cast<vela::TechType>(words.numbers[readOneOf(option, text, words.names)]);
}

// The parser of options would take an empty text as 0, and 010 as 8.
std::string wrongNumber(const std::string& text, std::int64_t lowest, std::int64_t highest) {
    const std::string digits = text.substr(text.rfind('-', 0) == 0 ? 1 : 0);
    const bool isPadded = digits.size() > 1 && digits.front() == '0';
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool isNumber = result.ec == std::errc() && result.ptr == end && !isPadded;
    return isNumber && number >= lowest && number <= highest
               ? ""
               : inQuotes(text) + " must be a whole number from " + std::to_string(lowest) +
                     " to " + std::to_string(highest) + ", in decimal digits without leading zeros";
}

namespace {

using Params = vela::ProfileParams;
using Filter = vela::FilterProfileParams;
using Kind = ProfileField::Kind;
using Scope = ProfileField::Scope;
using Criterion = vela::FilterCriterion;

template <typename Type>
void setKind(ProfileField& field) {
    if constexpr (std::is_same_v<Type, int>) {
        field.kind = Kind::Number;
    } else if constexpr (std::is_same_v<Type, bool>) {
        field.kind = Kind::Switch;
        field.words = {"yes", "no"};
    } else if constexpr (std::is_same_v<Type, unsigned int>) {
        field.kind = Kind::WordList;
        field.words = wordsOf<vela::ApnTypes>().names;
        field.numbers = wordsOf<vela::ApnTypes>().numbers;
    } else if constexpr (std::is_enum_v<Type>) {
        field.kind = Kind::Word;
        field.words = wordsOf<Type>().names;
        field.numbers = wordsOf<Type>().numbers;
    }
}

template <typename Type>
Json raw(const Type& value) {
    if constexpr (std::is_same_v<Type, std::string>) {
        return value;
    } else if constexpr (std::is_same_v<Type, vela::IPType>) {
        return value == Type::UNKNOWN ? Json("unknown") : Json(static_cast<int>(value));
    } else {
        return static_cast<std::uint64_t>(value);
    }
}

/** A field of requests and profiles. */
template <Criterion Name, auto Has, auto Get, auto Set>
ProfileField param(ProfileField field) {
    using Type = decltype((std::declval<const Params&>().*Get)());
    setKind<Type>(field);
    field.criteria = {Name};
    field.get = [](const Params& params) {
        return (params.*Has)() ? raw((params.*Get)()) : Json();
    };
    field.set = [](Params& params, const Json& value) {
        if constexpr (std::is_same_v<Type, std::string>) {
            (params.*Set)(value);
        } else {
            (params.*Set)(static_cast<Type>(value.get<std::uint64_t>()));
        }
    };
    return field;
}

/** One of the IP types that the modem keeps. */
ProfileField detail(ProfileField field) {
    setKind<vela::IPType>(field);
    field.scope = Scope::Detail;
    return field;
}

ProfileField persistence(ProfileField field) {
    setKind<bool>(field);
    field.scope = Scope::Profile;
    field.words = {"stored", "temporary"};
    return field;
}

ProfileField maker(ProfileField field) {
    field.kind = Kind::Word;
    field.scope = Scope::Filter;
    field.words = {"vela", "vela-ia", "others"};
    field.criteria = {Criterion::IsVelaProfile, Criterion::IsIAProfile};
    field.get = [](const Params& params) {
        const Filter known(params);
        return known.getIsIAProfile()              ? Json("vela IA")
               : !known.hasFilterByIsVelaProfile() ? Json()
               : known.getIsVelaProfile()          ? Json("vela")
                                                   : Json("others");
    };
    field.set = [](Params& params, const Json& value) {
        Filter known(params);
        known.setFilterByIsVelaProfile(value != "others");
        known.setFilterByIsIAProfile(value == "vela IA");
        params = known;
    };
    return field;
}

}  // namespace

// clang-format off
#define VELACTL_PARAM(Name) \
    param<Criterion::Name, &Params::has##Name, &Params::get##Name, &Params::set##Name>

const std::vector<ProfileField>& profileFields() {
    using Trait = ProfileField::Trait;
    static const Numbers pdpTypes{0, 2, 3};
    static const Numbers pdnTypes{0, 1, 2};
    static const Numbers unsettable{0, 1, 2, 255};
    static const Numbers typeBits{1, 4, 16, 8, 32, 64, 2, 128, 256, 512, 2048, 1024};
    static const std::vector<ProfileField> kFields{
        maker({"made_by", "MADE BY", "who made it", 4, {{"profile_name", ""}}}),
        persistence({"persistent", "KEPT", "whether it survives a power cycle", 4,
            {{"persistence_flag", "persistence_flag"}}}),
        VELACTL_PARAM(ApnName)({"apn", "APN", "APN name", 0,
            {{"apn_name", "apn_string_3gpp2"}}, kMaxApnName, Trait::AnyCase}),
        VELACTL_PARAM(HomeIPType)({"home_ip", "HOME", "IP type at home", 2,
            {{"override_home_pdp_type", "", unsettable}, {"pdp_type", "", pdpTypes},
             {"", "pdn_type_3gpp2", pdnTypes}}}),
        VELACTL_PARAM(RoamIPType)({"roam_ip", "ROAMING", "IP type when roaming", 2,
            {{"lte_roaming_pdp_type", "", unsettable}, {"umts_roaming_pdp_type", "", unsettable}},
            0, Trait::Agreed}),
        detail({"pdp_type", "PDP TYPE", "what the modem keeps as its IP type", 3,
            {{"pdp_type", "", pdpTypes}, {"", "pdn_type_3gpp2", pdnTypes}}}),
        detail({"home_override", "HOME OVERRIDE", "what prevails over that at home", 3,
            {{"override_home_pdp_type", "", unsettable}}}),
        detail({"lte_roaming", "LTE ROAMING", "IP type when roaming in LTE", 3,
            {{"lte_roaming_pdp_type", "", unsettable}}}),
        detail({"umts_roaming", "UMTS ROAMING", "IP type when roaming in UMTS", 3,
            {{"umts_roaming_pdp_type", "", unsettable}}}),
        VELACTL_PARAM(ApnTypesMask)({"types", "TYPES", "APN types", 1,
            {{"apn_type_mask", "apn_type_mask", typeBits}}}),
        VELACTL_PARAM(ApnClass)({"class", "CLASS", "APN class", 4,
            {{"apn_class", "apn_class_3gpp2"}}}),
        VELACTL_PARAM(AuthType)({"auth", "AUTH", "authentication", 5,
            {{"authentication_preference", "authentication_protocol"}}}),
        VELACTL_PARAM(UserName)({"user", "USER", "user name for authentication", 5,
            {{"user_name", "user_id"}}, kMaxCredential}),
        VELACTL_PARAM(Password)({"password", "PASSWORD", "password for authentication", 7,
            {{"password", "authentication_password"}}, kMaxCredential, Trait::Secret}),
        VELACTL_PARAM(IsClatEnabled)({"clat", "CLAT", "use 464XLAT", 6,
            {{"clat_enabled", "clat_enabled"}}}),
        VELACTL_PARAM(IsEmergencySupported)({"emergency", "EMERGENCY",
            "emergency calls are supported", 6, {{"emergency_calls_support", ""}}}),
        VELACTL_PARAM(IsApnDisabled)({"disabled", "DISABLED", "the APN is disabled", 3,
            {{"apn_disabled_flag", ""}}}),
        VELACTL_PARAM(MaxPdnsConnPerBlock)({"max_conns", "MAX CONNS",
            "PDN connections allowed per time block", 8,
            {{"max_pdn_connections_per_block", ""}}, kMaxShort}),
        VELACTL_PARAM(MaxPdnConnTimer)({"max_conns_time", "PER SECONDS",
            "that time block in seconds", 8, {{"max_pdn_connection_timer", ""}}, kMaxShort}),
        VELACTL_PARAM(PdnReqWaitInterval)({"wait_time", "WAIT",
            "wait between PDN requests in seconds", 8, {{"pdn_request_wait_interval", ""}},
            kMaxShort}),
    };
    return kFields;
}

#undef VELACTL_PARAM
// clang-format on

}  // namespace velactl
