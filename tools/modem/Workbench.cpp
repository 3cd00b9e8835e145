// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/Workbench.h"

#include <algorithm>
#include <list>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

/** What the library makes of a number that means nothing to it is no difference. */
bool hasUnknown(const ProfileField& field, const Json& modem) {
    const Json value = field.of(modem);
    const bool isWord = field.kind == ProfileField::Kind::Word;
    return (isWord && value.is_number()) ||
           (value.is_array() && !value.empty() &&
            value.back().get_ref<const std::string&>().rfind("0x", 0) == 0);
}

/** In what the library's view is not the modem's, which may have none; empty: in nothing. */
std::string differenceOf(const ProfileRecord& library, const ProfileRecord* modem) {
    if (modem == nullptr) {
        return title(library) + " is no longer in the modem";
    }
    const bool is3gpp2 = modem->tech == vela::TechType::TECH_3GPP2;
    Names names;
    for (const ProfileField& field : profileFields()) {
        const bool isRead = !(is3gpp2 && field.isSecret());  // the modem keeps it
        const bool isAsked = field.scope <= ProfileField::Scope::Filter;
        if (isAsked && isRead && !hasUnknown(field, modem->fields) &&
            !isSame(field, library.fields, modem->fields)) {
            names.emplace_back(field.key);
        }
    }
    return names.empty() ? "" : title(library) + " differs in " + join(names, ", ");
}

/** Those that fit the filter of their search. */
ProfileRecords fitting(const std::vector<vela::ProfileCandidate>& candidates) {
    ProfileRecords records;
    for (const vela::ProfileCandidate& candidate : candidates) {
        if (candidate.fits()) {
            records.push_back(recordOf(*candidate.profile));
        }
    }
    sortTable(records);
    return records;
}

std::string indexes(const ProfileRecords& records, vela::TechType tech) {
    Names list;
    for (const ProfileRecord& record : records) {
        list.push_back(record.tech == tech ? std::to_string(record.index) : "");
    }
    std::erase(list, "");
    return list.empty()
               ? "the library knows no " + word(tech) + " profiles of the modem"
               : "there " + std::string(list.size() == 1 ? "is " : "are ") + join(list, ", ");
}

}  // namespace

Workbench::Workbench(const ModemOptions& options)
    : library(vela::Manager::getInstance()), backend(makeBackend(options)) {
    const Connection connection = connect(options.instance);
    if (!connection.failure.empty()) {
        throw refused("modem instance " + std::to_string(options.instance) +
                      " does not answer: " + connection.failure);
    }
    if (options.note) {
        std::for_each(connection.notes.begin(), connection.notes.end(), options.note);
    }
}

Connection Workbench::connect(int instance) {
    recorder = std::make_shared<Recorder>();
    vela::setObserver(recorder);
    backend->connect(library, *recorder, instance);
    library.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    return connectionOf(recorder->takeMessages(), recorder->service(), *backend);
}

std::vector<vela::ProfileCandidate> Workbench::search(const vela::FilterProfileParams& filter) {
    settle();
    return recorder->searchAside([&] { library.filter(filter); });
}

ProfileRecords Workbench::libraryProfiles(const vela::FilterProfileParams& filter) {
    return fitting(search(filter));
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
    const auto entries = search({});
    const ProfileRecords held = fitting(entries);
    std::vector<std::string> lines;
    for (const ProfileRecord& record : held) {
        if (findRecord(held, record.tech, record.index) != &record) {
            lines.push_back(title(record) + " is held twice by the library");
        }
        lines.push_back(differenceOf(record, findRecord(*modem, record.tech, record.index)));
    }
    std::erase(lines, "");
    for (const ProfileRecord& record : *modem) {
        if (findRecord(held, record.tech, record.index) == nullptr) {
            lines.push_back(title(record) + " is unknown to the library");
        }
    }
    if (entries.size() != held.size()) {
        lines.push_back("the library could not read " +
                        counted(entries.size() - held.size(), "profile") + " that it holds");
    }
    return lines;
}

std::vector<std::string> Workbench::uncompared() {
    std::vector<std::string> lines;
    for (const ProfileRecord& record : backend->modemProfiles().value_or(ProfileRecords())) {
        if (record.tech == vela::TechType::TECH_3GPP2 && record.fields.contains("password")) {
            lines.push_back("the password of " + title(record) +
                            " is not compared: the library never reads it back");
        }
    }
    return lines;
}

std::shared_ptr<vela::IProfileKey> Workbench::find(vela::TechType tech, int index) {
    vela::FilterProfileParams filter;
    filter.setFilterByTechType(tech);
    filter.setFilterByProfileId(index);
    std::list<std::shared_ptr<vela::IProfileKey>> keys;
    recorder->searchAside([&] { keys = library.filter(filter); });
    if (keys.empty()) {
        for (const vela::ModemMessage& message : recorder->failedReadings()) {
            if (message.techType == tech && message.profileId == index) {
                throw refused("the library could not read " + word(tech) + " profile " +
                              std::to_string(index) + ": " + failureOf(message, *backend));
            }
        }
        throw refused("no " + word(tech) + " profile " + std::to_string(index) + ": " +
                      indexes(libraryProfiles(), tech));
    }
    return keys.front();
}

}  // namespace velactl
