// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/SimulatedModem.h"

#include <velasim/DiagLog.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

using velasim::Technology;

velasim::SimulatorOptions simulatorOptions(const ModemOptions& options, std::size_t modems) {
    const velasim::SimulatorOptions usual;
    return {.instances = std::max<unsigned>({usual.instances, static_cast<unsigned>(modems),
                                             static_cast<unsigned>(options.instance) + 1U}),
            .capacity = options.capacity.value_or(usual.capacity),
            .delivery = velasim::DeliveryMode::Stepped,  // so that each run is like the last
            .seed = options.seed};
}

/** Refuses a capacity that the modem's tables do not fit into. */
void checkCapacity(const ModemOptions& options, const velasim::Snapshot::ModemImage& modem) {
    for (const auto* profiles : {&modem.threeGpp, &modem.threeGpp2}) {
        for (const velasim::StoredProfile& profile : *profiles) {
            if (profile.index > *options.capacity) {
                throw refused(options.file + " holds profile " + std::to_string(profile.index) +
                              ", a number more than --capacity " +
                              std::to_string(*options.capacity));
            }
        }
    }
}

/** What a stored profile says, by the table of fields and without the library, so that comparing it
 * with what the library says proves something. */
ProfileRecord viewOf(Technology technology, const velasim::StoredProfile& profile) {
    Json settings = Json::object();
    for (const std::string& name : velasim::fieldNames(technology)) {
        if (const auto text = velasim::textOf(profile.settings, name)) {
            settings[name] = *text;
        } else if (const auto number = velasim::numberOf(profile.settings, name)) {
            settings[name] = *number;
        }
    }
    return recordOf(technology == Technology::ThreeGpp2 ? vela::TechType::TECH_3GPP2
                                                        : vela::TechType::TECH_3GPP,
                    profile.index, std::move(settings));
}

std::optional<std::uint64_t> numberFrom(const std::string& name, const std::string& text) {
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec == std::errc() && result.ptr == end) {
        return number;
    }
    if (text == "yes" || text == "no") {
        return text == "yes" ? 1 : 0;
    }
    for (const ProfileField& field : profileFields()) {
        for (const ModemSetting& setting : field.settings) {
            if (setting.isNamed(name)) {
                return field.toRaw(field.read(name, text), field.numbersOf(setting))
                    .get<std::uint64_t>();
            }
        }
    }
    return std::nullopt;
}

}  // namespace

bool setSetting(velasim::Settings& settings, const std::string& name, const std::string& text) {
    if (velasim::isTextField(name)) {
        return velasim::setText(settings, name, text);
    }
    const auto number = numberFrom(name, text);
    return number && velasim::setNumber(settings, name, *number);
}

SimulatedModem::SimulatedModem(const ModemOptions& given) : options(given) {
    options.looksOnly = options.looksOnly && !options.capacity;  // which is kept
    velasim::Snapshot memory = load();
    const auto own = static_cast<std::size_t>(options.instance);
    bool isResized = false;
    if (options.capacity && own < memory.modems.size()) {
        checkCapacity(options, memory.modems[own]);
        isResized =
            std::exchange(memory.modems[own].capacity, *options.capacity) != *options.capacity;
    }
    sim.emplace(simulatorOptions(options, memory.modems.size()));
    const std::string error = sim->restore(memory);
    if (!error.empty()) {
        throw refused(options.file + ": " + error);
    }
    savedMemory = isNew || isResized ? "" : sim->snapshot().toJson();
    velasim::DiagLog::instance().keep(0);
    if (options.log) {
        velasim::DiagLog::instance().setSink([this](const velasim::DiagLog::Line& line) {
            constexpr std::string_view kTag = "|VELA| ";
            const std::string_view text = line.text;
            options.log(text.substr(text.starts_with(kTag) ? kTag.size() : 0));
        });
    }
}

SimulatedModem::~SimulatedModem() {
    if (options.log) {
        velasim::DiagLog::instance().setSink({});
    }
}

velasim::Snapshot SimulatedModem::load() {
    using Use = velasim::SnapshotFile::Use;
    if (options.file.empty()) {
        return {};
    }
    file.emplace(options.file);
    const std::string error =
        file->open(options.looksOnly ? Use::Look : Use::Change, std::chrono::seconds(options.wait));
    if (!error.empty()) {
        throw refused(error + (file->isBusy() ? "; --wait SECONDS waits longer" : ""));
    }
    if (file->isNew()) {
        isNew = !options.looksOnly;
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
        manager.settle();
    } while (!isHeld && sim->deliverNext());
}

std::optional<ProfileRecords> SimulatedModem::modemProfiles() {
    ProfileRecords records;
    for (const Technology technology : {Technology::ThreeGpp, Technology::ThreeGpp2}) {
        for (const velasim::StoredProfile& profile : sim->profiles(options.instance, technology)) {
            records.push_back(viewOf(technology, profile));
        }
    }
    return records;
}

std::string SimulatedModem::errorName(std::uint32_t error) const {
    const std::string name = velasim::toString(static_cast<velasim::ModemError>(error));
    return (name == std::to_string(error) ? "error " : "") + name;
}

void SimulatedModem::save() {
    const velasim::Snapshot memory = sim->snapshot();
    std::string text = memory.toJson();
    if (options.file.empty() || options.looksOnly || text == savedMemory) {
        return;
    }
    const std::string error = file->save(memory);
    if (!error.empty()) {
        throw refused(error);
    }
    savedMemory = std::move(text);
    if (std::exchange(isNew, false) && options.note) {
        options.note(options.file + ": created, a new modem");
    }
}

}  // namespace velactl
