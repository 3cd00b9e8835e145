// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The second half of Model: what the library does within an operation, and after it.
#include <wds_service_v01.h>

#include <algorithm>

#include "Model.h"

namespace coherence {

namespace {

using velasim::Fault;
using velasim::Technology;

constexpr std::size_t kLongestList = 255;

}  // namespace

bool Model::isAlive(const Listener& listener) const {
    const auto& key = keys.at(listener.slot);
    return (inUse && inUse->serial == listener.serial) || (key && key->serial == listener.serial);
}

Model::Cached* Model::look(unsigned slot) {
    const auto& key = keys.at(slot);
    const auto found = key ? cache.find(key->token) : cache.end();
    return found == cache.end() ? nullptr : &found->second;
}

const Model::Entry* Model::look(unsigned slot) const {
    const auto* cached = const_cast<Model*>(this)->look(slot);
    return cached != nullptr && *cached ? &**cached : nullptr;
}

Model::Cached Model::read(ProfileId id) {
    velasim::Settings settings{};
    const auto reply =
        modem.request(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01, id, modem.table.count(id) != 0,
                      [&] { settings = modem.table.at(id); });
    if (!reply.isSuccess) {
        exceptions.add(id, kReadFailed);
        return std::nullopt;
    }
    const bool isGarbled = reply.faults.count(Fault::GarbageEnumerators) != 0;
    const bool isUnterminated = reply.faults.count(Fault::UnterminatedText) != 0;
    if (isGarbled) {
        garble(settings);
    }
    Entry entry{id, Image::of(settings, id.is3gpp2()), settings.persistence_flag != 0, false, 0,
                {}};
    if (isUnterminated) {
        entry.image.unterminate();
    }
    if (isGarbled || isUnterminated) {
        exceptions.add(id, kReadGarbled);
    }
    return entry;
}

bool Model::readAll(Technology technology) {
    std::vector<ProfileId> ids;
    const auto reply =
        modem.request(RLINK_WDS_GET_PROFILE_LIST_REQ_V01, ProfileId::anyOf(technology), true, [&] {
            for (const auto& [id, settings] : modem.table) {
                if (id.technology == technology) {
                    ids.push_back(id);
                }
            }
        });
    if (!reply.isSuccess) {
        exceptions.addAll(kListFailed);
        return false;
    }
    if (reply.faults.count(Fault::ListOverrun) != 0) {
        ids.resize(kLongestList, {Technology::ThreeGpp, 0});  // the rest of the array is zero
    }
    for (const auto& id : ids) {
        cache[nextToken++] = read(id);
    }
    return true;
}

void Model::reload() {
    std::vector<Cached> dying;
    for (auto& [token, cached] : std::exchange(cache, {})) {
        dying.push_back(cached);
    }
    expire(std::move(dying));
    if (kRefreshForgetsPending) {
        pending.clear();
    }
    exceptions.onReload();
    if (readAll(Technology::ThreeGpp)) {
        readAll(Technology::ThreeGpp2);
    }
}

void Model::release(std::uint64_t token) {
    const auto found = cache.find(token);
    if (found == cache.end() || !found->second) {
        return;
    }
    auto& entry = *found->second;
    std::erase_if(entry.listeners, [&](const auto& listener) { return !isAlive(listener); });
    const bool isLast = entry.count < 2;
    if (!isLast || kIgnoredReleaseLowersCount) {
        --entry.count;
    }
    const auto id = entry.id;
    if (isLast && !entry.isPersistent && entry.isVelaCreated && removeFromModem(id)) {
        pending.push_back({id, Event::Delete});
        expire({cache.extract(token).mapped()});
    }
}

bool Model::removeFromModem(ProfileId id) {
    const auto reply = modem.request(RLINK_WDS_DELETE_PROFILE_REQ_V01, id,
                                     modem.table.count(id) != 0, [&] { modem.table.erase(id); });
    onOwnRequest(id, reply);
    return reply.isSuccess;
}

/** What a request of the library's own means for the exceptions. */
void Model::onOwnRequest(ProfileId id, const ModelModem::Reply& reply) {
    if (reply.isSuccess) {
        exceptions.onOwnChange(id);
    } else if (reply.isAnnounced) {
        onForeignChange(id);  // the library does not know it for its own
    } else if (reply.hasEffect) {
        exceptions.add(id, kUnheard);
    }
}

void Model::onForeignChange(ProfileId id) {
    if (!modem.isSubscribed()) {
        exceptions.add(id, kUnheard);
        return;
    }
    exceptions.expectForeign(id);
    if (std::any_of(pending.begin(), pending.end(),
                    [&](const auto& change) { return change.id == id; })) {
        exceptions.add(id, kSwallowed);
    }
}

/** Runs the listeners of entries that died. Entries die in no promised order; each entry's
 * listeners run in the order of their registration, but for those whose key is gone by then. */
void Model::expire(std::vector<Cached> dying) {
    while (!dying.empty()) {
        auto next = std::find_if(dying.begin(), dying.end(), [&](const Cached& cached) {
            return cached && !calls.empty() &&
                   std::any_of(cached->listeners.begin(), cached->listeners.end(),
                               [&](const auto& one) { return one.number == calls.front(); });
        });
        if (next == dying.end()) {
            next = dying.begin();
        }
        const auto cached = *next;
        dying.erase(next);
        if (cached) {
            run(cached->listeners);
        }
    }
}

void Model::run(const std::vector<Listener>& listeners) {
    for (const auto& listener : listeners) {
        if (!isAlive(listener)) {
            continue;
        }
        if (calls.empty() || calls.front() != listener.number) {
            throw Mismatch("listener " + std::to_string(listener.number) + " should have run");
        }
        calls.pop_front();
        const auto key = std::exchange(keys.at(listener.victim), std::nullopt);
        if (key && key->pipeline == pipeline && !(inUse && inUse->serial == key->serial)) {
            deferred.push_back(key->token);
        }
    }
}

void Model::follow(const Arrival::Change& change) {
    const auto own = std::find(pending.begin(), pending.end(), change);
    if (own != pending.end()) {
        pending.erase(own);
        return;
    }
    switch (change.event) {
        case Event::Create:
            cache[nextToken++] = read(change.id);
            return;
        case Event::Delete: {
            std::vector<Cached> dying;
            std::erase_if(cache, [&](const auto& item) {
                const bool dies = item.second && item.second->id == change.id;
                if (dies) {
                    dying.push_back(item.second);
                }
                return dies;
            });
            return expire(std::move(dying));
        }
        case Event::Modify:
            return replace(change.id);
        case Event::SubscriptionChange:
        case Event::ProfileReady:
            return reload();
    }
}

void Model::replace(ProfileId id) {
    std::vector<std::uint64_t> tokens;
    for (const auto& [token, cached] : cache) {
        if (cached && cached->id == id) {
            tokens.push_back(token);
        }
    }
    const auto place = [&](auto token) {  // a new entry comes first
        return std::find(mapOrder.rbegin(), mapOrder.rend(), token) - mapOrder.rend();
    };
    std::sort(tokens.begin(), tokens.end(),
              [&](auto left, auto right) { return place(left) > place(right); });
    for (const auto token : tokens) {
        expire({std::exchange(cache.at(token), read(id))});
    }
}

void Model::handleArrivals() {
    modem.isSignalled = false;
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
            follow(*change);
        }
    }
}

/** What the library does between an operation and its rest. */
void Model::afterDispatch() {
    modem.lookAhead();
    do {
        while (!deferred.empty()) {
            const auto token = deferred.front();
            deferred.pop_front();
            if (!isBlocked) {
                release(token);
            }
        }
        if (modem.isSignalled) {
            handleArrivals();
        }
    } while (!deferred.empty() || modem.isSignalled);
}

}  // namespace coherence
