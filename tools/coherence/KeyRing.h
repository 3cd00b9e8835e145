// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "Image.h"

namespace coherence {

/**
 * The model's keys, in numbered slots, and what their listeners do: each drops a key. A release
 * that falls due while listeners run is deferred, as it is by the library.
 */
class KeyRing {
  public:
    struct Key {
        std::uint64_t token = 0;
        ProfileId id;
        std::uint64_t serial = 0;
        std::uint64_t pipeline = 0;
    };
    struct Listener {
        int number = 0;
        unsigned slot = 0;
        std::uint64_t serial = 0;  // of the key that must live
        unsigned victim = 0;
    };
    using Listeners = std::vector<Listener>;
    /** A listener that ran, and the library's dump as it saw it. */
    struct Call {
        int number = 0;
        std::vector<std::string> dump;
    };

    explicit KeyRing(unsigned slots) : keys(slots) {}

    const std::optional<Key>& at(unsigned slot) const { return keys.at(slot); }
    /** Keys from before reach nothing any more. */
    void startPipeline() { ++pipeline; }

    void hold(unsigned slot, std::uint64_t token, ProfileId id);
    /** Into the first empty slot, if there is one. */
    void hold(std::uint64_t token, ProfileId id);
    /** Someone holds the slot's key for a while, whatever listeners drop meanwhile. */
    void use(unsigned slot);
    /** The token to release, if nobody holds that key any more. */
    std::optional<std::uint64_t> endUse();
    /** As if used for a moment. */
    std::optional<std::uint64_t> drop(unsigned slot);

    /** Empty when the library does not take it. */
    std::optional<Listener> listener(unsigned slot, int number, unsigned victim) const;
    bool isAlive(const Listener& listener) const;

    /** The listeners that ran, in order; they are to be predicted. */
    void witness(std::vector<Call> ran);
    /** Whether one of these ran first of those that have not been predicted. */
    bool isNext(const Listeners& listeners) const;
    /** Predicts that these run, in order, but for those whose key is gone by then, and what they
     * see. */
    void run(const Listeners& listeners, const std::vector<std::string>& dump);
    /** Fails when more ran than was predicted. */
    void finish() const;

    /** The next token that a listener's dropped key releases. */
    std::optional<std::uint64_t> takeDeferred();
    bool hasDeferred() const { return !deferred.empty(); }

  private:
    std::vector<std::optional<Key>> keys;
    std::optional<Key> inUse;
    std::deque<std::uint64_t> deferred;
    std::deque<Call> calls;
    std::uint64_t nextSerial = 0;
    std::uint64_t pipeline = 0;
};

}  // namespace coherence
