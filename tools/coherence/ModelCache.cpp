// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ModelCache.h"

#include <wds_service_v01.h>

#include <algorithm>
#include <utility>

namespace coherence {

namespace {

using velasim::Fault;
using velasim::Technology;

// What the library does on purpose although it may surprise. The rest of the list is in Model.cpp
// and Exceptions.h; docs/coherence.md tells each story.
constexpr bool kRefusedModifyReportsTrue = true;
constexpr bool kModifyOfEmptyEntryReportsTrue = true;
constexpr bool kIgnoredReleaseLowersCount = false;
constexpr bool kRefreshForgetsPending = false;

constexpr std::size_t kLongestList = 255;

ProfileId anyOf(Technology technology) {
    return {technology, -1};
}

}  // namespace

// ---- Operations through keys

std::optional<ModelCache::Named> ModelCache::add(const vela::AddProfileParams& params) {
    const auto token = nextToken++;
    const auto technology = static_cast<Technology>(params.getTechType());
    if (technology != Technology::ThreeGpp && technology != Technology::ThreeGpp2) {
        return std::nullopt;
    }
    const ProfileId id{technology, freeIndex(modem.table(), technology, modem.capacity)};
    Entry entry{id, {id.is3gpp2(), {}, {}}, params.getIsPersistent(), true, 1, {}};
    entry.image = entry.image.changesFor(params);
    if (!id.is3gpp2()) {
        entry.image.texts[Field::ProfileName] =
            params.getIsIAProfile() ? "vela_profile_ia" : "vela_profile";
    }
    auto settings = entry.image.settings();
    velasim::setNumber(settings, "persistence_flag", entry.isPersistent ? 1 : 0);
    const auto reply = modem.request(RLINK_WDS_CREATE_PROFILE_REQ_V01, anyOf(technology),
                                     id.index != 0, [&] { store(modem.table(), id, settings); });
    onOwnRequest(id, kCreation, reply);
    if (!reply.isSuccess) {
        return std::nullopt;
    }
    cache[token] = entry;
    exceptions.onLearnt(id);
    pending.push_back({id, Event::Create});
    pending.push_back({id, Event::Modify});
    return Named{token, id};
}

bool ModelCache::modify(std::uint64_t token, const vela::ModifyProfileParams& params) {
    auto* cached = look(token);
    if (cached == nullptr) {
        return false;
    }
    if (!*cached) {
        return kModifyOfEmptyEntryReportsTrue;
    }
    auto& entry = **cached;
    const auto changes = entry.image.changesFor(params);
    if (changes.isEmpty()) {
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
    return reply.isSuccess || kRefusedModifyReportsTrue;
}

bool ModelCache::remove(std::uint64_t token, ProfileId id) {
    if (!contains(token) || !removeFromModem(id)) {
        return false;
    }
    const auto entry = cache.extract(token).mapped();
    if (entry) {
        expire({entry});
        pending.push_back({id, Event::Delete});
    } else {
        onForeignChange(id, {Event::Delete});  // its indication is nobody's
    }
    return true;
}

std::vector<ModelCache::Named> ModelCache::filter(const vela::FilterProfileParams& params) {
    std::vector<Named> found;
    for (auto& [token, cached] : cache) {
        if (cached && cached->image.matches(cached->id, params)) {
            ++cached->count;
            found.emplace_back(token, cached->id);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

void ModelCache::listen(std::uint64_t token, const KeyRing::Listener& listener) {
    auto* cached = look(token);
    if (cached != nullptr && *cached) {
        (*cached)->listeners.push_back(listener);
    }
}

void ModelCache::release(std::uint64_t token) {
    const auto found = cache.find(token);
    if (found == cache.end() || !found->second) {
        return;
    }
    auto& entry = *found->second;
    std::erase_if(entry.listeners, [&](const auto& listener) { return !keys.isAlive(listener); });
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

// ---- What changes it from outside

void ModelCache::follow(const Arrival::Change& change) {
    const auto own = std::find(pending.begin(), pending.end(), change);
    if (own != pending.end()) {
        pending.erase(own);
        return;
    }
    switch (change.event) {
        case Event::Create:
            cache[nextToken++] = read(change.id);
            exceptions.onLearnt(change.id);
            return;
        case Event::Delete:
            return removeAllOf(change.id);
        case Event::Modify:
            return replace(change.id);
        case Event::SubscriptionChange:
        case Event::ProfileReady:
            return reload();
    }
}

void ModelCache::reload() {
    dropAll();
    if (kRefreshForgetsPending) {
        pending.clear();
    }
    exceptions.onReload();
    if (!readAll(Technology::ThreeGpp)) {
        exceptions.addAll(Technology::ThreeGpp2, kListFailed);  // not asked for
        return;
    }
    readAll(Technology::ThreeGpp2);
}

void ModelCache::startOver() {
    exceptions.startOver();
    pending.clear();
    dropAll();
}

void ModelCache::onForeignChange(ProfileId id, const Events& events) {
    if (!modem.isSubscribed()) {
        exceptions.add(id, kUnheard);
        return;
    }
    exceptions.expectForeign(id);
    const auto isExpected = [&](Event event) {
        return std::find(pending.begin(), pending.end(), Arrival::Change{id, event}) !=
               pending.end();
    };
    if (std::any_of(events.begin(), events.end(), isExpected)) {
        exceptions.add(id, kSwallowed);
    }
}

// ---- The state

const ModelCache::Entry* ModelCache::find(std::uint64_t token) const {
    const auto found = cache.find(token);
    return found != cache.end() && found->second ? &*found->second : nullptr;
}

std::vector<std::string> ModelCache::dump() const {
    std::vector<std::string> lines{"Cache:"};
    for (const auto& [token, cached] : std::map(cache.begin(), cache.end())) {
        lines.push_back("  " + std::to_string(token) + ": " +
                        (cached ? cached->image.text(cached->id) : "null"));
    }
    lines.emplace_back("Pending:");
    for (const auto& change : pending) {
        lines.push_back("  " + change.text());
    }
    return lines;
}

ModelCache::Comparison ModelCache::compareWithModem() const {
    std::map<ProfileId, std::vector<const Entry*>> entries;
    for (const auto& [id, settings] : modem.homeTable()) {
        entries[id];
    }
    for (const auto& [token, cached] : cache) {
        if (cached) {
            entries[cached->id].push_back(&*cached);
        }
    }
    Comparison comparison;
    for (const auto& [id, ofId] : entries) {
        if (!modem.arrivals.empty() || exceptions.covers(id)) {
            ++comparison.excused;
        } else {
            compareWithModem(id, ofId);
            ++comparison.compared;
        }
    }
    return comparison;
}

void ModelCache::compareWithModem(ProfileId id, const std::vector<const Entry*>& entries) const {
    const auto stored = modem.homeTable().find(id);
    if (stored == modem.homeTable().end() || entries.size() != 1) {
        throw Mismatch(id.text() + " is cached " + std::to_string(entries.size()) +
                       " times, the modem has " +
                       (stored == modem.homeTable().end() ? "none" : "one"));
    }
    const auto& image = entries.front()->image;
    if (!image.isStoredAs(Image::of(stored->second, id.is3gpp2()))) {
        throw Mismatch(id.text() + " is cached as " + image.text(id) + " but stored as " +
                       velasim::describe(stored->second, id.technology));
    }
}

// ---- Steps

ModelCache::Cached* ModelCache::look(std::uint64_t token) {
    const auto found = cache.find(token);
    return found == cache.end() ? nullptr : &found->second;
}

ModelCache::Cached ModelCache::read(ProfileId id) {
    velasim::Settings settings{};
    const auto reply =
        modem.request(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01, id, modem.table().count(id) != 0,
                      [&] { settings = modem.table().at(id); });
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

bool ModelCache::readAll(Technology technology) {
    std::vector<ProfileId> ids;
    const auto reply =
        modem.request(RLINK_WDS_GET_PROFILE_LIST_REQ_V01, anyOf(technology), true, [&] {
            for (const auto& [id, settings] : modem.table()) {
                if (id.technology == technology) {
                    ids.push_back(id);
                }
            }
        });
    if (!reply.isSuccess) {
        exceptions.addAll(technology, kListFailed);
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

void ModelCache::dropAll() {
    std::vector<Cached> dying;
    for (auto& [token, cached] : std::exchange(cache, {})) {
        dying.push_back(std::move(cached));
    }
    expire(std::move(dying));
}

/** The entries of one profile, as the library walks them. */
std::vector<std::uint64_t> ModelCache::tokensOf(ProfileId id) const {
    std::vector<std::uint64_t> tokens;
    for (const auto& [token, cached] : cache) {
        if (cached && cached->id == id) {
            tokens.push_back(token);
        }
    }
    return tokens;
}

void ModelCache::removeAllOf(ProfileId id) {
    for (const auto token : tokensOf(id)) {
        expire({cache.extract(token).mapped()});
    }
}

/** Runs the listeners of entries that died. Entries die in no promised order; each entry's
 * listeners run in the order of their registration, but for those whose key is gone by then. */
void ModelCache::expire(std::vector<Cached> dying) {
    while (!dying.empty()) {
        auto next = std::find_if(dying.begin(), dying.end(), [&](const Cached& cached) {
            return cached && keys.isNext(cached->listeners);
        });
        if (next == dying.end()) {
            next = dying.begin();
        }
        const auto cached = *next;
        dying.erase(next);
        if (cached) {
            keys.run(cached->listeners, dump());
        }
    }
}

void ModelCache::replace(ProfileId id) {
    for (const auto token : tokensOf(id)) {
        expire({std::exchange(cache.at(token), read(id))});
    }
}

bool ModelCache::removeFromModem(ProfileId id) {
    const auto reply =
        modem.request(RLINK_WDS_DELETE_PROFILE_REQ_V01, id, modem.table().count(id) != 0,
                      [&] { modem.table().erase(id); });
    onOwnRequest(id, {Event::Delete}, reply);
    return reply.isSuccess;
}

/** What a request of the library's own means for the exceptions. */
void ModelCache::onOwnRequest(ProfileId id, const Events& events, const ModelModem::Reply& reply) {
    if (reply.isSuccess) {
        exceptions.onOwnChange(id);
    } else if (reply.isAnnounced) {
        onForeignChange(id, events);  // the library does not know it for its own
    } else if (reply.hasEffect) {
        exceptions.add(id, kUnheard);
    }
}

}  // namespace coherence
