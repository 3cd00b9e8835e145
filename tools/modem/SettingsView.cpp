// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/SettingsView.h"

#include <charconv>
#include <optional>

namespace velactl {

namespace {

std::optional<std::uint64_t> numberFrom(const std::string& name, const std::string& text) {
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec == std::errc() && result.ptr == end) {
        return number;
    }
    if (text == "yes" || text == "no") {
        return text == "yes" ? 1 : 0;
    }
    for (const ProfileField& field : profileFields()) {
        for (const ModemSetting& setting : field.settings) {
            if (setting.isNamed(name)) {
                return field.toRaw(field.read(name, text), field.numbersOf(setting))
                    .get<std::uint64_t>();
            }
        }
    }
    return std::nullopt;
}

}  // namespace

bool setSetting(velasim::Settings& settings, const std::string& name, const std::string& text) {
    if (velasim::isTextField(name)) {
        return velasim::setText(settings, name, text);
    }
    const auto number = numberFrom(name, text);
    return number && velasim::setNumber(settings, name, *number);
}

ProfileRecord viewOf(velasim::Technology technology, const velasim::StoredProfile& profile) {
    Json settings = Json::object();
    for (const std::string& name : velasim::fieldNames(technology)) {
        if (const auto text = velasim::textOf(profile.settings, name)) {
            settings[name] = *text;
        } else if (const auto number = velasim::numberOf(profile.settings, name)) {
            settings[name] = *number;
        }
    }
    const bool is3gpp2 = technology == velasim::Technology::ThreeGpp2;
    return recordOf(is3gpp2 ? vela::TechType::TECH_3GPP2 : vela::TechType::TECH_3GPP, profile.index,
                    std::move(settings));
}

}  // namespace velactl
