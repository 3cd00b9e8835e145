// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "SnapshotReader.h"

#include <algorithm>
#include <initializer_list>

#include "Text.h"

namespace velasim {

namespace {

using Json = SnapshotReader::Json;

[[noreturn]] void fail(const std::string& path, const std::string& text) {
    throw SnapshotReader::Problem{(path.empty() ? "" : path + ": ") + text};
}

std::string inQuotes(std::string_view text) {
    return '"' + printable(text) + '"';
}

void expectMembers(const Json& json, const std::string& path,
                   std::initializer_list<std::string_view> names) {
    if (!json.is_object()) {
        fail(path, std::string("must be an object, not ") + json.type_name());
    }
    for (const auto& item : json.items()) {
        if (std::find(names.begin(), names.end(), item.key()) == names.end()) {
            fail(path, "unknown member " + inQuotes(item.key()));
        }
    }
    for (const auto& name : names) {
        if (!json.contains(name)) {
            fail(path, "member " + inQuotes(name) + " is missing");
        }
    }
}

void expectArray(const Json& json, const std::string& path) {
    if (!json.is_array()) {
        fail(path, std::string("must be an array, not ") + json.type_name());
    }
}

std::uint64_t readNumber(const Json& json, const std::string& path, std::uint64_t least,
                         std::uint64_t most) {
    if (!json.is_number_unsigned() || json.get<std::uint64_t>() < least ||
        json.get<std::uint64_t>() > most) {
        const auto text = json.is_primitive()
                              ? json.dump(-1, ' ', true, Json::error_handler_t::replace)
                              : std::string(json.type_name());
        fail(path, "must be a number from " + std::to_string(least) + " to " +
                       std::to_string(most) + ", not " + text.substr(0, 40));
    }
    return json.get<std::uint64_t>();
}

std::string readBytes(const Json& json, const std::string& path) {
    if (json.is_string()) {
        return json.get<std::string>();
    }
    if (!json.is_object()) {
        fail(path, std::string("must be a text, not ") + json.type_name());
    }
    expectMembers(json, path, {"hex"});
    const auto& hex = json["hex"];
    const auto bytes = hex.is_string() ? fromHex(hex.get<std::string>()) : std::nullopt;
    if (!bytes) {
        fail(path + ".hex", "pairs of hexadecimal digits in lower case are wanted");
    }
    return *bytes;
}

}  // namespace

Snapshot SnapshotReader::read(const Json& json) const {
    expectMembers(json, "", {"format", "version", "modems"});
    if (json["format"] != Snapshot::kFormat) {
        fail("format", "not a snapshot; must be " + inQuotes(Snapshot::kFormat));
    }
    if (json["version"] != Snapshot::kVersion) {
        fail("version", "only version " + std::to_string(Snapshot::kVersion) + " is understood");
    }
    expectArray(json["modems"], "modems");
    Snapshot snapshot;
    for (const auto& modem : json["modems"]) {
        snapshot.modems.push_back(
            readModem(modem, "modems[" + std::to_string(snapshot.modems.size()) + ']'));
    }
    return snapshot;
}

Snapshot::ModemImage SnapshotReader::readModem(const Json& json, const std::string& path) const {
    expectMembers(json, path, {"capacity", "3gpp", "3gpp2"});
    Snapshot::ModemImage image;
    image.capacity = static_cast<unsigned>(
        readNumber(json["capacity"], path + ".capacity", 1, WDS_PROFILE_LIST_MAX_V01));
    image.threeGpp = readTable(json["3gpp"], path + ".3gpp", Technology::ThreeGpp, image.capacity);
    image.threeGpp2 =
        readTable(json["3gpp2"], path + ".3gpp2", Technology::ThreeGpp2, image.capacity);
    return image;
}

std::vector<StoredProfile> SnapshotReader::readTable(const Json& json, const std::string& path,
                                                     Technology technology,
                                                     unsigned capacity) const {
    expectArray(json, path);
    std::vector<StoredProfile> profiles;
    for (const auto& item : json) {
        const auto itemPath = path + '[' + std::to_string(profiles.size()) + ']';
        const auto profile = readProfile(item, itemPath, technology, capacity);
        if (std::any_of(profiles.begin(), profiles.end(),
                        [&](const auto& other) { return other.index == profile.index; })) {
            fail(itemPath + ".index",
                 "index " + std::to_string(profile.index) + " is there already");
        }
        profiles.push_back(profile);
    }
    return profiles;
}

StoredProfile SnapshotReader::readProfile(const Json& json, const std::string& path,
                                          Technology technology, unsigned capacity) const {
    expectMembers(json, path, {"index", "settings"});
    StoredProfile profile;
    profile.index =
        static_cast<std::uint8_t>(readNumber(json["index"], path + ".index", 1, capacity));
    profile.settings = readSettings(json["settings"], path + ".settings", technology);
    return profile;
}

Settings SnapshotReader::readSettings(const Json& json, const std::string& path,
                                      Technology technology) const {
    if (!json.is_object()) {
        fail(path, std::string("must be an object, not ") + json.type_name());
    }
    Settings settings{};
    setNumber(settings, Snapshot::kPersistenceField, 1);
    for (const auto& item : json.items()) {
        const auto* field = SettingsField::named(item.key());
        if (field == nullptr || !field->belongsTo(technology) ||
            field->name == Snapshot::kPersistenceField) {
            fail(path, "unknown setting " + inQuotes(item.key()));
        }
        const auto itemPath = path + '.' + item.key();
        if (field->isText) {
            readText(item.value(), itemPath, *field, settings);
        } else {
            const auto number = readNumber(item.value(), itemPath, 0, field->largestNumber());
            setNumber(settings, field->name, number);
        }
    }
    return settings;
}

void SnapshotReader::readText(const Json& json, const std::string& path, const SettingsField& field,
                              Settings& settings) const {
    const auto bytes = readBytes(json, path);
    if (bytes.size() >= field.size) {
        fail(path, "text of " + std::to_string(bytes.size()) + " bytes, at most " +
                       std::to_string(field.size - 1) + " fit");
    }
    if (!setText(settings, field.name, bytes)) {
        fail(path, "a text must not contain a zero byte");
    }
}

}  // namespace velasim
