// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Image.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

#include "profiles/Text.h"

namespace coherence {

namespace {

using vela::FilterProfileParams;
using vela::IPType;
using Params = vela::ProfileParams;

/** How a client's parameters have a field. */
struct Access {
    bool (*has)(const Params& params) = nullptr;
    Value (*get)(const Params& params) = nullptr;
    void (*set)(Params& params, const Value& value) = nullptr;
};

template <auto Has, auto Get, auto Set>
constexpr Access access() {
    using Type = decltype((std::declval<Params>().*Get)());
    using Kept = std::conditional_t<std::is_same_v<Type, std::string>, Type, std::int64_t>;
    return {[](const Params& params) { return (params.*Has)(); },
            [](const Params& params) { return Value(static_cast<Kept>((params.*Get)())); },
            [](Params& params, const Value& value) {
                (params.*Set)(static_cast<Type>(std::get<Kept>(value)));
            }};
}

struct Rule {
    Field field;
    const char* label;
    Access client;  // empty: clients do not have it
    ValueKind kind;
    const char* name;
    const char* name2 = nullptr;  // 3GPP2; null: it has no such field
    const char* copy2 = nullptr;  // written with the same value, and never read
    std::size_t limit = 0;        // of a text
};

#define VELA_OF_MODEM(Name) \
    Field::Name, #Name, {}
#define VELA_OF_CLIENT(Name) \
    Field::Name, #Name, access<&Params::has##Name, &Params::get##Name, &Params::set##Name>()

constexpr Rule kRules[] = {
    {VELA_OF_CLIENT(ApnName), ValueKind::Text, "apn_name", "apn_string_3gpp2", nullptr, kApnLimit},
    {VELA_OF_CLIENT(UserName), ValueKind::Text, "user_name", "user_id", "pdn_level_user_id", 127},
    {VELA_OF_CLIENT(Password), ValueKind::Text, "password", "authentication_password",
     "pdn_level_authentication_password", 127},
    {VELA_OF_CLIENT(AuthType), ValueKind::AuthType, "authentication_preference",
     "authentication_protocol", "pdn_level_authentication_protocol"},
    {VELA_OF_MODEM(CommonIPType), ValueKind::CommonIPType, "pdp_type", "pdn_type_3gpp2"},
    {VELA_OF_CLIENT(ApnTypesMask), ValueKind::ApnTypes, "apn_type_mask", "apn_type_mask"},
    {VELA_OF_CLIENT(ApnClass), ValueKind::ApnClass, "apn_class", "apn_class_3gpp2"},
    {VELA_OF_CLIENT(IsClatEnabled), ValueKind::Flag, "clat_enabled", "clat_enabled"},
    {VELA_OF_MODEM(OverrideHomeIPType), ValueKind::HomeIPType, "override_home_pdp_type"},
    {VELA_OF_MODEM(LteRoamIP), ValueKind::RoamIPType, "lte_roaming_pdp_type"},
    {VELA_OF_MODEM(UmtsRoamIP), ValueKind::RoamIPType, "umts_roaming_pdp_type"},
    {VELA_OF_CLIENT(MaxPdnsConnPerBlock), ValueKind::Count, "max_pdn_connections_per_block"},
    {VELA_OF_CLIENT(MaxPdnConnTimer), ValueKind::Count, "max_pdn_connection_timer"},
    {VELA_OF_CLIENT(PdnReqWaitInterval), ValueKind::Count, "pdn_request_wait_interval"},
    {VELA_OF_CLIENT(IsApnDisabled), ValueKind::Flag, "apn_disabled_flag"},
    {VELA_OF_CLIENT(IsEmergencySupported), ValueKind::Flag, "emergency_calls_support"},
    {VELA_OF_MODEM(ProfileName), ValueKind::Text, "profile_name", nullptr, nullptr, 50},
};

const char* nameOf(const Rule& rule, bool is3gpp2) {
    return is3gpp2 ? rule.name2 : rule.name;
}

/** As a client means what a profile keeps: only APN types differ. */
Value asClient(Field field, const Value& kept) {
    return field == Field::ApnTypesMask ? Value(clientTypesOf(std::get<std::int64_t>(kept))) : kept;
}

/** Drops what `held` has already. */
void eraseSame(Image& wanted, const Image& held) {
    std::erase_if(wanted.values, [&](const auto& item) {
        const auto value = held.value(item.first);
        return value && asClient(item.first, *value) == item.second;
    });
}

/** Texts up to the field's limit, and to the first zero byte. */
void write(const Rule& rule, const char* name, bool is3gpp2, const Value& value,
           velasim::Settings& settings) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        velasim::setText(settings, name, text->substr(0, std::min(rule.limit, text->find('\0'))));
    } else {
        velasim::setNumber(settings, name,
                           toModem(rule.kind, is3gpp2, std::get<std::int64_t>(value)));
    }
}

// ---- Filters

using Criterion = vela::FilterMatchCriteria;

bool hasCriterion(const FilterProfileParams& filter, Criterion criterion) {
    return (filter.getFilterMatchCriteria() & toMask(criterion)) != 0;
}

