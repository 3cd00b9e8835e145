// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Exceptions.h"
#include "Image.h"
#include "KeyRing.h"
#include "ModelModem.h"
#include "vela/ProfileParams.h"

namespace coherence {

/**
 * What the library promises, in plain words: the cache by token, the indications it expects, the
 * counts, keys and listeners, and whether a refresh blocks it. Each operation is told after it
 * happened, with the journal as witness, and says what must have come of it; throws Mismatch when
 * that is not what the journal shows.
 *
 * Clients hold keys in numbered slots. Tokens count from 0.
 */
class Model {
  public:
    static constexpr unsigned kSlots = 10;

    explicit Model(unsigned capacity) : modem(capacity, exceptions) {}

    /** What is to be predicted next, and the listeners that ran meanwhile, in order. */
    void witness(const std::vector<velasim::JournalEntry>& entries, const std::vector<int>& ran);
    /** In which order the library last showed its entries; which of several failing reads hits
     * which of two entries of one profile depends on it. */
    void noteMapOrder(std::vector<std::uint64_t> tokens) { mapOrder = std::move(tokens); }
    /** Fails when more happened than was predicted. */
    void finish();

    // ---- a client's operations; results as the library's

    bool add(unsigned slot, const vela::AddProfileParams& params);
    bool modify(unsigned slot, const vela::ModifyProfileParams& params);
    bool remove(unsigned slot);
    std::optional<vela::ProfileParams> get(unsigned slot) const;
    bool match(unsigned slot, const vela::FilterProfileParams& params) const;
    /** Fills the empty slots, least token first. Returns the tokens of all keys; those without a
     * slot are to be dropped with dropToken(). */
    std::vector<std::uint64_t> filter(const vela::FilterProfileParams& params);
    void drop(unsigned slot);
    /** Someone holds the slot's key for a while, whatever listeners drop meanwhile. */
    void use(unsigned slot) { keys.use(slot); }
    void endUse();
    void dropToken(std::uint64_t token);
    /** A listener that drops the key in `victim` when it runs. */
    void listen(unsigned slot, int listener, unsigned victim);
    void refresh(bool isStart);
    /** The library starts, or starts again. */
    void init();
    /** A profile that the modem had before. */
    void provision(ProfileId id, const velasim::Settings& settings) { modem.store(id, settings); }

    // ---- the modem's side

    int foreignCreate(velasim::Technology technology, const velasim::Settings& settings);
    bool foreignModify(ProfileId id, const velasim::Settings& settings);
    bool foreignDelete(ProfileId id);
    void serviceDown() { modem.serviceDown(); }
    void serviceUp() { modem.serviceUp(); }
    void restart() { modem.powerCycle(); }
    void delayedReleased() { exceptions.onDelayedReleased(); }
    /** One callback of the messaging library, which the journal names. */
    void deliver();
    /** Nothing is under way any more. */
    void settle();

    // ---- the state

    bool isSubscribed() const { return modem.isSubscribed(); }
    bool isLive(unsigned slot) const { return keys.at(slot).has_value(); }
    std::optional<std::uint64_t> tokenOf(unsigned slot) const;
    /** The library's dump but for its log: tokens from `firstToken`, entries by token. */
    std::vector<std::string> dump(std::uint64_t firstToken) const;
    const std::map<ProfileId, velasim::Settings>& table() const { return modem.table; }
    /** Compares cache and modem wherever no exception is claimed; returns how many profiles were
     * compared. */
    int compareWithModem() const;
    /** No indication waits in the library. */
    bool hasHandledAll() const { return modem.arrivals.empty(); }
    /** No exception is claimed for anything that is. */
    bool isHealed() const;

  private:
    struct Entry {
        ProfileId id;
        Image image;
        bool isPersistent = true;
        bool isVelaCreated = false;
        int count = 0;
        KeyRing::Listeners listeners;
    };
    using Cached = std::optional<Entry>;  // empty: what could not be read

    /** The entry that the key in the slot names; null when there is none. */
    Cached* look(unsigned slot);
    const Entry* look(unsigned slot) const;

    Cached read(ProfileId id);
    bool readAll(velasim::Technology technology);
    void reload();
    void release(std::uint64_t token);
    bool removeFromModem(ProfileId id);
    void onOwnRequest(ProfileId id, const ModelModem::Reply& reply);
    void onForeignChange(ProfileId id);

    void expire(std::vector<Cached> dying);
    void follow(const Arrival::Change& change);
    void replace(ProfileId id);
    void handleArrivals();
    void afterDispatch();

    Exceptions exceptions;
    ModelModem modem;
    std::map<std::uint64_t, Cached> cache;
    std::list<Arrival::Change> pending;
    bool isBlocked = false;

    KeyRing keys{kSlots};
    std::vector<std::uint64_t> mapOrder;  // in which the library walks its cache
    velasim::JournalEntry delivery;
    std::uint64_t nextToken = 0;
};

}  // namespace coherence
