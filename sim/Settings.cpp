// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Settings.h"

#include <algorithm>
#include <cstring>

#include "SettingsField.h"
#include "Text.h"

namespace velasim {

namespace {

std::string valueText(const SettingsField& field, const Settings& settings) {
    if (field.isSecret()) {
        return "***";
    }
    return field.isText ? '"' + printable(field.text(settings)) + '"'
                        : std::to_string(field.number(settings));
}

bool sameField(const SettingsField& field, const Settings& left, const Settings& right) {
    if (!field.isPresent(left) || !field.isPresent(right)) {
        return field.isPresent(left) == field.isPresent(right);
    }
    return field.isText ? field.text(left) == field.text(right)
                        : field.number(left) == field.number(right);
}

}  // namespace

std::vector<std::string> fieldNames(Technology technology) {
    std::vector<std::string> names;
    for (const auto& field : SettingsField::all()) {
        if (field.belongsTo(technology)) {
            names.emplace_back(field.name);
        }
    }
    return names;
}

bool isTextField(std::string_view field) {
    const auto* found = SettingsField::named(field);
    return found != nullptr && found->isText;
}

std::optional<std::string> textOf(const Settings& settings, std::string_view field) {
    const auto* found = SettingsField::named(field);
    if (found == nullptr || !found->isText || !found->isPresent(settings)) {
        return std::nullopt;
    }
    return found->text(settings);
}

std::optional<std::uint64_t> numberOf(const Settings& settings, std::string_view field) {
    const auto* found = SettingsField::named(field);
    if (found == nullptr || found->isText || !found->isPresent(settings)) {
        return std::nullopt;
    }
    return found->number(settings);
}

bool setText(Settings& settings, std::string_view field, std::string_view value) {
    const auto* found = SettingsField::named(field);
    if (found == nullptr || !found->isText || value.size() >= found->size ||
        value.find('\0') != std::string_view::npos) {
        return false;
    }
    std::memset(found->bytes(settings), 0, found->size);
    std::copy(value.begin(), value.end(), found->bytes(settings));
    found->setPresent(settings, true);
    return true;
}

bool setNumber(Settings& settings, std::string_view field, std::uint64_t value) {
    const auto* found = SettingsField::named(field);
    if (found == nullptr || found->isText || value > found->largestNumber()) {
        return false;
    }
    found->writeNumber(settings, value);
    found->setPresent(settings, true);
    return true;
}

bool unset(Settings& settings, std::string_view field) {
    const auto* found = SettingsField::named(field);
    if (found != nullptr) {
        found->setPresent(settings, false);
    }
    return found != nullptr;
}

bool sameSettings(const Settings& left, const Settings& right, Technology technology) {
    const auto fields = SettingsField::all();
    return std::all_of(fields.begin(), fields.end(), [&](const SettingsField& field) {
        return !field.belongsTo(technology) || sameField(field, left, right);
    });
}

std::string describe(const Settings& settings, Technology technology) {
    std::string result;
    for (const auto& field : SettingsField::all()) {
        if (field.belongsTo(technology) && field.isPresent(settings)) {
            result += result.empty() ? "" : " ";
            result += std::string(field.name) + '=' + valueText(field, settings);
        }
    }
    return result;
}

}  // namespace velasim
