// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "SimulatedPlatform.h"

#include <algorithm>
#include <utility>

namespace velasim {

namespace {

std::optional<Modem> modemFrom(const Snapshot::ModemImage& image) {
    Modem modem(image.capacity);
    for (const auto technology : {Technology::ThreeGpp, Technology::ThreeGpp2}) {
        for (const auto& profile : image.profiles(technology)) {
            if (modem.store(technology, profile.index, profile.settings) != ModemError::None) {
                return std::nullopt;
            }
        }
    }
    return modem;
}

std::vector<StoredProfile> persistentOf(std::vector<StoredProfile> profiles) {
    std::erase_if(profiles, [](const StoredProfile& profile) { return !profile.isPersistent(); });
    return profiles;
}

}  // namespace

SimulatedPlatform::SimulatedPlatform(const SimulatorOptions& options)
    : options(options),
      journal(options.journalLimit),
      faults(options.seed, options.faults),
      runtime(journal, options.delivery, options.serviceUp),
      modems(std::max(options.instances, 1U), Modem(options.capacity)),
      service(modems),
      indications(journal, faults, service, runtime) {}

int SimulatedPlatform::createNotifier(Handle handle) {
    if (const auto result = strike(Fault::NotifierInitFailure)) {
        return *result;
    }
    return runtime.createNotifier(handle);
}

bool SimulatedPlatform::offersService() {
    return runtime.isServiceUp() && !strike(Fault::NoServiceInstance);
}

int SimulatedPlatform::connect(Handle handle, rlink_ind_cb callback, void* data) {
    if (const auto result = strike(Fault::ClientInitFailure)) {
        return *result;
    }
    return runtime.connect(handle, callback, data);
}

int SimulatedPlatform::watchErrors(Handle handle, rlink_error_cb callback, void* data) {
    if (const auto result = strike(Fault::ErrorCallbackFailure)) {
        return *result;
    }
    return runtime.watchErrors(handle, callback, data);
}

int SimulatedPlatform::release(Handle handle) {
    const auto number = runtime.release(handle);  // waits for callbacks: without our lock
    const std::lock_guard lock(mutex);
    service.forget(number);
    return number == 0 ? RLINK_ERROR_CLIENT : RLINK_NO_ERROR;
}

void SimulatedPlatform::serviceUp() {
    const std::lock_guard lock(mutex);
    serviceUpLocked();
}

void SimulatedPlatform::serviceDown() {
    const std::lock_guard lock(mutex);
    serviceDownLocked();
}

void SimulatedPlatform::restart() {
    const std::lock_guard lock(mutex);
    restartLocked();
}

std::size_t SimulatedPlatform::subscribedClients(std::int32_t instance) {
    const std::lock_guard lock(mutex);
    return service.subscribers(instance);
}

bool SimulatedPlatform::waitSubscribed(std::int32_t instance, std::chrono::milliseconds atMost) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, atMost, [&] { return service.subscribers(instance) != 0; });
}

std::vector<StoredProfile> SimulatedPlatform::profiles(std::int32_t instance,
                                                       Technology technology) {
    const std::lock_guard lock(mutex);
    const auto* found = modem(instance);
    return found == nullptr ? std::vector<StoredProfile>{} : found->profiles(technology);
}

std::optional<int> SimulatedPlatform::storeProfile(std::int32_t instance, Technology technology,
                                                   const Settings& settings, int index) {
    const std::lock_guard lock(mutex);
    auto* found = modem(instance);
    if (found == nullptr) {
        return std::nullopt;
    }
    Modem::Creation creation;
    if (index == 0) {
        creation = found->create(technology, settings);
        index = creation.index;
    } else {
        creation.error = found->store(technology, index, settings);
    }
    return creation.error == ModemError::None ? std::optional(index) : std::nullopt;
}

Snapshot SimulatedPlatform::snapshot() {
    const std::lock_guard lock(mutex);
    Snapshot result;
    for (const auto& source : modems) {
        auto& image = result.modems.emplace_back();
        image.capacity = source.getCapacity();
        image.threeGpp = persistentOf(source.profiles(Technology::ThreeGpp));
        image.threeGpp2 = persistentOf(source.profiles(Technology::ThreeGpp2));
    }
    return result;
}

std::string SimulatedPlatform::restore(const Snapshot& source) {
    const std::lock_guard lock(mutex);
    if (source.modems.size() > modems.size()) {
        return "the snapshot has " + std::to_string(source.modems.size()) +
               " modems, the simulator only " + std::to_string(modems.size());
    }
    std::vector<Modem> restored;
    for (const auto& image : source.modems) {
        auto built = modemFrom(image);
        if (!built) {
            return "modem " + std::to_string(restored.size()) +
                   " of the snapshot has a profile that does not fit";
        }
        restored.push_back(std::move(*built));
    }
    restored.resize(modems.size(), Modem(options.capacity));
    modems = std::move(restored);
    return {};
}

