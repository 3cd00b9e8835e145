// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Snapshot.h"

#include <nlohmann/json.hpp>
#include <optional>

#include "SettingsField.h"
#include "SnapshotReader.h"
#include "Text.h"
#include "velasim/SnapshotFile.h"

namespace velasim {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const std::string& text) {
    try {
        static_cast<void>(Json(text).dump());
        return text;
    } catch (const Json::type_error&) {  // not UTF-8
        return {{"hex", toHex(text)}};
    }
}

Json toJson(const Settings& settings, Technology technology) {
    Json json = Json::object();
    for (const auto& field : SettingsField::all()) {
        if (field.belongsTo(technology) && field.isPresent(settings) &&
            field.name != Snapshot::kPersistenceField) {
            json[std::string(field.name)] =
                field.isText ? toJson(field.text(settings)) : Json(field.number(settings));
        }
    }
    return json;
}

Json toJson(const std::vector<StoredProfile>& profiles, Technology technology) {
    Json json = Json::array();
    for (const auto& profile : profiles) {
        json.push_back(
            {{"index", profile.index}, {"settings", toJson(profile.settings, technology)}});
    }
    return json;
}

// Without the library's own classification in brackets.
std::string explain(const Json::exception& error) {
    const std::string_view text = error.what();
    const auto end = text.find("] ");
    return printable(end == std::string_view::npos ? text : text.substr(end + 2));
}

}  // namespace

SnapshotResult Snapshot::parse(std::string_view text, std::string_view name) {
    const auto prefix = std::string(name) + ": ";
    try {
        return {SnapshotReader().read(SnapshotReader::Json::parse(text)), {}};
    } catch (const Json::exception& error) {
        return {std::nullopt, prefix + explain(error)};
    } catch (const SnapshotReader::Problem& problem) {
        return {std::nullopt, prefix + problem.text};
    }
}

SnapshotResult Snapshot::load(const std::string& path) {
    SnapshotFile file(path);
    const std::string error = file.open(SnapshotFile::Use::Look);
    return error.empty() ? file.load() : SnapshotResult{std::nullopt, error};
}

std::string Snapshot::toJson() const {
    Json json = {{"format", kFormat}, {"version", kVersion}, {"modems", Json::array()}};
    for (const auto& modem : modems) {
        json["modems"].push_back(
            {{"capacity", modem.capacity},
             {"3gpp", velasim::toJson(modem.threeGpp, Technology::ThreeGpp)},
             {"3gpp2", velasim::toJson(modem.threeGpp2, Technology::ThreeGpp2)}});
    }
    return json.dump(2) + '\n';
}

std::string Snapshot::save(const std::string& path) const {
    SnapshotFile file(path);
    const std::string error = file.open(SnapshotFile::Use::Change);
    return error.empty() ? file.save(*this) : error;
}

}  // namespace velasim
