// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Expect.h"
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
    };
    struct Listener {
        int number = 0;
        std::weak_ptr<const Key> key;  // that must live
        unsigned victim = 0;
    };
    using Listeners = std::vector<Listener>;
    /** A listener that ran, and the library's dump as it saw it. */
    struct Call {
        int number = 0;
        std::vector<std::string> dump;
    };
    /** A token to release: nobody holds the key any more. */
    using Release = std::optional<std::uint64_t>;

    explicit KeyRing(unsigned slots) : keys(slots) {}

    /** Null when the slot is empty. */
    const std::shared_ptr<const Key>& at(unsigned slot) const { return keys.at(slot); }

    void hold(unsigned slot, const Key& key) { keys.at(slot) = std::make_shared<Key>(key); }
    /** Into the first empty slot, if there is one. */
    void hold(const Key& key) {
        const auto free = std::find(keys.begin(), keys.end(), nullptr);
        if (free != keys.end()) {
            *free = std::make_shared<Key>(key);
        }
    }
    /** Someone holds the slot's key for a while, whatever listeners drop meanwhile. */
    void use(unsigned slot) { inUse = keys.at(slot); }
    Release endUse() { return drop(inUse); }
    Release drop(unsigned slot) { return drop(keys.at(slot)); }

    /** The listeners that ran, in order; they are to be predicted. */
    void witness(const std::vector<Call>& ran) { calls.assign(ran.begin(), ran.end()); }
    /** Predicts that these run, in order, but for those whose key is gone by then, and what they
     * see. */
    void run(const Listeners& listeners, const std::vector<std::string>& dump) {
        for (const Listener& listener : listeners) {
            if (listener.key.expired()) {
                continue;
            }
            const auto name = "listener " + std::to_string(listener.number);
            if (calls.empty() || calls.front().number != listener.number) {
                throw Mismatch(name + " should have run");
            }
            expectEqual("cache as " + name + " saw it", dump, calls.front().dump);
            calls.pop_front();
            if (const auto token = drop(listener.victim)) {
                deferred.push_back(*token);
            }
        }
    }
    /** Fails when more ran than was predicted. */
    void finish() const {
        if (!calls.empty()) {
            throw Mismatch("listener " + std::to_string(calls.front().number) +
                           " should not have run");
        }
    }

    /** What listeners' dropped keys release, in order. */
    std::deque<std::uint64_t> deferred;

  private:
    static Release drop(std::shared_ptr<const Key>& holder) {
        const auto key = std::exchange(holder, nullptr);
        return key.use_count() == 1 ? Release(key->token) : std::nullopt;
    }

    std::vector<std::shared_ptr<const Key>> keys;
    std::shared_ptr<const Key> inUse;
    std::deque<Call> calls;
};

}  // namespace coherence
