// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Snapshot.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>

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

/** The file that a path leads to through symbolic links; it need not be there. */
std::string targetOf(const std::string& path) {
    constexpr int kMaxLinks = 40;
    std::filesystem::path target = path;
    std::error_code error;
    for (int i = 0; i < kMaxLinks && std::filesystem::is_symlink(target, error); ++i) {
        // An absolute link replaces all of it.
        target = target.parent_path() / std::filesystem::read_symlink(target, error);
    }
    return target;
}

/** What is there to be replaced; sets errno and returns false when that may not be. Its permissions
 * count even for those whom nothing stops. */
bool mayReplace(const std::string& target, std::optional<struct stat>& present) {
    constexpr mode_t kWritable = S_IWUSR | S_IWGRP | S_IWOTH;
    struct stat status {};
    if (stat(target.c_str(), &status) != 0) {
        return errno == ENOENT;
    }
    present = status;
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    if ((status.st_mode & kWritable) == 0) {
        errno = EACCES;
        return false;
    }
    return access(target.c_str(), W_OK) == 0;
}

/** Gives the new file the old one's permissions, and its owner as far as that is allowed. */
bool takeOver(int fd, const std::optional<struct stat>& present) {
    constexpr mode_t kPermissions = 07777;
    if (!present) {
        return true;
    }
    [[maybe_unused]] const int owned = fchown(fd, present->st_uid, present->st_gid);
    return fchmod(fd, present->st_mode & kPermissions) == 0;
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
    std::string text;
    std::array<char, 65536> block{};
    while (file.read(block.data(), block.size()) || file.gcount() > 0) {
        text.append(block.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (!file.is_open() || file.bad()) {
        return {std::nullopt, failure(path, "cannot be read")};
    }
    return parse(text, path);
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
    const std::string target = targetOf(path);
    std::optional<struct stat> present;
    if (!mayReplace(target, present)) {
        return failure(path, "cannot be written");
    }
    auto temporary = target + ".XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        return failure(path, "cannot be written");
    }
    const bool isWritten = takeOver(fd, present) && writeAll(fd, toJson());
    close(fd);
    if (!isWritten || std::rename(temporary.c_str(), target.c_str()) != 0) {
        auto error = failure(path, "cannot be written");
        unlink(temporary.c_str());
        return error;
    }
    return {};
}

}  // namespace velasim
