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

struct MessageName {
    Answer::Message message;
    std::string_view name;
    const char* words;
};

constexpr std::array<MessageName, 5> kMessages{
    {{Answer::Message::Create, "RLINK_WDS_CREATE_PROFILE_REQ", "create a profile"},
     {Answer::Message::Modify, "RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ", "change a profile"},
     {Answer::Message::Delete, "RLINK_WDS_DELETE_PROFILE_REQ", "delete a profile"},
     {Answer::Message::List, "RLINK_WDS_GET_PROFILE_LIST_REQ", "list the profiles"},
     {Answer::Message::Read, "RLINK_WDS_GET_PROFILE_SETTINGS_REQ", "read a profile"}}};

const MessageName* messageIn(std::string_view line) {
    const auto* found = std::find_if(
        kMessages.begin(), kMessages.end(),
        [line](const auto& message) { return line.find(message.name) != std::string_view::npos; });
    return found == kMessages.end() ? nullptr : found;
}

/** Takes the answer that belongs to a request which the library has logged, and what lies before
 * it; one that the library could not even hand over has none. */
std::optional<Answer> takeAnswer(Answers& answers, Answer::Message message, bool hasFailed) {
    const auto belongs = [&](const Answer& answer) {
        return answer.message == message && (hasFailed || answer.outcome == Answer::Outcome::Done);
    };
    const auto found = std::find_if(answers.begin(), answers.end(), belongs);
    if (found == answers.end() || (hasFailed && found->outcome == Answer::Outcome::Done)) {
        return std::nullopt;
    }
    const Answer answer = *found;
    answers.erase(answers.begin(), std::next(found));
    return answer;
}

std::string failureText(const Answer& answer, const std::string& what) {
    const std::string why = answer.reason.empty() ? "" : ": " + answer.reason;
    switch (answer.outcome) {
        case Answer::Outcome::Refused:
            return "the modem refused to " + what + why;
        case Answer::Outcome::NoAnswer:
            return "the modem did not answer the request to " + what + why;
        default:
            return "the request to " + what + " was not sent" + why;
    }
}

/** The modem keeps what the library never reads back. */
bool isUnreadable(const ProfileRecord& record, const ProfileField& field) {
    return record.tech == vela::TechType::TECH_3GPP2 && field.isSecret;
}

std::vector<std::string> differingFields(const ProfileRecord& library, const ProfileRecord& modem) {
    std::vector<std::string> names;
    for (const ProfileField& field : profileFields()) {
        if (!isUnreadable(modem, field) && !isSame(field, library.params, modem.params)) {
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
    takeTraffic();
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
    std::optional<Answers> answers = backend->takeAnswers();
    for (const std::string& line : traffic.log) {
        const MessageName* message = messageIn(line);
        if (message == nullptr) {
            continue;
        }
        const bool isRead =
            message->message == Answer::Message::List || message->message == Answer::Message::Read;
        const bool hasFailed = line.find("Unable send") != std::string::npos;
        traffic.writes += isRead ? 0U : 1U;
        std::optional<Answer> answer;
        if (answers) {
            answer = takeAnswer(*answers, message->message, hasFailed)
                         .value_or(Answer{message->message, Answer::Outcome::NotSent,
                                          "the library is not connected to the modem"});
        }
        if (hasFailed) {
            (isRead ? traffic.failedReads : traffic.failures)
                .push_back(answer ? failureText(*answer, message->words)
                                  : "the request to " + std::string(message->words) + " failed");
        }
    }
    return traffic;
}

}  // namespace velactl
