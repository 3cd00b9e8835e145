// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "KeyRing.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "Expect.h"

namespace coherence {

void KeyRing::hold(unsigned slot, std::uint64_t token, ProfileId id) {
    keys.at(slot) = Key{token, id, ++nextSerial, pipeline};
}

void KeyRing::hold(std::uint64_t token, ProfileId id) {
    const auto free = std::find(keys.begin(), keys.end(), std::nullopt);
    if (free != keys.end()) {
        *free = Key{token, id, ++nextSerial, pipeline};
    }
}

void KeyRing::use(unsigned slot) {
    inUse = keys.at(slot);
}

std::optional<std::uint64_t> KeyRing::endUse() {
    const auto key = std::exchange(inUse, std::nullopt);
    const auto isSame = [&](const auto& other) { return other && other->serial == key->serial; };
    if (key && key->pipeline == pipeline && std::none_of(keys.begin(), keys.end(), isSame)) {
        return key->token;
    }
    return std::nullopt;
}

std::optional<std::uint64_t> KeyRing::drop(unsigned slot) {
    use(slot);
    keys.at(slot).reset();
    return endUse();
}

std::optional<KeyRing::Listener> KeyRing::listener(unsigned slot, int number,
                                                   unsigned victim) const {
    const auto& key = keys.at(slot);
    return key && key->pipeline == pipeline
               ? std::optional(Listener{number, slot, key->serial, victim})
               : std::nullopt;
}

bool KeyRing::isAlive(const Listener& listener) const {
    const auto& key = keys.at(listener.slot);
    return (inUse && inUse->serial == listener.serial) || (key && key->serial == listener.serial);
}

void KeyRing::witness(std::vector<Call> ran) {
    calls.assign(std::make_move_iterator(ran.begin()), std::make_move_iterator(ran.end()));
}

bool KeyRing::isNext(const Listeners& listeners) const {
    return !calls.empty() &&
           std::any_of(listeners.begin(), listeners.end(),
                       [&](const Listener& one) { return one.number == calls.front().number; });
}

void KeyRing::run(const Listeners& listeners, const std::vector<std::string>& dump) {
    for (const Listener& listener : listeners) {
        if (!isAlive(listener)) {
            continue;
        }
        const auto name = "listener " + std::to_string(listener.number);
        if (calls.empty() || calls.front().number != listener.number) {
            throw Mismatch(name + " should have run");
        }
        expectEqual("cache as " + name + " saw it", dump, calls.front().dump);
        calls.pop_front();
        const auto key = std::exchange(keys.at(listener.victim), std::nullopt);
        if (key && key->pipeline == pipeline && !(inUse && inUse->serial == key->serial)) {
            deferred.push_back(key->token);
        }
    }
}

void KeyRing::finish() const {
    if (!calls.empty()) {
        throw Mismatch("listener " + std::to_string(calls.front().number) + " should not have run");
    }
}

std::optional<std::uint64_t> KeyRing::takeDeferred() {
    if (deferred.empty()) {
        return std::nullopt;
    }
    const auto token = deferred.front();
    deferred.pop_front();
    return token;
}

}  // namespace coherence
