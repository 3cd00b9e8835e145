// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/ProfileField.h"

#include <algorithm>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

using Kind = ProfileField::Kind;

/** A maker's name has no blank where people write it. */
Json shown(const std::string& word) {
    return word == "vela-ia" ? "vela IA" : word;
}

}  // namespace

Json ProfileField::read(std::string_view option, const std::string& text) const {
    const bool isTooLong = kind == Kind::Text && text.size() > static_cast<std::size_t>(limit);
    const std::string wrong = kind == Kind::Number ? wrongNumber(text, 0, limit)
                              : isTooLong          ? std::to_string(text.size()) +
                                                " bytes; a profile holds " + std::to_string(limit)
                                          : "";
    if (!wrong.empty()) {
        throw badUsage(std::string(option) + ": " + wrong);
    }
    switch (kind) {
        case Kind::Text:
            return text;
        case Kind::Number:
            return std::stoi(text);
        case Kind::Switch:
            return readOneOf(option, text, words) == 0;
        case Kind::Word:
            return shown(words[readOneOf(option, text, words)]);
        case Kind::WordList:
            break;
    }
    std::uint64_t mask = 0;
    if (!sameLetters(text, "none")) {
        for (const std::string& name : split(text.empty() ? " " : text, ',')) {
            mask |= numbers[readOneOf(option, name, words)];
        }
    }
    return fromRaw(mask, numbers);
}

Json ProfileField::fromRaw(const Json& raw, const Numbers& codes) const {
    if (!raw.is_number() || (codes.size() > words.size() && raw == codes.back())) {
        return raw.is_number() ? Json() : raw;
    }
    return kind == Kind::Switch     ? Json(raw != 0)
           : kind == Kind::Word     ? nameOf(raw, {words, codes})
           : kind == Kind::WordList ? namesOf(raw, {words, codes})
                                    : raw;
}

Json ProfileField::toRaw(const Json& value, const Numbers& codes) const {
    if (value.is_boolean()) {
        return value.get<bool>() ? 1 : 0;
    }
    if (codes.empty()) {
        return value;
    }
    const Json list = value.is_array() ? value : Json::array({value});
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        number |= std::count(list.begin(), list.end(), words[i]) != 0 ? codes[i] : 0;
    }
    return number;
}

Json ProfileField::in(const Json& held, vela::TechType tech) const {
    Json result;
    for (const ModemSetting& setting : settings) {
        const Json value = fromRaw(held.value(setting.name(tech), Json()), numbersOf(setting));
        if (trait == Trait::Agreed && &setting != &settings.front() && value != result) {
            return {};
        }
        result = result.is_null() ? value : result;
    }
    return result;
}

bool ProfileField::isKept(vela::TechType tech) const {
    return std::any_of(settings.begin(), settings.end(),
                       [tech](const ModemSetting& setting) { return !setting.name(tech).empty(); });
}

std::string ProfileField::option() const {
    return "--" + replaced(key, '_', '-');
}

std::string ProfileField::offOption() const {
    return words.at(1) == "no" ? "--no-" + option().substr(2) : "--" + words.at(1);
}

std::string ProfileField::valuesText() const {
    switch (kind) {
        case Kind::Text:
            return "up to " + std::to_string(limit) + " bytes";
        case Kind::Number:
            return "0 to " + std::to_string(limit);
        case Kind::Switch:
            return "or " + offOption();
        case Kind::Word:
            return alternatives(words);
        case Kind::WordList:
            break;
    }
    return join(words, ",") + "; or none";
}

const ProfileField* fieldNamed(std::string_view key) {
    const auto& fields = profileFields();
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [key](const ProfileField& field) { return field.key == key; });
    return found == fields.end() ? nullptr : &*found;
}

std::string criterionName(vela::FilterCriterion criterion) {
    for (const ProfileField& field : profileFields()) {
        if (std::count(field.criteria.begin(), field.criteria.end(), criterion) != 0) {
            return field.key;
        }
    }
    return criterion == vela::FilterCriterion::TechType ? "technology" : "index";
}

Json fieldsOf(const vela::ProfileParams& params) {
    Json fields = Json::object();
    for (const ProfileField& field : profileFields()) {
        const Json raw = field.get != nullptr ? field.get(params) : Json();
        if (!raw.is_null()) {
            fields[field.key] = field.fromRaw(raw, field.numbers);
        }
    }
    return fields;
}

vela::ProfileParams paramsOf(const Json& fields) {
    vela::ProfileParams params;
    for (const ProfileField& field : profileFields()) {
        if (field.set != nullptr && fields.contains(field.key)) {
            field.set(params, field.toRaw(fields[field.key], field.numbers));
        }
    }
    return params;
}