/** Whether all bits of `part` are in `whole`. */
bool isWithin(std::int64_t part, std::int64_t whole) {
    return (part | whole) == whole;
}

bool matchesField(const Image& image, Field field, const Value& wanted,
                  const FilterProfileParams& filter) {
    const auto held = image.value(field);
    if (held && field == Field::ApnName && hasCriterion(filter, Criterion::ApnNameSubset)) {
        const auto& part = std::get<std::string>(wanted);
        return std::get<std::string>(*held).find(part) != std::string::npos;
    }
    if (field != Field::ApnTypesMask) {
        return held == wanted;
    }
    const auto types = modemTypesOf(std::get<std::int64_t>(wanted));
    return held == Value(types) || (held && hasCriterion(filter, Criterion::ApnTypeBitmaskSubset) &&
                                    isWithin(types, std::get<std::int64_t>(*held)));
}

bool matchesFields(const Image& image, const FilterProfileParams& filter) {
    // What 3GPP2 profiles cannot have is asked of them all the same, and not found.
    const Image asked = clientFields(filter, false);
    return std::all_of(asked.values.begin(), asked.values.end(), [&](const auto& item) {
        return matchesField(image, item.first, item.second, filter);
    });
}

/** A 3GPP2 profile always has one. */
std::optional<std::int64_t> homeIPTypeOf(const Image& image) {
    const auto home = image.homeIPType();
    return image.is3gpp2 ? home.value_or(kUnknown) : home;
}

/** A profile without roaming types roams with its common one; a UMTS type alone that is missing
 * counts as UNKNOWN. */
std::optional<std::int64_t> roamIPTypeOf(const Image& image) {
    const auto lte = image.number(Field::LteRoamIP);
    const auto umts = image.number(Field::UmtsRoamIP);
    if (image.is3gpp2) {
        return std::nullopt;
    }
    if (!lte && !umts) {
        return image.number(Field::CommonIPType);
    }
    return lte == umts.value_or(kUnknown) ? lte : std::nullopt;
}

bool matchesIPType(const FilterProfileParams& filter, std::optional<std::int64_t> held,
                   vela::IPType asked, Criterion subset, Criterion superset) {
    const auto wanted = static_cast<std::int64_t>(asked);
    return held && (held == wanted || (hasCriterion(filter, subset) && isWithin(wanted, *held)) ||
                    (hasCriterion(filter, superset) && isWithin(*held, wanted)));
}

bool matchesIPTypes(const Image& image, const FilterProfileParams& filter) {
    return (!filter.hasHomeIPType() ||
            matchesIPType(filter, homeIPTypeOf(image), filter.getHomeIPType(),
                          Criterion::HomeIPSubset, Criterion::HomeIPSuperset)) &&
           (!filter.hasRoamIPType() ||
            matchesIPType(filter, roamIPTypeOf(image), filter.getRoamIPType(),
                          Criterion::RoamIPSubset, Criterion::RoamIPSuperset));
}

bool matchesSelectors(const Image& image, ProfileId id, const FilterProfileParams& filter) {
    const bool isAsked3gpp2 = filter.getFilterByTechType() == vela::TechType::TECH_3GPP2;
    return (!filter.hasFilterByTechType() || isAsked3gpp2 == image.is3gpp2) &&
           (!filter.hasFilterByProfileId() || filter.getFilterByProfileId() == id.index) &&
           (!filter.hasFilterByIsIAProfile() ||
            (!image.is3gpp2 && filter.getIsIAProfile() == image.isIA())) &&
           (!filter.hasFilterByIsVelaProfile() ||
            (!image.is3gpp2 && filter.getIsVelaProfile() == image.isVela()));
}

}  // namespace

Image clientFields(const Params& params, bool is3gpp2) {
    Image image{is3gpp2, {}};
    for (const auto& rule : kRules) {
        if (rule.client.has == nullptr || !rule.client.has(params) || !nameOf(rule, is3gpp2)) {
            continue;
        }
        auto& value = image.values[rule.field] = rule.client.get(params);
        if (rule.field == Field::ApnName) {
            value = velactl::toLower(std::get<std::string>(value).substr(0, kApnLimit));
        }
    }
    return image;
}

