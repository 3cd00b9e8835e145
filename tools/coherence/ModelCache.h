// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Exceptions.h"
#include "Image.h"
#include "KeyRing.h"
#include "ModelModem.h"
#include "vela/ProfileParams.h"

namespace coherence {

/**
 * What the library should remember: the profiles by token, with their counts and listeners, and the
 * indications that it expects of its own changes. Tokens count from 0.
 */
class ModelCache {
  public:
    struct Entry {
        ProfileId id;
        Image image;
        bool isPersistent = true;
        bool isVelaCreated = false;
        int count = 0;
        KeyRing::Listeners listeners;
    };
    using Events = std::vector<Event>;
    using Named = std::pair<std::uint64_t, ProfileId>;

    /** All three must outlive the cache. */
    ModelCache(ModelModem& modem, Exceptions& exceptions, KeyRing& keys)
        : modem(modem), exceptions(exceptions), keys(keys) {}

    /** The library's counter of tokens stands at `token`. Only while nothing is remembered. */
    void startTokensAt(std::uint64_t token) { nextToken = token; }

    // ---- operations through keys; results as the library's

    /** Empty when the library has no key for it. */
    std::optional<Named> add(const vela::AddProfileParams& params);
    bool modify(std::uint64_t token, const vela::ModifyProfileParams& params);
    bool remove(std::uint64_t token, ProfileId id);
    /** One reference more to each of those returned. */
    std::vector<Named> filter(const vela::FilterProfileParams& params);
    void listen(std::uint64_t token, const KeyRing::Listener& listener);
    void release(std::uint64_t token);

    // ---- what changes it from outside

    void follow(const Arrival::Change& change);
    void reload();
    /** Nothing is remembered, and nothing is expected. */
    void startOver();
    /** The modem's `id` was changed, not by the library as far as it knows. */
    void onForeignChange(ProfileId id, const Events& events);

    // ---- the state

    bool contains(std::uint64_t token) const { return cache.count(token) != 0; }
    /** Null also for an entry that is empty. */
    const Entry* find(std::uint64_t token) const;
    /** The library's dump but for its log, entries by token. */
    std::vector<std::string> dump() const;
    /** How many profiles were compared, and for how many an exception was claimed. */
    struct Comparison {
        std::uint64_t compared = 0;
        std::uint64_t excused = 0;
    };
    /** Compares with the modem's table wherever no exception is claimed. */
    Comparison compareWithModem() const;

  private:
    using Cached = std::optional<Entry>;  // empty: what could not be read

    Cached* look(std::uint64_t token);
    std::vector<std::uint64_t> tokensOf(ProfileId id) const;
    Cached read(ProfileId id);
    bool readAll(velasim::Technology technology);
    void dropAll();
    void expire(std::vector<Cached> dying);
    void removeAllOf(ProfileId id);
    void replace(ProfileId id);
    bool removeFromModem(ProfileId id);
    void onOwnRequest(ProfileId id, const Events& events, const ModelModem::Reply& reply);
    void compareWithModem(ProfileId id, const std::vector<const Entry*>& entries) const;

    ModelModem& modem;
    Exceptions& exceptions;
    KeyRing& keys;

    // The library's kind of map, with the same done to it in the same order: which of several reads
    // fills which of two entries of one profile depends on the order in which it is walked.
    std::unordered_map<std::uint64_t, Cached> cache;
    std::list<Arrival::Change> pending;
    std::uint64_t nextToken = 0;
};

}  // namespace coherence
