// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Excuses.h"
#include "Image.h"
#include "KeyRing.h"
#include "ModelModem.h"
#include "vela/ProfileParams.h"

namespace coherence {

/** How often a cached profile was compared with the modem's table, and how often an excuse was
 * claimed instead. */
struct Figures {
    std::uint64_t compared;
    std::uint64_t excused;
};

/**
 * What the library promises, in plain words: clients' keys in numbered slots, the profiles that it
 * remembers by token with their counts and listeners, the indications that it expects of its own
 * changes, its connection to the modem, and whether a refresh blocks it. Each operation is told
 * after it happened, with the journal as witness, and says what must have come of it; throws
 * Mismatch when that is not what the journal shows.
 */
class Model {
  public:
    static constexpr unsigned kSlots = 10;
    static constexpr int kInstances = ModelModem::kInstances;

    explicit Model(unsigned capacity) : modem(capacity, excuses) {}

    /** What is to be predicted next, and the listeners that ran meanwhile, in order. */
    void witness(const std::vector<velasim::JournalEntry>& entries,
                 const std::vector<KeyRing::Call>& ran) {
        modem.witness(entries);
        keys.witness(ran);
    }
    /** The library's counter of tokens stands at `token`. Only while nothing is remembered. */
    void startTokensAt(std::uint64_t token) { nextToken = token; }
    /** The library does what is left to do, whatever happened to it. Fails when more happened than
     * was predicted. */
    void finish();

    // ---- a client's operations; results as the library's

    bool add(unsigned slot, const vela::AddProfileParams& params);
    bool modify(unsigned slot, const vela::ModifyProfileParams& params);
    bool remove(unsigned slot);
    std::optional<vela::ProfileParams> get(unsigned slot);
    bool match(unsigned slot, const vela::FilterProfileParams& params);
    /** Fills the empty slots, least token first. Returns the tokens of all keys; those without a
     * slot are to be dropped with release(). */
    std::vector<std::uint64_t> filter(const vela::FilterProfileParams& params);
    void drop(unsigned slot) { release(keys.drop(slot)); }
    /** Someone holds the slot's key for a while, whatever listeners drop meanwhile. */
    void use(unsigned slot) { keys.use(slot); }
    void endUse() { release(keys.endUse()); }
    void release(std::optional<std::uint64_t> token);
    /** A listener that drops the key in `victim` when it runs. */
    void listen(unsigned slot, int listener, unsigned victim);
    void startRefresh() { isBlocked = true; }
    void endRefresh();
    /** The library starts, or starts again, on an instance of the modem. */
    void init(int instance);
    /** A profile that the modem had before. */
    void provision(int instance, ProfileId id, const velasim::Settings& settings) {
        store(modem.tableOf(instance), id, settings);
    }

    // ---- the modem's side, as the simulator has it

    std::optional<int> foreignCreate(int instance, velasim::Technology technology,
                                     const velasim::Settings& settings);
    bool foreignModify(int instance, velasim::Technology technology, int index,
                       const velasim::Settings& settings);
    bool foreignDelete(int instance, velasim::Technology technology, int index);
    void serviceDown() { modem.serviceDown(); }
    void serviceUp() { modem.serviceUp(); }
    void restart() { modem.powerCycle(); }
    void releaseDelayed() { excuses.onDelayedReleased(); }
    /** Nothing is under way any more. */
    void settle();

    // ---- the state

    bool isSubscribed() const { return modem.isSubscribed(); }
    bool isCutOff() const { return modem.isCutOff(); }
    bool isLive(unsigned slot) const { return keys.at(slot) != nullptr; }
    /** The library's dump but for its log, entries by token. */
    std::vector<std::string> dump() const;
    const Table& table(int instance) const { return modem.tableOf(instance); }
    /** Compares with the modem's table wherever no excuse is claimed. */
    void compareWithModem(Figures& figures) const;
    /** No indication waits in the library. */
    bool hasHandledAll() const { return modem.arrivals.empty(); }

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
    using Events = std::vector<Event>;

    void rest();
    void handle(ModelModem::Signal signal);
    void handleArrivals();
    void follow(const Change& change);
    void reload();
    void onForeignChange(int instance, ProfileId id, const Events& events);
    void onUnknownChange(ProfileId id, const Events& events);

    std::optional<KeyRing::Key> create(const vela::AddProfileParams& params);
    bool removeFromModem(ProfileId id);
    void releaseToken(std::uint64_t token);
    void onOwnRequest(ProfileId id, const Events& events, const ModelModem::Reply& reply);

    /** Null when the library refuses, or has no entry for the slot's key. */
    Cached* look(unsigned slot);
    std::vector<std::uint64_t> tokensOf(ProfileId id) const;
    Cached read(ProfileId id);
    bool readAll(velasim::Technology technology);
    void dropAll();
    void expire(const Cached& dying);

    Excuses excuses;
    ModelModem modem;
    KeyRing keys{kSlots};

    // The library's kind of map, with the same done to it in the same order: which of several reads
    // fills which of two entries of one profile depends on the order in which it is walked.
    std::unordered_map<std::uint64_t, Cached> cache;
    std::list<Change> pending;
    std::uint64_t nextToken = 0;
    bool isBlocked = false;
};

}  // namespace coherence