std::optional<Value> Image::value(Field field) const {
    const auto found = values.find(field);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::int64_t> Image::number(Field field) const {
    const auto held = value(field);
    return held ? std::optional(std::get<std::int64_t>(*held)) : std::nullopt;
}

std::optional<std::int64_t> Image::homeIPType() const {
    const auto override = number(Field::OverrideHomeIPType);
    return override.value_or(kUnknown) != kUnknown ? override : number(Field::CommonIPType);
}

std::optional<std::int64_t> Image::roamIPType() const {
    const auto lte = number(Field::LteRoamIP);
    return lte == number(Field::UmtsRoamIP) ? lte : std::nullopt;
}

Image Image::changesFor(const Params& params) const {
    Image changes = clientFields(params, is3gpp2);
    eraseSame(changes, *this);
    if (const auto types = changes.number(Field::ApnTypesMask)) {
        changes.values[Field::ApnTypesMask] = modemTypesOf(*types);
    }
    changes.apply(changedIPTypes(params));
    return changes;
}

Image Image::changedIPTypes(const Params& params) const {
    Image changes{is3gpp2, {}};
    auto home = homeIPType();
    auto roam = roamIPType();
    if (params.hasHomeIPType()) {
        home = static_cast<std::int64_t>(params.getHomeIPType());
    }
    if (params.hasRoamIPType() && !is3gpp2) {
        roam = static_cast<std::int64_t>(params.getRoamIPType());
    }
    if (home && roam && home != roam) {
        changes.values[Field::OverrideHomeIPType] = home.value_or(kUnknown);
        home = kV4V6;
    } else if (home && roam && number(Field::OverrideHomeIPType)) {
        changes.values[Field::OverrideHomeIPType] = kUnknown;
    }
    if (roam) {
        changes.values[Field::LteRoamIP] = changes.values[Field::UmtsRoamIP] = *roam;
    }
    if (home) {
        changes.values[Field::CommonIPType] = *home;
    }
    eraseSame(changes, *this);
    return changes;
}

void Image::apply(const Image& changes) {
    for (const auto& [field, value] : changes.values) {
        values[field] = value;
    }
}

bool Image::isIA() const {
    return value(Field::ProfileName) == Value("vela_profile_ia");
}

bool Image::isVela() const {
    return isIA() || value(Field::ProfileName) == Value("vela_profile");
}

Params Image::params() const {
    FilterProfileParams result;
    for (const auto& rule : kRules) {
        const auto held = value(rule.field);
        if (held && rule.client.set != nullptr) {
            rule.client.set(result, asClient(rule.field, *held));
        }
    }
    if (const auto home = homeIPType()) {
        result.setHomeIPType(static_cast<IPType>(*home));
    }
    if (const auto roam = roamIPType()) {
        result.setRoamIPType(static_cast<IPType>(*roam));
    }
    if (!is3gpp2) {
        result.setFilterByIsIAProfile(isIA());
        result.setFilterByIsVelaProfile(isVela());
    }
    return Params(result);
}

std::string Image::text(ProfileId id) const {
    auto line = "TechType=" + toString(id.technology) + ",ProfileId=" + std::to_string(id.index);
    for (const auto& rule : kRules) {
        if (const auto held = value(rule.field)) {
            const auto* number = std::get_if<std::int64_t>(&*held);
            line += "," + std::string(rule.label) + "=" +
                    (number ? printed(rule.kind, *number) : std::get<std::string>(*held));
        }
    }
    return line + ",";
}

velasim::Settings Image::settings() const {
    velasim::Settings settings{};
    for (const auto& rule : kRules) {
        const auto held = value(rule.field);
        for (const char* name : {nameOf(rule, is3gpp2), is3gpp2 ? rule.copy2 : nullptr}) {
            if (held && name) {
                write(rule, name, is3gpp2, *held, settings);
            }
        }
    }
    return settings;
}

Image Image::of(const velasim::Settings& settings, bool is3gpp2) {
    Image image{is3gpp2, {}};
    for (const auto& rule : kRules) {
        const char* name = nameOf(rule, is3gpp2);
        if (name == nullptr || (is3gpp2 && rule.field == Field::Password)) {
            continue;  // a 3GPP2 password is never read
        }
        if (const auto text = velasim::textOf(settings, name)) {
            image.values[rule.field] =
                rule.field == Field::ApnName ? velactl::toLower(*text) : *text;
        } else if (const auto number = velasim::numberOf(settings, name)) {
            if (const auto value = fromModem(rule.kind, is3gpp2, *number)) {
                image.values[rule.field] = *value;
            }
        }
    }
    return image;
}

bool Image::isStoredAs(const Image& stored) const {
    const auto kept = Image::of(settings(), is3gpp2);
    return std::all_of(std::begin(kRules), std::end(kRules), [&](const Rule& rule) {
        const auto told = stored.value(rule.field);
        return value(rule.field) == told || kept.value(rule.field) == told;
    });
}

void Image::unterminate() {
    for (const auto& rule : kRules) {
        if (rule.kind == ValueKind::Text && values.count(rule.field) != 0) {
            std::get<std::string>(values[rule.field]).resize(rule.limit + 1, 'x');
        }
    }
}

void garble(velasim::Settings& settings) {
    constexpr std::uint64_t kMeaningless = 0x10000;
    for (const auto& rule : kRules) {
        for (const bool is3gpp2 : {false, true}) {
            const char* name = nameOf(rule, is3gpp2);
            if (name && isEnumerator(rule.kind, is3gpp2) && velasim::numberOf(settings, name)) {
                velasim::setNumber(settings, name, kMeaningless);
            }
        }
    }
}

bool Image::matches(ProfileId id, const FilterProfileParams& filter) const {
    return matchesSelectors(*this, id, filter) && matchesFields(*this, filter) &&
           matchesIPTypes(*this, filter);
}

}  // namespace coherence
