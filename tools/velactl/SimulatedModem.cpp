// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "SimulatedModem.h"

#include <rlink_client.h>
#include <velasim/DiagLog.h>
#include <wds_service_v01.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "SettingsView.h"
#include "Text.h"
#include "ToolError.h"

namespace velactl {

namespace {

using velasim::Technology;

velasim::SimulatorOptions simulatorOptions(const ModemOptions& options, std::size_t modems) {
    velasim::SimulatorOptions result;
    result.instances = std::max<unsigned>({result.instances, static_cast<unsigned>(modems),
                                           static_cast<unsigned>(options.instance) + 1U});
    result.delivery = velasim::DeliveryMode::Stepped;  // so that each run is like the last
    result.seed = options.seed;
    result.capacity = options.capacity.value_or(result.capacity);
    return result;
}

/** A line without the tag that the diagnostic log puts before it. */
std::string_view withoutTag(std::string_view line) {
    constexpr std::string_view kTag = "|VELA| ";
    return line.substr(0, kTag.size()) == kTag ? line.substr(kTag.size()) : line;
}

Answer::Message messageOf(std::uint32_t id) {
    switch (id) {
        case RLINK_WDS_CREATE_PROFILE_REQ_V01:
            return Answer::Message::Create;
        case RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01:
            return Answer::Message::Modify;
        case RLINK_WDS_DELETE_PROFILE_REQ_V01:
            return Answer::Message::Delete;
        case RLINK_WDS_GET_PROFILE_LIST_REQ_V01:
            return Answer::Message::List;
        case RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01:
            return Answer::Message::Read;
        default:
            return Answer::Message::Other;
    }
}

/** What the modem's error says; one without a name as "error 72". */
std::string reasonOf(velasim::ModemError error) {
    const std::string name = velasim::toString(error);
    const bool isNumber = name.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? "error " + name : name;
}

Answer answerIn(const velasim::JournalEntry& response, bool isUnsent) {
    using Outcome = Answer::Outcome;
    const Answer::Message message = messageOf(response.messageId);
    if (response.result == RLINK_NO_ERROR) {
        return response.error == velasim::ModemError::None
                   ? Answer{message, Outcome::Done, ""}
                   : Answer{message, Outcome::Refused, reasonOf(response.error)};
    }
    if (!isUnsent && response.result == RLINK_ERROR_TIMEOUT) {
        return {message, Outcome::NoAnswer, ""};
    }
    if (!isUnsent && response.result == RLINK_ERROR_SERVICE) {
        return {message, Outcome::NoAnswer, "its service is not there"};
    }
    return {message, Outcome::NotSent, "messaging error " + std::to_string(response.result)};
}

}  // namespace

SimulatedModem::SimulatedModem(const ModemOptions& options, LogSink sink)
    : options(options), sink(std::move(sink)) {
    const velasim::Snapshot memory = load();
    sim = std::make_unique<velasim::Simulator>(simulatorOptions(options, memory.modems.size()));
    const std::string error = sim->restore(memory);
    if (!error.empty()) {
        throw refused(options.file + ": " + error);
    }
    savedMemory = sim->snapshot().toJson();
    velasim::DiagLog::instance().setSink([this](const velasim::DiagLog::Line& line) {
        const std::string_view text = withoutTag(line.text);
        if (this->sink) {
            this->sink(text);
        }
        const std::lock_guard lock(linesMutex);
        lines.emplace_back(text);
    });
}

SimulatedModem::~SimulatedModem() {
    velasim::DiagLog::instance().setSink({});
}

namespace {

/** A device would be read for ever. What cannot be opened at all is told when it is tried. */
void checkFile(const std::string& path) {
    constexpr std::uintmax_t kMaxFile = 64U << 20U;
    std::error_code error;
    const auto kind = std::filesystem::status(path, error).type();
    if (kind == std::filesystem::file_type::regular) {
        if (std::filesystem::file_size(path, error) > kMaxFile && !error) {
            throw refused(path + ": larger than " + std::to_string(kMaxFile >> 20U) +
                          " MiB, so hardly a modem's memory");
        }
    } else if (kind != std::filesystem::file_type::not_found &&
               kind != std::filesystem::file_type::directory &&
               kind != std::filesystem::file_type::none) {
        throw refused(path + ": not a regular file, as a modem's memory must be");
    }
}

}  // namespace

velasim::Snapshot SimulatedModem::load() {
    if (!options.file.empty()) {
        checkFile(options.file);
    }
    std::error_code error;
    isNew = !options.file.empty() && !std::filesystem::exists(options.file, error);
    velasim::Snapshot memory;
    if (!options.file.empty() && !isNew) {
        velasim::SnapshotResult result = velasim::Snapshot::load(options.file);
        if (!result.snapshot) {
            throw refused(result.error);
        }
        memory = *std::move(result.snapshot);
    }
    const auto own = static_cast<std::size_t>(options.instance);
    if (options.capacity && own < memory.modems.size()) {
        isResized = memory.modems[own].capacity != *options.capacity;
        memory.modems[own].capacity = *options.capacity;
    }
    return memory;
}

void SimulatedModem::connect(vela::Manager& manager) {
    manager.init(options.instance, false);
    settle(manager);
    if (sim->subscribedClients(options.instance) == 0) {
        throw refused("the library did not register with modem instance " +
                      std::to_string(options.instance));
    }
}

void SimulatedModem::settle(vela::Manager& manager) {
    vela::FilterProfileParams nothing;
    nothing.setFilterByProfileId(-1);
    do {
        // The second answer comes after the worker has finished with all that the first one
        // overtook. What it then asked of the modem may have caused further deliveries.
        manager.filter(nothing);
        manager.filter(nothing);
    } while (!isHeld && sim->deliverNext());
}

std::optional<ProfileRecords> SimulatedModem::modemProfiles() {
    ProfileRecords records;
    for (const Technology technology : {Technology::ThreeGpp, Technology::ThreeGpp2}) {
        for (const velasim::StoredProfile& profile : sim->profiles(options.instance, technology)) {
            records.push_back(viewOf(technology, profile));
        }
    }
    sortTable(records);
    return records;
}

std::vector<std::string> SimulatedModem::takeLog() {
    const std::lock_guard lock(linesMutex);
    return std::exchange(lines, {});
}

std::optional<Answers> SimulatedModem::takeAnswers() {
    Answers answers;
    bool isUnsent = false;
    const auto take = [&](const velasim::JournalEntry& entry) {
        lastEntry = entry.sequence;
        if (entry.kind == velasim::JournalKind::Request) {
            isUnsent = false;
        } else if (entry.kind == velasim::JournalKind::FaultInjected) {
            isUnsent = isUnsent || entry.fault == velasim::Fault::SendFailure;
        } else if (entry.kind == velasim::JournalKind::Response) {
            answers.push_back(answerIn(entry, isUnsent));
        }
    };
    // The predicate sees the entries in place: the journal may be long.
    sim->journal().waitFor([&](const velasim::Journal::Entries& entries) {
        const auto first =
            std::partition_point(entries.begin(), entries.end(),
                                 [this](const auto& entry) { return entry.sequence <= lastEntry; });
        std::for_each(first, entries.end(), take);
        return true;
    });
    return answers;
}

bool SimulatedModem::changeBehindLibrary(int index, std::string_view setting,
                                         std::string_view value) {
    velasim::Settings settings{};
    return velasim::setText(settings, setting, value) &&
           sim->foreignModify(options.instance, Technology::ThreeGpp, index, settings);
}

void SimulatedModem::restart(vela::Manager& manager) {
    sim->restart();
    settle(manager);
    if (sim->subscribedClients(options.instance) == 0) {
        throw refused("the library did not come back after the modem's restart");
    }
    sim->profileReady(options.instance);
    settle(manager);
}

std::string SimulatedModem::save() {
    if (options.file.empty()) {
        return {};
    }
    const velasim::Snapshot memory = sim->snapshot();
    if (!isNew && !isResized && memory.toJson() == savedMemory) {
        return {};
    }
    const std::string error = memory.save(options.file);
    if (!error.empty()) {
        throw refused(error);
    }
    isResized = false;
    return std::exchange(isNew, false) ? options.file + ": created, a new modem" : std::string();
}

std::unique_ptr<Backend> makeBackend(const ModemOptions& options, LogSink sink) {
    return std::make_unique<SimulatedModem>(options, std::move(sink));
}

}  // namespace velactl
