// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Workbench.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "Text.h"
#include "ToolError.h"
#include "Words.h"

namespace velactl {

namespace {

struct WriteMessage {
    std::string_view name;
    const char* words;
};

constexpr std::array<WriteMessage, 3> kWrites{
    {{"RLINK_WDS_CREATE_PROFILE_REQ", "create a profile"},
     {"RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ", "change a profile"},
     {"RLINK_WDS_DELETE_PROFILE_REQ", "delete a profile"}}};

const WriteMessage* writeIn(std::string_view line) {
    const auto* found = std::find_if(kWrites.begin(), kWrites.end(), [line](const auto& message) {
        return line.find(message.name) != std::string_view::npos;
    });
    return found == kWrites.end() ? nullptr : found;
}

/** The modem keeps what the library never reads back. */
bool isUnreadable(const ProfileRecord& record, const ProfileField& field) {
    return record.tech == vela::TechType::TECH_3GPP2 && field.isSecret;
}

std::vector<std::string> differingFields(const ProfileRecord& library, const ProfileRecord& modem) {
    std::vector<std::string> names;
    for (const ProfileField& field : profileFields()) {
        if (!isUnreadable(modem, field) &&
            field.value(library.params) != field.value(modem.params)) {
            names.emplace_back(field.key);
        }
    }
    return names;
}

std::string indexes(const ProfileRecords& records, vela::TechType tech) {
    std::vector<std::string> list;
    for (const ProfileRecord& record : records) {
        if (record.tech == tech) {
            list.push_back(std::to_string(record.index));
        }
    }
    return list.empty()
               ? "the modem has no " + word(tech) + " profiles"
               : "there " + std::string(list.size() == 1 ? "is " : "are ") + join(list, ", ");
}

}  // namespace

Workbench::Workbench(const ModemOptions& options, LogSink sink)
    : library(vela::Manager::getInstance()), backend(makeBackend(options, std::move(sink))) {
    backend->connect(library);
    reload();
    backend->takeLog();
}

void Workbench::reload() {
    library.refresh(vela::PDCRefreshStatus::RefreshCompleted);
}

ProfileRecords Workbench::libraryProfiles(const vela::FilterProfileParams& filter) {
    settle();
    const ProfileRecords modem = backend->modemProfiles().value_or(ProfileRecords());
    ProfileRecords records;
    for (const auto& key : library.filter(filter)) {
        ProfileRecord record{key->getTechType(), key->getProfileId(), {}, std::nullopt};
        if (const ProfileRecord* own = findRecord(modem, record.tech, record.index)) {
            record.persistent = own->persistent;
        }
        if (auto params = library.getProfile(key)) {
            record.params = *std::move(params);
            records.push_back(std::move(record));
        }
    }
    sortTable(records);
    return records;
}

ProfileRecords Workbench::modemProfiles() {
    settle();
    auto records = backend->modemProfiles();
    return records ? *std::move(records) : libraryProfiles();
}

std::vector<std::string> Workbench::disagreements() {
    settle();
    const auto modem = backend->modemProfiles();
    if (!modem) {
        return {};
    }
    std::vector<std::string> lines;
    for (const ProfileChange& change : changesBetween(libraryProfiles(), *modem, false)) {
        if (change.kind == ProfileChange::Kind::Created) {
            lines.push_back(title(change.record) + " is unknown to the library");
        } else if (change.kind == ProfileChange::Kind::Deleted) {
            lines.push_back(title(change.record) + " is no longer in the modem");
        }
    }
    for (const ProfileRecord& record : libraryProfiles()) {
        const ProfileRecord* own = findRecord(*modem, record.tech, record.index);
        const auto names =
            own == nullptr ? std::vector<std::string>() : differingFields(record, *own);
        if (!names.empty()) {
            lines.push_back(title(record) + " differs in " + join(names, ", "));
        }
    }
    return lines;
}

std::shared_ptr<vela::IProfileKey> Workbench::find(vela::TechType tech, int index) {
    vela::FilterProfileParams filter;
    filter.setFilterByTechType(tech);
    filter.setFilterByProfileId(index);
    const auto keys = library.filter(filter);
    if (keys.empty()) {
        throw refused("no " + word(tech) + " profile " + std::to_string(index) + ": " +
                      indexes(libraryProfiles(), tech));
    }
    return keys.front();
}

Traffic Workbench::takeTraffic() {
    Traffic traffic;
    traffic.log = backend->takeLog();
    for (const std::string& line : traffic.log) {
        const WriteMessage* message = writeIn(line);
        if (message == nullptr) {
            continue;
        }
        ++traffic.writes;
        if (line.find("Unable send") != std::string::npos) {
            const std::string reason = backend->lastRefusal();
            traffic.refusals.push_back("the modem refused to " + std::string(message->words) +
                                       (reason.empty() ? "" : ": " + reason));
        }
    }
    return traffic;
}

}  // namespace velactl
