// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Outsiders.h"
#include "ProgressWatchdog.h"
#include "Tally.h"
#include "vela/Manager.h"
#include "velasim/Random.h"

using Key = std::shared_ptr<vela::IProfileKey>;

/** A key that two threads use, and whoever comes last drops. */
class SharedKey {
  public:
    Key get() {
        const std::lock_guard lock(mutex);
        return key;
    }
    /** Returns the one before, so that it is dropped without the lock. */
    Key replace(Key next) {
        const std::lock_guard lock(mutex);
        return std::exchange(key, std::move(next));
    }

  private:
    std::mutex mutex;
    Key key;
};

/** One thread of radio software, which calls by chance, holds some keys and doubts each answer. */
class Client {
  public:
    struct Surroundings {
        vela::Manager& library;
        Tally& tally;
        Outsiders& outsiders;
        ProgressWatchdog& watchdog;
        SharedKey& shared;
    };

    /** `number` becomes part of its profiles' name. */
    Client(const Surroundings& surroundings, std::uint64_t number, std::uint64_t seed);

    void run(std::uint64_t requests);

    /** Whether this thread is inside a listener, where the library refuses requests. */
    static bool isListening();

  private:
    void call(const Key& key);
    Key choose();

    void add();
    void findOwn();
    void findSame(const Key& key);
    void get(const Key& key);
    void modify(const Key& key);
    void match(const Key& key);
    void remove(const Key& key);
    void listen(const Key& key);
    void share(const Key& key);
    void dropOne();

    void requireGone(const Key& key);
    vela::AddProfileParams someProfile();

    template <typename Request>
    auto ask(Request request);

    Surroundings surroundings;
    vela::Manager& library;
    Tally& tally;
    const std::string name;
    velasim::Random random;
    vela::FilterProfileParams own;
    std::vector<Key> keys;
};
