// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Model.h"

#include <wds_service_v01.h>

#include <algorithm>
#include <utility>

namespace coherence {

namespace {

using velasim::Technology;

// What the library does on purpose although it may surprise. The rest of the list is in
// ModelCache.cpp and Exceptions.h; docs/coherence.md tells each story.
constexpr bool kBlockedReleaseIsMadeUpForLater = false;

}  // namespace

void Model::witness(const std::vector<velasim::JournalEntry>& entries,
                    std::vector<KeyRing::Call> ran) {
    modem.witness(entries);
    keys.witness(std::move(ran));
}

void Model::finish() {
    modem.finish();
    keys.finish();
}

// ---- Client operations

bool Model::add(unsigned slot, const vela::AddProfileParams& params) {
    const auto added = isBlocked ? std::nullopt : cache.add(params);
    rest();
    if (added) {
        keys.hold(slot, added->first, added->second);
    }
    return added.has_value();
}

bool Model::modify(unsigned slot, const vela::ModifyProfileParams& params) {
    const auto token = tokenOf(slot);
    const bool isDone = !isBlocked && token && cache.modify(*token, params);
    rest();
    return isDone;
}

bool Model::remove(unsigned slot) {
    const auto key = keys.at(slot);
    const bool isRemoved = !isBlocked && key && cache.remove(key->token, key->id);
    rest();
    return isRemoved;
}

std::optional<vela::ProfileParams> Model::get(unsigned slot) const {
    const auto* entry = find(slot);
    return entry == nullptr ? std::nullopt : std::optional(entry->image.params());
}

bool Model::match(unsigned slot, const vela::FilterProfileParams& params) const {
    const auto* entry = find(slot);
    return entry != nullptr && entry->image.matches(entry->id, params);
}

std::vector<std::uint64_t> Model::filter(const vela::FilterProfileParams& params) {
    std::vector<std::uint64_t> tokens;
    if (!isBlocked) {
        for (const auto& [token, id] : cache.filter(params)) {
            tokens.push_back(token);
            keys.hold(token, id);
        }
    }
    return tokens;
}

void Model::endUse() {
    if (const auto token = keys.endUse()) {
        dropToken(*token);
    }
}

void Model::drop(unsigned slot) {
    if (const auto token = keys.drop(slot)) {
        dropToken(*token);
    }
}

void Model::dropToken(std::uint64_t token) {
    if (!isBlocked || kBlockedReleaseIsMadeUpForLater) {
        cache.release(token);
    }
    rest();
}

void Model::listen(unsigned slot, int listener, unsigned victim) {
    const auto taken = keys.listener(slot, listener, victim);
    const auto token = tokenOf(slot);
    if (taken && token && !isBlocked) {
        cache.listen(*token, *taken);
    }
}

void Model::refresh(bool isStart) {
    isBlocked = isStart;
    if (!isStart) {
        cache.reload();
    }
    rest();
}

void Model::init(int instance) {
    keys.startPipeline();
    modem.startOver(instance);
    cache.startOver();
    isBlocked = false;
}

// ---- The modem's side

int Model::foreignCreate(int instance, Technology technology, const velasim::Settings& settings) {
    auto& table = modem.tableOf(instance);
    const ProfileId id{technology, freeIndex(table, technology, modem.capacity)};
    if (id.index != 0) {
        store(table, id, settings);
        onForeignChange(instance, id, kCreation);
    }
    return id.index;
}

bool Model::foreignModify(int instance, ProfileId id, const velasim::Settings& settings) {
    auto& table = modem.tableOf(instance);
    if (table.count(id) == 0) {
        return false;
    }
    store(table, id, settings);
    onForeignChange(instance, id, {Event::Modify});
    return true;
}

bool Model::foreignDelete(int instance, ProfileId id) {
    if (modem.tableOf(instance).erase(id) == 0) {
        return false;
    }
    onForeignChange(instance, id, {Event::Delete});
    return true;
}

void Model::onForeignChange(int instance, ProfileId id, const ModelCache::Events& events) {
    if (modem.isHome(instance)) {
        cache.onForeignChange(id, events);
    }
}

void Model::settle() {
    modem.checkConnection();
    if (modem.arrivals.empty()) {
        exceptions.onSettled();
    }
}

// ---- The state

std::optional<std::uint64_t> Model::tokenOf(unsigned slot) const {
    const auto& key = keys.at(slot);
    return key ? std::optional(key->token) : std::nullopt;
}

bool Model::isHealed() const {
    const auto& table = modem.homeTable();
    return std::all_of(table.begin(), table.end(),
                       [&](const auto& item) { return !exceptions.covers(item.first); });
}

// ---- Steps

const ModelCache::Entry* Model::find(unsigned slot) const {
    const auto token = isBlocked ? std::nullopt : tokenOf(slot);
    return token ? cache.find(*token) : nullptr;
}

void Model::handleArrivals() {
    while (!modem.arrivals.empty()) {
        const auto arrival = modem.arrivals.front();
        modem.arrivals.pop_front();
        if (arrival.messageId != RLINK_WDS_PROFILE_CHANGED_IND_V01) {
            continue;
        }
        if (!arrival.isDecodable()) {
            return;  // the rest waits until something else arrives
        }
        if (const auto change = arrival.change()) {
            cache.follow(*change);
        }
    }
}

/** What the library does before it rests. */
void Model::rest() {
    modem.lookAhead();
    do {
        while (const auto token = keys.takeDeferred()) {
            if (!isBlocked) {
                cache.release(*token);
            }
        }
        handleSignal();
    } while (keys.hasDeferred() || !modem.signals.empty());
}

void Model::handleSignal() {
    if (modem.signals.empty()) {
        return;
    }
    const auto signal = modem.signals.front();
    modem.signals.pop_front();
    switch (signal) {
        case ModelModem::Signal::Arrival:
            return handleArrivals();
        case ModelModem::Signal::ServiceUp:
            return modem.onServiceUp();
        case ModelModem::Signal::ClientLost:
            return modem.onClientLost();
    }
}

}  // namespace coherence
