// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Image.h"

#include <algorithm>
#include <iterator>

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
    if constexpr (std::is_same_v<Type, std::string>) {
        return {[](const Params& params) { return (params.*Has)(); },
                [](const Params& params) { return Value((params.*Get)()); },
                [](Params& params, const Value& value) {
                    (params.*Set)(std::get<std::string>(value));
                }};
    } else {
        return {
            [](const Params& params) { return (params.*Has)(); },
            [](const Params& params) { return Value(static_cast<std::int64_t>((params.*Get)())); },
            [](Params& params, const Value& value) {
                (params.*Set)(static_cast<Type>(std::get<std::int64_t>(value)));
            }};
    }
}

struct Rule {
    Field field;
    ValueKind kind;
    const char* label;
    const char* name;
    const char* name2 = nullptr;  // 3GPP2; null: it has no such field
    Access client = {};
    const char* copy2 = nullptr;  // written with the same value, and never read
    std::size_t limit = 0;        // of a text
};

constexpr Rule kRules[] = {
    {Field::ApnName, ValueKind::Text, "ApnName", "apn_name", "apn_string_3gpp2",
     access<&Params::hasApnName, &Params::getApnName, &Params::setApnName>(), nullptr, kApnLimit},
    {Field::UserName, ValueKind::Text, "UserName", "user_name", "user_id",
     access<&Params::hasUserName, &Params::getUserName, &Params::setUserName>(),
     "pdn_level_user_id", 127},
    {Field::Password, ValueKind::Text, "Password", "password", "authentication_password",
     access<&Params::hasPassword, &Params::getPassword, &Params::setPassword>(),
     "pdn_level_authentication_password", 127},
    {Field::AuthType, ValueKind::AuthType, "AuthType", "authentication_preference",
     "authentication_protocol",
     access<&Params::hasAuthType, &Params::getAuthType, &Params::setAuthType>(),
     "pdn_level_authentication_protocol"},
    {Field::CommonIPType, ValueKind::CommonIPType, "CommonIPType", "pdp_type", "pdn_type_3gpp2"},
    {Field::ApnTypesMask, ValueKind::ApnTypes, "ApnTypesMask", "apn_type_mask", "apn_type_mask",
     access<&Params::hasApnTypesMask, &Params::getApnTypesMask, &Params::setApnTypesMask>()},
    {Field::ApnClass, ValueKind::ApnClass, "ApnClass", "apn_class", "apn_class_3gpp2",
     access<&Params::hasApnClass, &Params::getApnClass, &Params::setApnClass>()},
    {Field::IsClatEnabled, ValueKind::Flag, "IsClatEnabled", "clat_enabled", "clat_enabled",
     access<&Params::hasIsClatEnabled, &Params::getIsClatEnabled, &Params::setIsClatEnabled>()},
    {Field::OverrideHomeIPType, ValueKind::HomeIPType, "OverrideHomeIPType",
     "override_home_pdp_type"},
    {Field::LteRoamIP, ValueKind::RoamIPType, "LteRoamIP", "lte_roaming_pdp_type"},
    {Field::UmtsRoamIP, ValueKind::RoamIPType, "UmtsRoamIP", "umts_roaming_pdp_type"},
    {Field::MaxPdnsConnPerBlock, ValueKind::Count, "MaxPdnsConnPerBlock",
     "max_pdn_connections_per_block", nullptr,
     access<&Params::hasMaxPdnsConnPerBlock, &Params::getMaxPdnsConnPerBlock,
            &Params::setMaxPdnsConnPerBlock>()},
    {Field::MaxPdnConnTimer, ValueKind::Count, "MaxPdnConnTimer", "max_pdn_connection_timer",
     nullptr,
     access<&Params::hasMaxPdnConnTimer, &Params::getMaxPdnConnTimer,
            &Params::setMaxPdnConnTimer>()},
    {Field::PdnReqWaitInterval, ValueKind::Count, "PdnReqWaitInterval", "pdn_request_wait_interval",
     nullptr,
     access<&Params::hasPdnReqWaitInterval, &Params::getPdnReqWaitInterval,
            &Params::setPdnReqWaitInterval>()},
    {Field::IsApnDisabled, ValueKind::Flag, "IsApnDisabled", "apn_disabled_flag", nullptr,
     access<&Params::hasIsApnDisabled, &Params::getIsApnDisabled, &Params::setIsApnDisabled>()},
    {Field::IsEmergencySupported, ValueKind::Flag, "IsEmergencySupported",
     "emergency_calls_support", nullptr,
     access<&Params::hasIsEmergencySupported, &Params::getIsEmergencySupported,
            &Params::setIsEmergencySupported>()},
    {Field::ProfileName, ValueKind::Text, "ProfileName", "profile_name", nullptr, {}, nullptr, 50},
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

/** Up to the field's limit, and to the first zero byte. */
std::string cut(const std::string& text, std::size_t limit) {
    return text.substr(0, std::min(limit, text.find('\0')));
}

void write(const Rule& rule, const char* name, bool is3gpp2, const Value& value,
           velasim::Settings& settings) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        velasim::setText(settings, name, cut(*text, rule.limit));
    } else {
        velasim::setNumber(settings, name,
                           toModem(rule.kind, is3gpp2, std::get<std::int64_t>(value)));
    }
}

/** As APN names are kept. */
std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
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
            value = lower(std::get<std::string>(value).substr(0, kApnLimit));
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
        if (const char* name = nameOf(rule, is3gpp2); held && name) {
            write(rule, name, is3gpp2, *held, settings);
        }
        if (held && is3gpp2 && rule.copy2) {
            write(rule, rule.copy2, is3gpp2, *held, settings);
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
            image.values[rule.field] = rule.field == Field::ApnName ? lower(*text) : *text;
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

}  // namespace coherence
