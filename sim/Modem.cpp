// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Modem.h"

#include <algorithm>
#include <utility>

#include "SettingsField.h"

namespace velasim {

namespace {

bool isWellFormed(const Settings& settings) {
    const auto fields = SettingsField::all();
    return std::all_of(fields.begin(), fields.end(), [&](const SettingsField& field) {
        return !field.isText || !field.isPresent(settings) || field.isTerminated(settings);
    });
}

void merge(Technology technology, const Settings& from, Settings& into) {
    for (const auto& field : SettingsField::all()) {
        if (field.belongsTo(technology) && field.isPresent(from)) {
            field.copy(from, into);
        }
    }
}

Settings newProfile(Technology technology, const Settings& written) {
    Settings settings{};
    settings.persistence_flag_valid = 1;
    settings.persistence_flag = 1;
    merge(technology, written, settings);
    return settings;
}

}  // namespace

template <typename Self>
auto Modem::table(Self& self, Technology technology) -> decltype(&self.threeGpp) {
    switch (technology) {
        case Technology::ThreeGpp:
            return &self.threeGpp;
        case Technology::ThreeGpp2:
            return &self.threeGpp2;
    }
    return nullptr;
}

Modem::Modem(unsigned capacity)
    : capacity(std::clamp(capacity, 1U, unsigned{WDS_PROFILE_LIST_MAX_V01})) {}

Modem::Creation Modem::create(Technology technology, const Settings& settings) {
    const auto* profiles = table(technology);
    if (profiles == nullptr) {
        return {ModemError::UnknownProfileType};
    }
    const auto index = freeIndex(*profiles);
    if (!index) {
        return {ModemError::TableFull};
    }
    const auto error = store(technology, *index, settings);
    return {error, error == ModemError::None ? *index : std::uint8_t{0}};
}

ModemError Modem::modify(Technology technology, int index, const Settings& settings) {
    const auto error = check(technology, index);
    if (error != ModemError::None) {
        return error;
    }
    if (!isWellFormed(settings)) {
        return ModemError::Malformed;
    }
    merge(technology, settings, table(technology)->at(static_cast<std::uint8_t>(index)));
    return ModemError::None;
}

ModemError Modem::remove(Technology technology, int index) {
    const auto error = check(technology, index);
    if (error == ModemError::None) {
        table(technology)->erase(static_cast<std::uint8_t>(index));
    }
    return error;
}

ModemError Modem::check(Technology technology, int index) const {
    if (table(technology) == nullptr) {
        return ModemError::UnknownProfileType;
    }
    return find(technology, index) == nullptr ? ModemError::UnknownProfile : ModemError::None;
}

ModemError Modem::store(Technology technology, int index, const Settings& settings) {
    auto* profiles = table(technology);
    if (profiles == nullptr) {
        return ModemError::UnknownProfileType;
    }
    if (index < 1 || index > static_cast<int>(capacity)) {
        return ModemError::UnknownProfile;
    }
    if (!isWellFormed(settings)) {
        return ModemError::Malformed;
    }
    (*profiles)[static_cast<std::uint8_t>(index)] = newProfile(technology, settings);
    return ModemError::None;
}

const Settings* Modem::find(Technology technology, int index) const {
    const auto* profiles = table(technology);
    if (profiles == nullptr || index < 1 || index > static_cast<int>(capacity)) {
        return nullptr;
    }
    const auto found = profiles->find(static_cast<std::uint8_t>(index));
    return found == profiles->end() ? nullptr : &found->second;
}

std::vector<StoredProfile> Modem::profiles(Technology technology) const {
    std::vector<StoredProfile> result;
    if (const auto* stored = table(technology)) {
        for (const auto& [index, settings] : *stored) {
            result.push_back({index, settings});
        }
    }
    return result;
}

void Modem::powerCycle() {
    const auto isVolatile = [](const auto& item) { return item.second.persistence_flag == 0; };
    std::erase_if(threeGpp, isVolatile);
    std::erase_if(threeGpp2, isVolatile);
}

std::optional<std::uint8_t> Modem::freeIndex(const Table& profiles) const {
    for (unsigned index = 1; index <= capacity; ++index) {
        if (profiles.find(static_cast<std::uint8_t>(index)) == profiles.end()) {
            return static_cast<std::uint8_t>(index);
        }
    }
    return std::nullopt;
}

}  // namespace velasim
