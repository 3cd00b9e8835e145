// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Image.h"

#include <algorithm>

#include "ClientFields.h"
#include "Value.h"

namespace coherence {

namespace {

using vela::FilterProfileParams;
using vela::IPType;
using vela::ProfileParams;

struct Rule {
    Field field;
    ValueKind kind;
    const char* label;
    const char* name;
    const char* name2 = nullptr;  // 3GPP2; null: not written
    const char* copy2 = nullptr;  // written with the same value, and never read
    std::size_t limit = 0;        // of a text
};

constexpr Rule kRules[] = {
    {Field::ApnName, ValueKind::Text, "ApnName", "apn_name", "apn_string_3gpp2", nullptr,
     kApnLimit},
    {Field::UserName, ValueKind::Text, "UserName", "user_name", "user_id", "pdn_level_user_id",
     127},
    {Field::Password, ValueKind::Text, "Password", "password", "authentication_password",
     "pdn_level_authentication_password", 127},
    {Field::AuthType, ValueKind::AuthType, "AuthType", "authentication_preference",
     "authentication_protocol", "pdn_level_authentication_protocol"},
    {Field::CommonIPType, ValueKind::CommonIPType, "CommonIPType", "pdp_type", "pdn_type_3gpp2"},
    {Field::ApnTypesMask, ValueKind::ApnTypes, "ApnTypesMask", "apn_type_mask", "apn_type_mask"},
    {Field::ApnClass, ValueKind::ApnClass, "ApnClass", "apn_class", "apn_class_3gpp2"},
    {Field::IsClatEnabled, ValueKind::Flag, "IsClatEnabled", "clat_enabled", "clat_enabled"},
    {Field::OverrideHomeIPType, ValueKind::HomeIPType, "OverrideHomeIPType",
     "override_home_pdp_type"},
    {Field::LteRoamIP, ValueKind::RoamIPType, "LteRoamIP", "lte_roaming_pdp_type"},
    {Field::UmtsRoamIP, ValueKind::RoamIPType, "UmtsRoamIP", "umts_roaming_pdp_type"},
    {Field::MaxPdnsConnPerBlock, ValueKind::Count, "MaxPdnsConnPerBlock",
     "max_pdn_connections_per_block"},
    {Field::MaxPdnConnTimer, ValueKind::Count, "MaxPdnConnTimer", "max_pdn_connection_timer"},
    {Field::PdnReqWaitInterval, ValueKind::Count, "PdnReqWaitInterval",
     "pdn_request_wait_interval"},
    {Field::IsApnDisabled, ValueKind::Flag, "IsApnDisabled", "apn_disabled_flag"},
    {Field::IsEmergencySupported, ValueKind::Flag, "IsEmergencySupported",
     "emergency_calls_support"},
    {Field::ProfileName, ValueKind::Text, "ProfileName", "profile_name", nullptr, nullptr, 50},
};

/** Drops what `held` has already. */
void eraseSame(Image& wanted, const Image& held) {
    std::erase_if(wanted.texts,
                  [&](const auto& item) { return held.text(item.first) == item.second; });
    std::erase_if(wanted.numbers, [&](const auto& item) {
        const auto number = held.number(item.first);
        return number && asClient(item.first, *number) == item.second;
    });
}

/** Up to `limit` bytes, and to the first zero byte. */
std::string cut(const std::string& text, std::size_t limit) {
    return text.substr(0, std::min(limit, text.find('\0')));
}

void writeText(const Rule& rule, bool is3gpp2, const std::string& text,
               velasim::Settings& settings) {
    velasim::setText(settings, is3gpp2 ? rule.name2 : rule.name, cut(text, rule.limit));
    if (is3gpp2 && rule.copy2 != nullptr) {
        velasim::setText(settings, rule.copy2, cut(text, rule.limit));
    }
}

void writeNumber(const Rule& rule, bool is3gpp2, std::int64_t number, velasim::Settings& settings) {
    const auto value = toModem(rule.kind, is3gpp2, number);
    velasim::setNumber(settings, is3gpp2 ? rule.name2 : rule.name, value);
    if (is3gpp2 && rule.copy2 != nullptr) {
        velasim::setNumber(settings, rule.copy2, value);
    }
}

template <typename Value>
std::optional<Value> valueOf(const std::map<Field, Value>& values, Field field) {
    const auto found = values.find(field);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

std::optional<std::string> Image::text(Field field) const {
    return valueOf(texts, field);
}

std::optional<std::int64_t> Image::number(Field field) const {
    return valueOf(numbers, field);
}

std::optional<std::int64_t> Image::homeIPType() const {
    const auto override = number(Field::OverrideHomeIPType);
    return override.value_or(kUnknown) != kUnknown ? override : number(Field::CommonIPType);
}

std::optional<std::int64_t> Image::roamIPType() const {
    const auto lte = number(Field::LteRoamIP);
    return lte == number(Field::UmtsRoamIP) ? lte : std::nullopt;
}

Image Image::changesFor(const ProfileParams& params) const {
    Image changes = clientFields(params, is3gpp2);
    eraseSame(changes, *this);
    if (const auto types = changes.number(Field::ApnTypesMask)) {
        changes.numbers[Field::ApnTypesMask] = modemTypesOf(*types);
    }
    changes.apply(changedIPTypes(params));
    return changes;
}

Image Image::changedIPTypes(const ProfileParams& params) const {
    Image changes{is3gpp2, {}, {}};
    auto home = homeIPType();
    auto roam = roamIPType();
    if (params.hasHomeIPType()) {
        home = static_cast<std::int64_t>(params.getHomeIPType());
    }
    if (params.hasRoamIPType() && !is3gpp2) {
        roam = static_cast<std::int64_t>(params.getRoamIPType());
    }
    if (home && roam && home != roam) {
        changes.numbers[Field::OverrideHomeIPType] = home.value_or(kUnknown);
        home = kV4V6;
    } else if (home && roam && number(Field::OverrideHomeIPType)) {
        changes.numbers[Field::OverrideHomeIPType] = kUnknown;
    }
    if (roam) {
        changes.numbers[Field::LteRoamIP] = changes.numbers[Field::UmtsRoamIP] = *roam;
    }
    if (home) {
        changes.numbers[Field::CommonIPType] = *home;
    }
    eraseSame(changes, *this);
    return changes;
}

void Image::apply(const Image& changes) {
    for (const auto& [field, value] : changes.texts) {
        texts[field] = value;
    }
    for (const auto& [field, value] : changes.numbers) {
        numbers[field] = value;
    }
}

bool Image::isIA() const {
    return text(Field::ProfileName) == "vela_profile_ia";
}

bool Image::isVela() const {
    return isIA() || text(Field::ProfileName) == "vela_profile";
}

ProfileParams Image::params() const {
    FilterProfileParams result;
    tellFields(*this, result);
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
    return ProfileParams(result);
}

std::string Image::text(ProfileId id) const {
    auto line = "TechType=" + toString(id.technology) + ",ProfileId=" + std::to_string(id.index);
    for (const auto& rule : kRules) {
        const auto held = number(rule.field);
        if (const auto value = held ? printed(rule.kind, *held) : text(rule.field)) {
            line += "," + std::string(rule.label) + "=" + *value;
        }
    }
    return line + ",";
}

velasim::Settings Image::settings() const {
    velasim::Settings settings{};
    for (const auto& rule : kRules) {
        if ((is3gpp2 ? rule.name2 : rule.name) == nullptr) {
            continue;
        }
        if (const auto held = text(rule.field)) {
            writeText(rule, is3gpp2, *held, settings);
        } else if (const auto value = number(rule.field)) {
            writeNumber(rule, is3gpp2, *value, settings);
        }
    }
    return settings;
}

Image Image::of(const velasim::Settings& settings, bool is3gpp2) {
    Image image{is3gpp2, {}, {}};
    for (const auto& rule : kRules) {
        const char* name = is3gpp2 ? rule.name2 : rule.name;
        if (name == nullptr || (is3gpp2 && rule.field == Field::Password)) {
            continue;  // a 3GPP2 password is never read
        }
        if (const auto text = velasim::textOf(settings, name)) {
            image.texts[rule.field] = rule.field == Field::ApnName ? lower(*text) : *text;
        } else if (const auto number = velasim::numberOf(settings, name)) {
            if (const auto value = fromModem(rule.kind, is3gpp2, *number)) {
                image.numbers[rule.field] = *value;
            }
        }
    }
    return image;
}

bool Image::isStoredAs(const Image& stored) const {
    const auto kept = Image::of(settings(), is3gpp2);
    return std::all_of(std::begin(kRules), std::end(kRules), [&](const Rule& rule) {
        const auto isIn = [&](const Image& image) {
            return image.text(rule.field) == stored.text(rule.field) &&
                   image.number(rule.field) == stored.number(rule.field);
        };
        return isIn(*this) || isIn(kept);
    });
}

void Image::unterminate() {
    for (const auto& rule : kRules) {
        if (const auto text = texts.find(rule.field); text != texts.end()) {
            text->second.resize(rule.limit + 1, 'x');
        }
    }
}

void garble(velasim::Settings& settings) {
    constexpr std::uint64_t kMeaningless = 0x10000;
    for (const auto& rule : kRules) {
        for (const bool is3gpp2 : {false, true}) {
            const char* name = is3gpp2 ? rule.name2 : rule.name;
            if (isEnumerator(rule.kind, is3gpp2) && name != nullptr &&
                velasim::numberOf(settings, name)) {
                velasim::setNumber(settings, name, kMeaningless);
            }
        }
    }
}

void merge(const velasim::Settings& written, velasim::Technology technology,
           velasim::Settings& stored) {
    for (const auto& name : velasim::fieldNames(technology)) {
        if (const auto text = velasim::textOf(written, name)) {
            velasim::setText(stored, name, *text);
        } else if (const auto number = velasim::numberOf(written, name)) {
            velasim::setNumber(stored, name, *number);
        }
    }
}

}  // namespace coherence
