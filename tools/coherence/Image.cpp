// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Image.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <sstream>

namespace coherence {

namespace {

using vela::FilterProfileParams;
using vela::IPType;
using vela::ProfileParams;

constexpr std::int64_t kUnknown = 0;
constexpr std::int64_t kV4V6 = 3;
constexpr std::size_t kApnLimit = 150;

/** By IP type what the modem calls it: UNKNOWN, V4, V6, V4V6. */
using IPTypes = std::array<std::uint64_t, 4>;
constexpr IPTypes kPdp = {3, 0, 2, 3};
constexpr IPTypes kPdn = {2, 0, 1, 2};
constexpr IPTypes kOthers = {255, 0, 1, 2};

struct Rule {
    Field field;
    const char* label;
    const char* name;
    const char* name2 = nullptr;  // 3GPP2; null: not written
    const char* copy2 = nullptr;  // written with the same value
    std::size_t limit = 0;        // of a text
};

constexpr Rule kRules[] = {
    {Field::ApnName, "ApnName", "apn_name", "apn_string_3gpp2", nullptr, kApnLimit},
    {Field::Password, "Password", "password", "authentication_password",
     "pdn_level_authentication_password", 127},
    {Field::CommonIPType, "CommonIPType", "pdp_type", "pdn_type_3gpp2"},
    {Field::OverrideHomeIPType, "OverrideHomeIPType", "override_home_pdp_type"},
    {Field::LteRoamIP, "LteRoamIP", "lte_roaming_pdp_type"},
    {Field::UmtsRoamIP, "UmtsRoamIP", "umts_roaming_pdp_type"},
    {Field::MaxPdnConnTimer, "MaxPdnConnTimer", "max_pdn_connection_timer"},
    {Field::ProfileName, "ProfileName", "profile_name", nullptr, nullptr, 50},
};

const IPTypes& typesOf(Field field, bool is3gpp2) {
    return field != Field::CommonIPType ? kOthers : is3gpp2 ? kPdn : kPdp;
}

/** What does not fit is lost on the way. */
std::uint64_t toModem(Field field, bool is3gpp2, std::int64_t value) {
    return field == Field::MaxPdnConnTimer
               ? static_cast<std::uint16_t>(value)
               : typesOf(field, is3gpp2).at(static_cast<std::size_t>(value));
}

std::optional<std::int64_t> fromModem(Field field, bool is3gpp2, std::uint64_t value) {
    if (field == Field::MaxPdnConnTimer) {
        return static_cast<std::int64_t>(value);
    }
    if (value == kOthers[0] && (field == Field::LteRoamIP || field == Field::UmtsRoamIP)) {
        return std::nullopt;  // not configured; only the home override calls it unknown
    }
    const auto& types = typesOf(field, is3gpp2);
    const auto* found = std::find(types.begin() + 1, types.end(), value);
    return found == types.end() ? kUnknown : found - types.begin();
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

/** The fields that cross from a client as they are; IP types and names are the callers'. */
Image plainFields(const ProfileParams& params, bool is3gpp2) {
    Image image{is3gpp2, {}, {}};
    if (params.hasApnName()) {
        image.texts[Field::ApnName] = lower(params.getApnName().substr(0, kApnLimit));
    }
    if (params.hasPassword()) {
        image.texts[Field::Password] = params.getPassword();
    }
    if (params.hasMaxPdnConnTimer() && !is3gpp2) {
        image.numbers[Field::MaxPdnConnTimer] = params.getMaxPdnConnTimer();
    }
    return image;
}

template <typename Value>
std::optional<Value> valueOf(const std::map<Field, Value>& values, Field field) {
    const auto found = values.find(field);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

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
    Image changes = plainFields(params, is3gpp2);
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
    std::erase_if(changes.texts,
                  [&](const auto& item) { return valueOf(texts, item.first) == item.second; });
    std::erase_if(changes.numbers,
                  [&](const auto& item) { return valueOf(numbers, item.first) == item.second; });
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
    return valueOf(texts, Field::ProfileName) == "vela_profile_ia";
}

bool Image::isVela() const {
    return isIA() || valueOf(texts, Field::ProfileName) == "vela_profile";
}

bool Image::matches(ProfileId id, const FilterProfileParams& filter) const {
    const Image asked = plainFields(filter, false);
    const bool isPartEnough =
        (filter.getFilterMatchCriteria() & toMask(vela::FilterMatchCriteria::ApnNameSubset)) != 0;
    for (const auto& [field, wanted] : asked.texts) {
        const auto held = valueOf(texts, field);
        const bool isPart = field == Field::ApnName && isPartEnough && held &&
                            held->find(wanted) != std::string::npos;
        if (!isPart && held != wanted) {
            return false;
        }
    }
    const auto timer = asked.number(Field::MaxPdnConnTimer);
    return (!timer || number(Field::MaxPdnConnTimer) == timer) &&
           (!filter.hasFilterByTechType() ||
            (filter.getFilterByTechType() == vela::TechType::TECH_3GPP2) == is3gpp2) &&
           (!filter.hasFilterByProfileId() || filter.getFilterByProfileId() == id.index) &&
           (!filter.hasFilterByIsIAProfile() || (!is3gpp2 && filter.getIsIAProfile() == isIA())) &&
           (!filter.hasFilterByIsVelaProfile() ||
            (!is3gpp2 && filter.getIsVelaProfile() == isVela()));
}

ProfileParams Image::params() const {
    FilterProfileParams result;
    if (const auto name = valueOf(texts, Field::ApnName)) {
        result.setApnName(*name);
    }
    if (const auto password = valueOf(texts, Field::Password)) {
        result.setPassword(*password);
    }
    if (const auto timer = number(Field::MaxPdnConnTimer)) {
        result.setMaxPdnConnTimer(static_cast<int>(*timer));
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
    return ProfileParams(result);
}

std::string Image::text(ProfileId id) const {
    std::ostringstream out;
    out << "TechType=" << toString(id.technology) << ",ProfileId=" << id.index << ",";
    for (const auto& rule : kRules) {
        const auto text = valueOf(texts, rule.field);
        const auto held = number(rule.field);
        if (text) {
            out << rule.label << "=" << *text << ",";
        } else if (held && rule.field == Field::MaxPdnConnTimer) {
            out << rule.label << "=" << *held << ",";
        } else if (held) {
            out << rule.label << "=" << static_cast<IPType>(*held) << ",";
        }
    }
    return out.str();
}

velasim::Settings Image::settings() const {
    velasim::Settings settings{};
    for (const auto& rule : kRules) {
        const char* name = is3gpp2 ? rule.name2 : rule.name;
        const auto text = valueOf(texts, rule.field);
        const auto held = number(rule.field);
        if (name != nullptr && text) {
            const auto cut = text->substr(0, rule.limit);
            velasim::setText(settings, name, cut);
            velasim::setText(settings, is3gpp2 && rule.copy2 != nullptr ? rule.copy2 : name, cut);
        } else if (name != nullptr && held) {
            velasim::setNumber(settings, name, toModem(rule.field, is3gpp2, *held));
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
            if (const auto value = fromModem(rule.field, is3gpp2, *number)) {
                image.numbers[rule.field] = *value;
            }
        }
    }
    return image;
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
        for (const char* name : {rule.name, rule.name2}) {
            if (rule.limit == 0 && rule.field != Field::MaxPdnConnTimer && name != nullptr &&
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
