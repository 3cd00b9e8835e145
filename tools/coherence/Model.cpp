// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Model.h"

#include <wds_service_v01.h>

#include <algorithm>
#include <set>

namespace coherence {

namespace {

using velasim::Fault;
using velasim::JournalKind;
using velasim::Technology;

// What the library does on purpose although it may surprise. The rest of the list is in
// Exceptions.h; docs/coherence.md tells each story.
constexpr bool kRefusedModifyReportsTrue = true;
constexpr bool kIgnoredReleaseLowersCount = false;
constexpr bool kRefreshForgetsPending = false;
constexpr bool kBlockedReleaseIsMadeUpForLater = false;
constexpr bool kModifyOfEmptyEntryReportsTrue = true;

constexpr std::size_t kLongestList = 255;

ProfileId anyOf(Technology technology) {
    return {technology, -1};
}

}  // namespace

void Model::witness(const std::vector<velasim::JournalEntry>& entries,
                    const std::vector<int>& ran) {
    modem.witness(entries);
    keys.witness(ran);
    const auto found = std::find_if(entries.begin(), entries.end(), [](const auto& entry) {
        return entry.kind == JournalKind::NotifyDelivered ||
               entry.kind == JournalKind::ErrorDelivered;
    });
    delivery = found == entries.end() ? velasim::JournalEntry{} : *found;
}

void Model::finish() {
    modem.finish();
    keys.finish();
}

// ---- Client operations

bool Model::add(unsigned slot, const vela::AddProfileParams& params) {
    if (isBlocked) {
        return false;
    }
    const auto token = nextToken++;
    const auto technology = static_cast<Technology>(params.getTechType());
    if (technology != Technology::ThreeGpp && technology != Technology::ThreeGpp2) {
        return false;
    }
    const ProfileId id{technology, modem.freeIndex(technology)};
    Entry entry{id, {id.is3gpp2(), {}, {}}, params.getIsPersistent(), true, 1, {}};
    entry.image = entry.image.changesFor(params);
    if (!id.is3gpp2()) {
        entry.image.texts[Field::ProfileName] =
            params.getIsIAProfile() ? "vela_profile_ia" : "vela_profile";
    }
    auto settings = entry.image.settings();
    velasim::setNumber(settings, "persistence_flag", entry.isPersistent ? 1 : 0);
    const auto reply = modem.request(RLINK_WDS_CREATE_PROFILE_REQ_V01, anyOf(technology),
                                     id.index != 0, [&] { modem.store(id, settings); });
    onOwnRequest(id, reply);
    if (reply.isSuccess) {
        cache[token] = entry;
        pending.push_back({id, Event::Create});
        pending.push_back({id, Event::Modify});
    }
    afterDispatch();
    if (reply.isSuccess) {
        keys.hold(slot, token, id);
    }
    return reply.isSuccess;
}

bool Model::modify(unsigned slot, const vela::ModifyProfileParams& params) {
    auto* cached = isBlocked ? nullptr : look(slot);
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
                                     modem.table.count(entry.id) != 0,
                                     [&] { modem.store(entry.id, changes.settings()); });
    onOwnRequest(entry.id, reply);
    if (reply.isSuccess) {
        entry.image.apply(changes);
        pending.push_back({entry.id, Event::Modify});
    }
    afterDispatch();
    return reply.isSuccess || kRefusedModifyReportsTrue;
}

bool Model::remove(unsigned slot) {
    if (isBlocked || look(slot) == nullptr) {
        return false;
    }
    const auto key = *keys.at(slot);
    const bool isRemoved = removeFromModem(key.id);
    if (isRemoved) {
        const auto entry = cache.extract(key.token).mapped();
        if (entry) {
            pending.push_back({key.id, Event::Delete});
            expire({entry});
        } else {
            onForeignChange(key.id);  // its indication is nobody's
        }
    }
    afterDispatch();
    return isRemoved;
}

std::optional<vela::ProfileParams> Model::get(unsigned slot) const {
    const auto* entry = isBlocked ? nullptr : look(slot);
    return entry == nullptr ? std::nullopt : std::optional(entry->image.params());
}

bool Model::match(unsigned slot, const vela::FilterProfileParams& params) const {
    const auto* entry = isBlocked ? nullptr : look(slot);
    return entry != nullptr && entry->image.matches(entry->id, params);
}

std::vector<std::uint64_t> Model::filter(const vela::FilterProfileParams& params) {
    std::vector<std::uint64_t> tokens;
    for (auto& [token, cached] : cache) {
        if (isBlocked || !cached || !cached->image.matches(cached->id, params)) {
            continue;
        }
        ++cached->count;
        tokens.push_back(token);
        keys.hold(token, cached->id);
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
        release(token);
    }
    afterDispatch();
}

void Model::listen(unsigned slot, int listener, unsigned victim) {
    const auto taken = keys.listener(slot, listener, victim);
    auto* cached = isBlocked ? nullptr : look(slot);
    if (taken && cached != nullptr && *cached) {
        (*cached)->listeners.push_back(*taken);
    }
}

