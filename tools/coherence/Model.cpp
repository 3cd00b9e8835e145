// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What clients and others do, and what the library does of it. How it remembers is in
// ModelCache.cpp.
#include "Model.h"

#include <wds_service_v01.h>

#include <algorithm>
#include <utility>

namespace coherence {

using velasim::Technology;

void Model::finish() {
    rest();
    modem.finish();
    keys.finish();
}

// ---- Client operations

bool Model::add(unsigned slot, const vela::AddProfileParams& params) {
    const auto added = isBlocked ? std::nullopt : create(params);
    rest();  // the client gets the key when all is done
    if (added) {
        keys.hold(slot, *added);
    }
    return added.has_value();
}

std::optional<KeyRing::Key> Model::create(const vela::AddProfileParams& params) {
    const auto token = nextToken++;
    const auto technology = static_cast<Technology>(params.getTechType());
    if (technology != Technology::ThreeGpp && technology != Technology::ThreeGpp2) {
        return std::nullopt;
    }
    const ProfileId id{technology, freeIndex(modem.table(), technology, modem.capacity)};
    Entry entry{id, {id.is3gpp2(), {}}, params.getIsPersistent(), true, 1, {}};
    entry.image = entry.image.changesFor(params);
    if (!id.is3gpp2()) {
        entry.image.values[Field::ProfileName] =
            params.getIsIAProfile() ? "vela_profile_ia" : "vela_profile";
    }
    auto settings = entry.image.settings();
    velasim::setNumber(settings, "persistence_flag", entry.isPersistent ? 1 : 0);
    const auto reply =
        modem.request(RLINK_WDS_CREATE_PROFILE_REQ_V01, ModelModem::anyOf(technology),
                      id.index != 0, [&] { store(modem.table(), id, settings); });
    onOwnRequest(id, kCreation, reply);
    if (!reply.isSuccess) {
        return std::nullopt;
    }
    cache[token] = entry;
    excuses.onLearnt(id);
    pending.push_back({id, Event::Create});
    pending.push_back({id, Event::Modify});
    return KeyRing::Key{token, id};
}

/** An empty entry, and a modem that refuses, report true on purpose. */
bool Model::modify(unsigned slot, const vela::ModifyProfileParams& params) {
    auto* cached = look(slot);
    if (cached == nullptr || !*cached) {
        return cached != nullptr;
    }
    auto& entry = **cached;
    const auto changes = entry.image.changesFor(params);
    if (changes.values.empty()) {
        return true;
    }
    const auto reply = modem.request(RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01, entry.id,
                                     modem.table().count(entry.id) != 0,
                                     [&] { store(modem.table(), entry.id, changes.settings()); });
    onOwnRequest(entry.id, {Event::Modify}, reply);
    if (reply.isSuccess) {
        entry.image.apply(changes);
        pending.push_back({entry.id, Event::Modify});
    }
    return true;
}

bool Model::remove(unsigned slot) {
    if (look(slot) == nullptr || !removeFromModem(keys.at(slot)->id)) {
        return false;
    }
    const auto key = *keys.at(slot);
    const auto entry = cache.extract(key.token).mapped();
    if (entry) {
        expire(entry);
        pending.push_back({key.id, Event::Delete});
    } else {
        onUnknownChange(key.id, {Event::Delete});  // its indication is nobody's
    }
    return true;
}

std::optional<vela::ProfileParams> Model::get(unsigned slot) {
    const auto* cached = look(slot);
    return cached && *cached ? std::optional((*cached)->image.params()) : std::nullopt;
}

bool Model::match(unsigned slot, const vela::FilterProfileParams& params) {
    const auto* cached = look(slot);
    return cached && *cached && (*cached)->image.matches((*cached)->id, params);
}

std::vector<std::uint64_t> Model::filter(const vela::FilterProfileParams& params) {
    std::map<std::uint64_t, ProfileId> found;
    for (auto& [token, cached] : cache) {
        if (!isBlocked && cached && cached->image.matches(cached->id, params)) {
            ++cached->count;
            found.emplace(token, cached->id);
        }
    }
    std::vector<std::uint64_t> tokens;
    for (const auto& [token, id] : found) {
        tokens.push_back(token);
        keys.hold({token, id});
    }
    return tokens;
}

void Model::release(std::optional<std::uint64_t> token) {
    if (token && !isBlocked) {  // what is refused is not made up for later
        releaseToken(*token);
    }
    rest();
}

void Model::releaseToken(std::uint64_t token) {
    const auto found = cache.find(token);
    if (found == cache.end() || !found->second) {
        return;
    }
    auto& entry = *found->second;
    const auto id = entry.id;
    if (entry.count > 1) {
        --entry.count;
    } else if (!entry.isPersistent && entry.isVelaCreated && removeFromModem(id)) {
        pending.push_back({id, Event::Delete});
        expire(cache.extract(token).mapped());
    }
}

void Model::listen(unsigned slot, int listener, unsigned victim) {
    if (auto* cached = look(slot); cached && *cached) {
        (*cached)->listeners.push_back({listener, keys.at(slot), victim});
    }
}

void Model::endRefresh() {
    isBlocked = false;
    reload();
}

void Model::init(int instance) {
    modem.startOver(instance);
    excuses = {};
    pending.clear();
    dropAll();
    isBlocked = false;
}

bool Model::removeFromModem(ProfileId id) {
    const auto reply =
        modem.request(RLINK_WDS_DELETE_PROFILE_REQ_V01, id, modem.table().count(id) != 0,
                      [&] { modem.table().erase(id); });
    onOwnRequest(id, {Event::Delete}, reply);
    return reply.isSuccess;
}

/** What a request of the library's own means for the excuses. */
void Model::onOwnRequest(ProfileId id, const Events& events, const ModelModem::Reply& reply) {
    if (reply.isSuccess) {
        excuses.onOwnChange(id);
    } else if (reply.isAnnounced) {
        onUnknownChange(id, events);
    } else if (reply.hasEffect) {
        excuses.add(id, kUnheard);
    }
}

// ---- The modem's side

std::optional<int> Model::foreignCreate(int instance, Technology technology,
                                        const velasim::Settings& settings) {
    auto& table = modem.tableOf(instance);
    const ProfileId id{technology, freeIndex(table, technology, modem.capacity)};
    if (id.index == 0) {
        return std::nullopt;
    }
    store(table, id, settings);
    onForeignChange(instance, id, kCreation);
    return id.index;
}

bool Model::foreignModify(int instance, Technology technology, int index,
                          const velasim::Settings& settings) {
    auto& table = modem.tableOf(instance);
    if (table.count({technology, index}) == 0) {
        return false;
    }
    store(table, {technology, index}, settings);
    onForeignChange(instance, {technology, index}, {Event::Modify});
    return true;
}

bool Model::foreignDelete(int instance, Technology technology, int index) {
    if (modem.tableOf(instance).erase({technology, index}) == 0) {
        return false;
    }
    onForeignChange(instance, {technology, index}, {Event::Delete});
    return true;
}

void Model::onForeignChange(int instance, ProfileId id, const Events& events) {
    if (modem.isHome(instance)) {
        onUnknownChange(id, events);
    }
}

/** The modem's `id` was changed, not by the library as far as it knows. */
void Model::onUnknownChange(ProfileId id, const Events& events) {
    if (!modem.isSubscribed()) {
        excuses.add(id, kUnheard);
        return;
    }
    excuses.expectForeign(id);
    const auto isExpected = [&](Event event) {
        return std::find(pending.begin(), pending.end(), Change{id, event}) != pending.end();
    };
    if (std::any_of(events.begin(), events.end(), isExpected)) {
        excuses.add(id, kSwallowed);
    }
}

void Model::settle() {
    modem.checkConnection();
    if (modem.arrivals.empty()) {
        excuses.onSettled();
    }
}

// ---- What the library does before it rests

void Model::rest() {
    modem.lookAhead();
    while (!keys.deferred.empty() || !modem.signals.empty()) {
        if (keys.deferred.empty()) {
            handle(takeFirst(modem.signals));
        } else if (const auto token = takeFirst(keys.deferred); !isBlocked) {
            releaseToken(token);
        }
    }
}

void Model::handle(ModelModem::Signal signal) {
    switch (signal) {
        case ModelModem::Signal::Arrival:
            return handleArrivals();
        case ModelModem::Signal::ServiceUp:
            return modem.onServiceUp();
        case ModelModem::Signal::ClientLost:
            return modem.onClientLost();
    }
}

void Model::handleArrivals() {
    while (!modem.arrivals.empty()) {
        const auto arrival = takeFirst(modem.arrivals);
        if (arrival.isKnown && !arrival.isDecodable) {
            return;  // the rest waits until something else arrives
        }
        if (arrival.isKnown && arrival.change) {
            follow(*arrival.change);
        }
    }
}

void Model::follow(const Change& change) {
    const auto own = std::find(pending.begin(), pending.end(), change);
    if (own != pending.end()) {
        pending.erase(own);
        return;
    }
    switch (change.event) {
        case Event::Create:
            cache[nextToken++] = read(change.id);
            excuses.onLearnt(change.id);
            return;
        case Event::Delete:
            for (const auto token : tokensOf(change.id)) {
                expire(cache.extract(token).mapped());
            }
            return;
        case Event::Modify:
            for (const auto token : tokensOf(change.id)) {
                expire(std::exchange(cache.at(token), read(change.id)));
            }
            return;
        case Event::SubscriptionChange:
        case Event::ProfileReady:
            return reload();
    }
}

void Model::reload() {
    dropAll();  // what is expected stays so
    excuses.onReload();
    if (!readAll(Technology::ThreeGpp) || !readAll(Technology::ThreeGpp2)) {
        excuses.addAll(Technology::ThreeGpp2, kListFailed);  // or not asked for
    }
}

}  // namespace coherence