std::optional<int> SimulatedPlatform::foreignCreate(std::int32_t instance, Technology technology,
                                                    const Settings& settings) {
    const std::lock_guard lock(mutex);
    auto* found = modem(instance);
    const auto creation = found == nullptr ? Modem::Creation{ModemError::UnknownInstance}
                                           : found->create(technology, settings);
    if (creation.error != ModemError::None) {
        return std::nullopt;
    }
    publish({{instance, technology, creation.index, ChangeEvent::Create},
             {instance, technology, creation.index, ChangeEvent::Modify}},
            describe(settings, technology));
    return creation.index;
}

bool SimulatedPlatform::foreignModify(std::int32_t instance, Technology technology, int index,
                                      const Settings& settings) {
    const std::lock_guard lock(mutex);
    auto* found = modem(instance);
    if (found == nullptr || found->modify(technology, index, settings) != ModemError::None) {
        return false;
    }
    publish({{instance, technology, static_cast<std::uint8_t>(index), ChangeEvent::Modify}},
            describe(settings, technology));
    return true;
}

bool SimulatedPlatform::foreignDelete(std::int32_t instance, Technology technology, int index) {
    const std::lock_guard lock(mutex);
    auto* found = modem(instance);
    if (found == nullptr || found->remove(technology, index) != ModemError::None) {
        return false;
    }
    publish({{instance, technology, static_cast<std::uint8_t>(index), ChangeEvent::Delete}}, "");
    return true;
}

bool SimulatedPlatform::foreignEvent(const Change& change) {
    const std::lock_guard lock(mutex);
    if (modem(change.instance) == nullptr) {
        return false;
    }
    publish({change}, "");
    return true;
}

std::size_t SimulatedPlatform::inject(const std::vector<std::uint8_t>& bytes,
                                      std::uint32_t messageId, unsigned count) {
    const std::lock_guard lock(mutex);
    std::size_t queued = 0;
    for (const auto client : runtime.connectedClients()) {
        RlinkRuntime::Indication indication;
        indication.client = client;
        indication.messageId = messageId;
        indication.bytes = bytes;
        indication.text = "injected";
        for (unsigned i = 0; i < count; ++i) {
            if (runtime.queue(indication, DeliveryQueue::Place::Last) != nullptr) {
                ++queued;
            }
        }
    }
    return queued;
}

void SimulatedPlatform::close() {
    {
        const std::lock_guard lock(mutex);
        closed = true;
        service.forgetAll();
    }
    changed.notify_all();
    runtime.close();
}

Modem* SimulatedPlatform::modem(std::int32_t instance) {
    const auto number = static_cast<std::size_t>(instance);
    return instance < 0 || number >= modems.size() ? nullptr : &modems[number];
}

std::optional<int> SimulatedPlatform::strike(Fault fault) {
    const auto fired = faults.onConnect(fault);
    if (fired.empty()) {
        return std::nullopt;
    }
    JournalEntry entry;
    entry.kind = JournalKind::FaultInjected;
    entry.fault = fault;
    journal.add(std::move(entry));
    const auto value = static_cast<std::int32_t>(fired.front().value);
    return value == 0 ? int{RLINK_ERROR_INTERNAL} : value;
}

void SimulatedPlatform::publish(const std::vector<Change>& changes, const std::string& text) {
    JournalEntry entry;
    entry.kind = JournalKind::ForeignChange;
    entry.instance = changes.front().instance;
    entry.technology = changes.front().technology;
    entry.index = changes.front().index;
    entry.event = changes.front().event;
    entry.text = text;
    journal.add(std::move(entry));
    indications.send(indications.prepare(changes, 0, kForeignChange));
}

void SimulatedPlatform::serviceUpLocked() {
    if (!runtime.isServiceUp() && !closed) {
        runtime.serviceUp();
    }
}

void SimulatedPlatform::serviceDownLocked() {
    if (runtime.isServiceUp()) {
        service.forgetAll();
        runtime.serviceDown();
    }
}

void SimulatedPlatform::restartLocked() {
    serviceDownLocked();
    std::for_each(modems.begin(), modems.end(), [](Modem& one) { one.powerCycle(); });
    JournalEntry entry;
    entry.kind = JournalKind::PowerCycle;
    journal.add(std::move(entry));
    serviceUpLocked();
}

}  // namespace velasim
