// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Snapshot.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "SettingsField.h"
#include "SnapshotReader.h"
#include "Text.h"

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

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const auto written = write(fd, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return fsync(fd) == 0;
}

std::string failure(const std::string& path, const char* what) {
    return path + ": " + what + ": " + std::strerror(errno);
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
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return {std::nullopt, failure(path, "cannot be read")};
    }
    std::ostringstream text;
    text << file.rdbuf();
    if (text.bad()) {
        return {std::nullopt, failure(path, "cannot be read")};
    }
    return parse(text.str(), path);
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
    auto temporary = path + ".XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        return failure(path, "cannot be written");
    }
    const bool isWritten = writeAll(fd, toJson());
    close(fd);
    if (!isWritten || std::rename(temporary.c_str(), path.c_str()) != 0) {
        auto error = failure(path, "cannot be written");
        unlink(temporary.c_str());
        return error;
    }
    return {};
}

}  // namespace velasim