void Model::refresh(bool isStart) {
    isBlocked = isStart;
    if (!isStart) {
        reload();
    }
    afterDispatch();
}

void Model::init() {
    keys.startPipeline();
    modem.startNotifier();
    modem.abandonClient();
    modem.arrivals.clear();
    exceptions.startOver();
    pending.clear();
    isBlocked = false;
    std::vector<Cached> dying;
    for (auto& [token, cached] : std::exchange(cache, {})) {
        dying.push_back(cached);
    }
    expire(std::move(dying));
}

// ---- The modem's side

int Model::foreignCreate(Technology technology, const velasim::Settings& settings) {
    const ProfileId id{technology, modem.freeIndex(technology)};
    if (id.index != 0) {
        modem.store(id, settings);
        onForeignChange(id);
    }
    return id.index;
}

bool Model::foreignModify(ProfileId id, const velasim::Settings& settings) {
    if (modem.table.count(id) == 0) {
        return false;
    }
    modem.store(id, settings);
    onForeignChange(id);
    return true;
}

bool Model::foreignDelete(ProfileId id) {
    if (modem.table.erase(id) == 0) {
        return false;
    }
    onForeignChange(id);
    return true;
}

void Model::deliver() {
    if (delivery.kind == JournalKind::NotifyDelivered) {
        modem.onNotify(delivery.result);
    } else if (delivery.kind == JournalKind::ErrorDelivered) {
        modem.onError();
    }
    afterDispatch();
}

void Model::settle() {
    if (modem.arrivals.empty()) {
        exceptions.onSettled();
    }
}

// ---- The state

std::optional<std::uint64_t> Model::tokenOf(unsigned slot) const {
    const auto& key = keys.at(slot);
    return key ? std::optional(key->token) : std::nullopt;
}

std::vector<std::string> Model::dump(std::uint64_t firstToken) const {
    std::vector<std::string> lines{"Cache:"};
    for (const auto& [token, cached] : cache) {
        lines.push_back("  " + std::to_string(token + firstToken) + ": " +
                        (cached ? cached->image.text(cached->id) : "null"));
    }
    lines.emplace_back("Pending:");
    for (const auto& change : pending) {
        lines.push_back("  " + change.text());
    }
    return lines;
}

int Model::compareWithModem() const {
    std::set<ProfileId> ids;
    std::multimap<ProfileId, const Entry*> entries;
    for (const auto& [id, settings] : modem.table) {
        ids.insert(id);
    }
    for (const auto& [token, cached] : cache) {
        if (cached) {
            ids.insert(cached->id);
            entries.emplace(cached->id, &*cached);
        }
    }
    int compared = 0;
    for (const auto& id : ids) {
        if (!modem.arrivals.empty() || exceptions.covers(id)) {
            continue;
        }
        ++compared;
        const auto stored = modem.table.find(id);
        if (stored == modem.table.end() || entries.count(id) != 1) {
            throw Mismatch(id.text() + " is cached " + std::to_string(entries.count(id)) +
                           " times, the modem has " +
                           (stored == modem.table.end() ? "none" : "one"));
        }
        // What the client wrote counts as what the modem can keep of it.
        const auto& image = entries.find(id)->second->image;
        if (Image::of(image.settings(), id.is3gpp2()) != Image::of(stored->second, id.is3gpp2())) {
            throw Mismatch(id.text() + " is cached as " + image.text(id) + " but stored as " +
                           velasim::describe(stored->second, id.technology));
        }
    }
    return compared;
}

bool Model::isHealed() const {
    return std::all_of(modem.table.begin(), modem.table.end(),
                       [&](const auto& item) { return !exceptions.covers(item.first); });
}

// ---- Steps

Model::Cached* Model::look(unsigned slot) {
    const auto& key = keys.at(slot);
    const auto found = key ? cache.find(key->token) : cache.end();
    return found == cache.end() ? nullptr : &found->second;
}

const Model::Entry* Model::look(unsigned slot) const {
    const auto& key = keys.at(slot);
    const auto found = key ? cache.find(key->token) : cache.end();
    return found != cache.end() && found->second ? &*found->second : nullptr;
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
        modem.request(RLINK_WDS_GET_PROFILE_LIST_REQ_V01, anyOf(technology), true, [&] {
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
            return cached && keys.isNext(cached->listeners);
        });
        if (next == dying.end()) {
            next = dying.begin();
        }
        const auto cached = *next;
        dying.erase(next);
        if (cached) {
            keys.run(cached->listeners);
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
        while (const auto token = keys.takeDeferred()) {
            if (!isBlocked) {
                release(*token);
            }
        }
        if (modem.isSignalled) {
            handleArrivals();
        }
    } while (keys.hasDeferred() || modem.isSignalled);
}

}  // namespace coherence
