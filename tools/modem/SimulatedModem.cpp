// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/SimulatedModem.h"

#include <rlink_client.h>
#include <velasim/DiagLog.h>
#include <wds_service_v01.h>

#include <algorithm>
#include <utility>

#include "modem/Rest.h"
#include "modem/SettingsView.h"
#include "profiles/Text.h"
#include "profiles/ToolError.h"

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

/** Refuses a capacity that the modem's tables do not fit into. */
void checkCapacity(const ModemOptions& options, const velasim::Snapshot::ModemImage& modem) {
    const std::string limit = "more than --capacity " + std::to_string(*options.capacity);
    for (const Technology technology : {Technology::ThreeGpp, Technology::ThreeGpp2}) {
        const auto& profiles = modem.profiles(technology);
        if (profiles.size() > *options.capacity) {
            throw refused(options.file + " holds " + counted(profiles.size(), "profile") + ", " +
                          limit);
        }
        for (const velasim::StoredProfile& profile : profiles) {
            if (profile.index > *options.capacity) {
                throw refused(options.file + " holds profile " + std::to_string(profile.index) +
                              ", a number " + limit);
            }
        }
    }
}

/** A line without the tag that the diagnostic log puts before it. */
std::string_view withoutTag(std::string_view line) {
    constexpr std::string_view kTag = "|VELA| ";
    return line.substr(0, kTag.size()) == kTag ? line.substr(kTag.size()) : line;
}

}  // namespace

SimulatedModem::SimulatedModem(const ModemOptions& options, LogSink sink)
    : options(options), sink(std::move(sink)) {
    velasim::Snapshot memory = load();
    const auto own = static_cast<std::size_t>(options.instance);
    bool isResized = false;
    if (options.capacity && own < memory.modems.size()) {
        checkCapacity(options, memory.modems[own]);
        isResized =
            std::exchange(memory.modems[own].capacity, *options.capacity) != *options.capacity;
    }
    sim = std::make_unique<velasim::Simulator>(simulatorOptions(options, memory.modems.size()));
    const std::string error = sim->restore(memory);
    if (!error.empty()) {
        throw refused(options.file + ": " + error);
    }
    savedMemory = isNew || isResized ? "" : sim->snapshot().toJson();
    if (this->sink) {
        velasim::DiagLog::instance().setSink(
            [this](const velasim::DiagLog::Line& line) { this->sink(withoutTag(line.text)); });
    }
}

SimulatedModem::~SimulatedModem() {
    if (sink) {
        velasim::DiagLog::instance().setSink({});
    }
}

velasim::Snapshot SimulatedModem::load() {
    using Use = velasim::SnapshotFile::Use;
    if (options.file.empty()) {
        return {};
    }
    file.emplace(options.file);
    const Use use = looksOnly() ? Use::Look : Use::Change;
    const std::string error = file->open(use, std::chrono::seconds(options.wait));
    if (!error.empty()) {
        throw refused(error + (file->isBusy() ? "; --wait SECONDS waits longer" : ""));
    }
    isNew = use == Use::Change && file->isNew();
    if (file->isNew()) {
        return {};
    }
    velasim::SnapshotResult result = file->load();
    if (!result.snapshot) {
        throw refused(result.error);
    }
    return *std::move(result.snapshot);
}

void SimulatedModem::connect(vela::Manager& manager, Recorder& recorder, int instance) {
    options.instance = instance;
    manager.init(instance, false);
    settle(manager, recorder);
}

void SimulatedModem::settle(vela::Manager& manager, Recorder& /*recorder*/) {
    do {
        // What the library asks of the modem then may cause further deliveries.
        awaitRest(manager);
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

std::string SimulatedModem::errorName(std::uint32_t error) const {
    const std::string name = velasim::toString(static_cast<velasim::ModemError>(error));
    const bool isNumber = name.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? "error " + name : name;
}

std::string SimulatedModem::save() {
    const velasim::Snapshot memory = sim->snapshot();
    std::string text = memory.toJson();
    if (options.file.empty() || looksOnly() || text == savedMemory) {
        return {};
    }
    const std::string error = file->save(memory);
    if (!error.empty()) {
        throw refused(error);
    }
    savedMemory = std::move(text);
    return std::exchange(isNew, false) ? options.file + ": created, a new modem" : std::string();
}

}  // namespace velactl