Names fieldsNotKept(const Json& fields, vela::TechType tech) {
    Names names;
    for (const ProfileField& field : profileFields()) {
        if (fields.contains(field.key) && !field.isKept(tech)) {
            names.emplace_back(field.key);
        }
    }
    return names;
}

void requireKept(const Json& fields, vela::TechType tech) {
    if (const Names names = fieldsNotKept(fields, tech); !names.empty()) {
        throw badUsage(join(names, ", ") + ": a " + word(tech) +
                       " profile has no such setting; leave it out");
    }
}

Json masked(Json document, bool showSecrets, bool isSecret) {
    if (!showSecrets && document.is_structured()) {
        for (auto& item : document.items()) {
            const bool isPassword = item.key().find("password") != std::string::npos;
            item.value() = masked(std::move(item.value()), false, isSecret || isPassword);
        }
    }
    const bool isHidden = isSecret && !showSecrets && document.is_string() && document != Json("");
    return isHidden ? "***" : document;
}

std::string valueText(const Json& value) {
    switch (value.type()) {
        case Json::value_t::null:
            return "";
        case Json::value_t::string:
            return printable(value.get_ref<const std::string&>());
        case Json::value_t::boolean:
            return value.get<bool>() ? "yes" : "no";
        case Json::value_t::array:
            return value.empty() ? "none" : join(value.get<Names>(), ",");
        default:
            return value.dump();
    }
}

std::string valueText(const ProfileField& field, const Json& value, bool showSecrets) {
    const bool isUnknown = value.is_number() && field.kind != Kind::Number;
    return isUnknown            ? unknownText(value)
           : value.is_boolean() ? field.words.at(value.get<bool>() ? 0 : 1)
                                : valueText(masked(value, showSecrets, field.isSecret()));
}

bool isSame(const ProfileField& field, const Json& left, const Json& right) {
    const Json one = field.of(left);
    const Json other = field.of(right);
    return one == other ||
           (field.trait == ProfileField::Trait::AnyCase && one.is_string() && other.is_string() &&
            sameLetters(one.get_ref<const std::string&>(), other.get_ref<const std::string&>()));
}

Json differencesOf(const Json& one, const Json& other, const char* oneName, const char* otherName) {
    Json differences = Json::object();
    for (const ProfileField& field : profileFields()) {
        if (!isSame(field, one, other)) {
            differences[field.key] = {{oneName, field.of(one)}, {otherName, field.of(other)}};
        }
    }
    return differences;
}

bool hasUsualIPTypes(const Json& fields) {
    const auto type = [&](const char* key) { return fields.value(key, Json()); };
    const Json kept = Json::array(
        {type("pdp_type"), type("home_override"), type("lte_roaming"), type("umts_roaming")});
    const Json home = type("home_ip");
    const Json roam = type("roam_ip");
    const bool isSplit = !home.is_null() && !roam.is_null() && home != roam;
    const Json usual =
        Json::array({isSplit ? Json("IPv4v6") : home, isSplit ? home : Json(), roam, roam});
    return kept == usual || kept == Json::array({nullptr, nullptr, nullptr, nullptr});
}

Json shownFields(Json fields) {
    if (hasUsualIPTypes(fields)) {
        for (const ProfileField& field : profileFields()) {
            if (field.scope == ProfileField::Scope::Detail) {
                fields.erase(field.key);
            }
        }
    }
    return fields;
}

std::string describe(const Json& fields, bool showSecrets) {
    Names parts;
    const Json shown = shownFields(fields);
    for (const ProfileField& field : profileFields()) {
        const Json value = field.of(shown);
        if (!value.is_null()) {
            // A switch with words of its own is one of them.
            const bool isPlain = value.is_boolean() && field.words.front() != "yes";
            parts.push_back((isPlain ? "" : std::string(field.key) + '=') +
                            valueText(field, value, showSecrets));
        }
    }
    return parts.empty() ? "nothing in particular" : join(parts, ", ");
}

Json toJson(const Json& fields, bool showSecrets) {
    Json object = Json::object();
    for (const ProfileField& field : profileFields()) {
        const Json value = masked(field.of(fields), showSecrets, field.isSecret());
        if (!value.is_null()) {
            object[field.key] = value;
        }
        if (value.is_string() && !isUtf8(value.get_ref<const std::string&>())) {
            object[std::string(field.key) + "_hex"] = hex(value.get_ref<const std::string&>());
        }
    }
    return object;
}

}  // namespace velactl
