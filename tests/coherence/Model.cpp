// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Model.h"

#include <wds_service_v01.h>

#include <algorithm>
#include <set>

namespace coherence {

namespace {

using velasim::JournalKind;
using velasim::Technology;

}  // namespace

void Model::witness(const std::vector<velasim::JournalEntry>& entries,
                    const std::vector<int>& ran) {
    modem.witness(entries);
    calls.assign(ran.begin(), ran.end());
    const auto found = std::find_if(entries.begin(), entries.end(), [](const auto& entry) {
        return entry.kind == JournalKind::NotifyDelivered ||
               entry.kind == JournalKind::ErrorDelivered;
    });
    delivery = found == entries.end() ? velasim::JournalEntry{} : *found;
}

void Model::finish() {
    modem.finish();
    if (!calls.empty()) {
        throw Mismatch("listener " + std::to_string(calls.front()) + " should not have run");
    }
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
    const auto reply = modem.request(RLINK_WDS_CREATE_PROFILE_REQ_V01, ProfileId::anyOf(technology),
                                     id.index != 0, [&] { modem.store(id, settings); });
    onOwnRequest(id, reply);
    if (reply.isSuccess) {
        cache[token] = entry;
        pending.push_back({id, Event::Create});
        pending.push_back({id, Event::Modify});
    }
    afterDispatch();
    if (reply.isSuccess) {
        keys.at(slot) = Key{token, id, ++nextSerial, pipeline};
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
        const auto free = std::find(keys.begin(), keys.end(), std::nullopt);
        if (free != keys.end()) {
            *free = Key{token, cached->id, ++nextSerial, pipeline};
        }
    }
    return tokens;
}

void Model::use(unsigned slot) {
    inUse = keys.at(slot);
}

void Model::endUse() {
    const auto key = std::exchange(inUse, std::nullopt);
    const auto isSame = [&](const auto& other) { return other && other->serial == key->serial; };
    if (key && key->pipeline == pipeline && std::none_of(keys.begin(), keys.end(), isSame)) {
        dropToken(key->token);
    }
}

void Model::drop(unsigned slot) {
    use(slot);
    keys.at(slot).reset();
    endUse();
}

void Model::dropToken(std::uint64_t token) {
    if (!isBlocked || kBlockedReleaseIsMadeUpForLater) {
        release(token);
    }
    afterDispatch();
}

void Model::listen(unsigned slot, int listener, unsigned victim) {
    const auto& key = keys.at(slot);
    auto* cached = isBlocked ? nullptr : look(slot);
    if (key && key->pipeline == pipeline && cached != nullptr && *cached) {
        (*cached)->listeners.push_back({listener, slot, key->serial, victim});
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
    ++pipeline;
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

}  // namespace coherence
