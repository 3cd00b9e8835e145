// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Simulator.h"

#include "Installation.h"
#include "SimulatedPlatform.h"

namespace velasim {

Simulator::Simulator(const SimulatorOptions& options)
    : platform(std::make_shared<SimulatedPlatform>(options)) {
    Installation::process().add(platform);
}

Simulator::~Simulator() {
    platform->close();
    Installation::process().remove(platform.get());
}

bool Simulator::isServiceUp() const {
    return platform->runtime.isServiceUp();
}
void Simulator::serviceUp() {
    platform->serviceUp();
}
void Simulator::serviceDown() {
    platform->serviceDown();
}
void Simulator::restart() {
    platform->restart();
}

void Simulator::setDelivery(DeliveryMode mode) {
    platform->runtime.deliveries().setMode(mode);
}
std::size_t Simulator::pendingDeliveries() const {
    return platform->runtime.deliveries().size();
}
bool Simulator::deliverNext() {
    return platform->runtime.deliveries().deliverNext();
}
std::size_t Simulator::deliverAll() {
    return platform->runtime.deliveries().deliverAll();
}
std::size_t Simulator::releaseDelayed() {
    return platform->runtime.releaseHeld();
}
void Simulator::waitIdle() {
    platform->runtime.deliveries().waitIdle();
}

std::size_t Simulator::subscribedClients(std::int32_t instance) const {
    return platform->subscribedClients(instance);
}

std::size_t Simulator::openHandles() const {
    return platform->runtime.openHandles();
}

bool Simulator::waitSubscribed(std::int32_t instance, std::chrono::milliseconds atMost) const {
    return platform->waitSubscribed(instance, atMost);
}

std::vector<StoredProfile> Simulator::profiles(std::int32_t instance, Technology technology) const {
    return platform->profiles(instance, technology);
}

std::optional<StoredProfile> Simulator::profile(std::int32_t instance, Technology technology,
                                                int index) const {
    for (const auto& stored : platform->profiles(instance, technology)) {
        if (stored.index == index) {
            return stored;
        }
    }
    return std::nullopt;
}

std::optional<int> Simulator::storeProfile(std::int32_t instance, Technology technology,
                                           const Settings& settings, int index) {
    return platform->storeProfile(instance, technology, settings, index);
}

Snapshot Simulator::snapshot() const {
    return platform->snapshot();
}

std::string Simulator::restore(const Snapshot& snapshot) {
    return platform->restore(snapshot);
}

std::optional<int> Simulator::foreignCreate(std::int32_t instance, Technology technology,
                                            const Settings& settings) {
    return platform->foreignCreate(instance, technology, settings);
}

bool Simulator::foreignModify(std::int32_t instance, Technology technology, int index,
                              const Settings& settings) {
    return platform->foreignModify(instance, technology, index, settings);
}

bool Simulator::foreignDelete(std::int32_t instance, Technology technology, int index) {
    return platform->foreignDelete(instance, technology, index);
}

bool Simulator::subscriptionChange(std::int32_t instance, Technology technology, int index) {
    return platform->foreignEvent(
        {instance, technology, static_cast<std::uint8_t>(index), ChangeEvent::SubscriptionChange});
}

bool Simulator::profileReady(std::int32_t instance, Technology technology, int index) {
    return platform->foreignEvent(
        {instance, technology, static_cast<std::uint8_t>(index), ChangeEvent::ProfileReady});
}

std::size_t Simulator::injectIndication(const std::vector<std::uint8_t>& bytes,
                                        std::uint32_t messageId, unsigned count) {
    return platform->inject(bytes, messageId, count);
}

Journal& Simulator::journal() {
    return platform->journal;
}
FaultPlan& Simulator::faults() {
    return platform->faults;
}

}  // namespace velasim
