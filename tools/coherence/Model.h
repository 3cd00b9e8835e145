// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Exceptions.h"
#include "Image.h"
#include "KeyRing.h"
#include "ModelCache.h"
#include "ModelModem.h"
#include "vela/ProfileParams.h"

namespace coherence {

/**
 * What the library promises, in plain words: clients' keys in numbered slots, what it remembers,
 * its connection to the modem, and whether a refresh blocks it. Each operation is told after it
 * happened, with the journal as witness, and says what must have come of it; throws Mismatch when
 * that is not what the journal shows.
 */
class Model {
  public:
    static constexpr unsigned kSlots = 10;
    static constexpr int kInstances = ModelModem::kInstances;

    explicit Model(unsigned capacity) : modem(capacity, exceptions) {}

    /** What is to be predicted next, and the listeners that ran meanwhile, in order. */
    void witness(const std::vector<velasim::JournalEntry>& entries, std::vector<KeyRing::Call> ran);
    /** See ModelCache. */
    void startTokensAt(std::uint64_t token) { cache.startTokensAt(token); }
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
    /** The library starts, or starts again, on an instance of the modem. */
    void init(int instance);
    /** A profile that the modem had before. */
    void provision(int instance, ProfileId id, const velasim::Settings& settings) {
        store(modem.tableOf(instance), id, settings);
    }

    // ---- the modem's side

    int foreignCreate(int instance, velasim::Technology technology,
                      const velasim::Settings& settings);
    bool foreignModify(int instance, ProfileId id, const velasim::Settings& settings);
    bool foreignDelete(int instance, ProfileId id);
    void serviceDown() { modem.serviceDown(); }
    void serviceUp() { modem.serviceUp(); }
    void restart() { modem.powerCycle(); }
    void delayedReleased() { exceptions.onDelayedReleased(); }
    /** The library does what is left to do, whatever happened to it. */
    void rest();
    /** Nothing is under way any more. */
    void settle();

    // ---- the state

    bool isSubscribed() const { return modem.isSubscribed(); }
    bool isCutOff() const { return modem.isCutOff(); }
    bool isLive(unsigned slot) const { return keys.at(slot).has_value(); }
    std::optional<std::uint64_t> tokenOf(unsigned slot) const;
    /** See ModelCache. */
    std::vector<std::string> dump() const { return cache.dump(); }
    const Table& table(int instance) const { return modem.tableOf(instance); }
    ModelCache::Comparison compareWithModem() const { return cache.compareWithModem(); }
    /** No indication waits in the library. */
    bool hasHandledAll() const { return modem.arrivals.empty(); }
    /** No exception is claimed for anything that is. */
    bool isHealed() const;

  private:
    /** What the key in the slot answers with; null when it does not. */
    const ModelCache::Entry* find(unsigned slot) const;
    void onForeignChange(int instance, ProfileId id, const ModelCache::Events& events);
    void handleArrivals();
    void handleSignal();

    Exceptions exceptions;
    ModelModem modem;
    KeyRing keys{kSlots};
    ModelCache cache{modem, exceptions, keys};
    bool isBlocked = false;
};

}  // namespace coherence
