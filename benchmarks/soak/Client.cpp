// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Client.h"

#include <algorithm>

namespace {

using vela::TechType;

constexpr std::size_t kKeysHeld = 6;

thread_local unsigned listening = 0;

/** Runs `action` as a listener. */
template <typename Action>
void asListener(Tally& tally, Action action) {
    ++tally.expirations;
    ++listening;
    action();
    --listening;
}

TechType otherThan(TechType type) {
    return type == TechType::TECH_3GPP ? TechType::TECH_3GPP2 : TechType::TECH_3GPP;
}

/** Whether a profile of that technology may look so: only 3GPP knows who made a profile, and
 * everyone here writes a name. */
bool mayBe(TechType type, const vela::ProfileParams& params) {
    const bool isNamed = params.getApnName().starts_with("client") ||
                         params.getApnName() == "foreign" || params.getApnName() == "checkup";
    const bool is3gpp = vela::FilterProfileParams(params).hasFilterByIsVelaProfile();
    return isNamed && is3gpp == (type == TechType::TECH_3GPP);
}

}  // namespace

Client::Client(const Surroundings& surroundings, std::uint64_t number, std::uint64_t seed)
    : surroundings(surroundings),
      library(surroundings.library),
      tally(surroundings.tally),
      name("client" + std::to_string(number)),
      random(seed) {
    own.setApnName(name);
}

bool Client::isListening() {
    return listening != 0;
}

void Client::run(std::uint64_t requests) {
    for (std::uint64_t i = 0; i < requests; ++i) {
        call(choose());
        while (keys.size() > kKeysHeld) {
            dropOne();
        }
    }
    while (!keys.empty()) {
        dropOne();
    }
    surroundings.shared.replace(nullptr);
}

/** Most often a key of its own, sometimes the one that another thread uses, too. */
Key Client::choose() {
    if (random.chance(0.1)) {
        return surroundings.shared.get();
    }
    return keys.empty() ? nullptr : keys[random.below(keys.size())];
}

void Client::call(const Key& key) {
    switch (random.below(key ? 10 : 2)) {
        case 0:
            return add();
        case 1:
            return findOwn();
        case 2:
            return findSame(key);
        case 3:
            return get(key);
        case 4:
            return modify(key);
        case 5:
            return match(key);
        case 6:
            return remove(key);
        case 7:
            return listen(key);
        case 8:
            return share(key);
        default:
            return dropOne();
    }
}

template <typename Request>
auto Client::ask(Request request) {
    surroundings.outsiders.reach(++tally.asked);
    surroundings.watchdog.progress();
    return request();
}

vela::AddProfileParams Client::someProfile() {
    vela::AddProfileParams params(random.chance(0.1), static_cast<TechType>(random.below(2)),
                                  false);
    params.setApnName(name);
    params.setHomeIPType(static_cast<vela::IPType>(random.below(4)));
    return params;
}

void Client::add() {
    const auto params = someProfile();
    ++tally.addsAsked;
    if (auto key = ask([&] { return library.addProfile(params); })) {
        ++tally.added;
        tally.require(key->getTechType() == params.getTechType());
        keys.push_back(std::move(key));
    }
}

void Client::findOwn() {
    auto wanted = own;
    wanted.setFilterByTechType(static_cast<TechType>(random.below(2)));
    for (auto& key : ask([&] { return library.filter(wanted); })) {
        tally.require(key && key->getTechType() == wanted.getFilterByTechType());
        keys.push_back(std::move(key));
    }
    std::erase(keys, nullptr);
}

void Client::findSame(const Key& key) {
    vela::FilterProfileParams wanted;
    wanted.setFilterByTechType(key->getTechType());
    wanted.setFilterByProfileId(key->getProfileId());
    for (const auto& found : ask([&] { return library.filter(wanted); })) {
        tally.require(found && found->getTechType() == key->getTechType() &&
                      found->getProfileId() == key->getProfileId());
    }
}

void Client::get(const Key& key) {
    const auto params = ask([&] { return library.getProfile(key); });
    tally.require(!params || mayBe(key->getTechType(), *params));
}

void Client::modify(const Key& key) {
    const vela::ModifyProfileParams params(someProfile());
    if (!ask([&] { return library.modifyProfile(params, key); })) {
        requireGone(key);
    }
}

void Client::match(const Key& key) {
    const bool isPossible = random.chance(0.5);
    vela::FilterProfileParams wanted;
    const auto type = key->getTechType();
    wanted.setFilterByTechType(isPossible ? type : otherThan(type));
    const bool isMatch = ask([&] { return library.match(wanted, key); });
    tally.require(isPossible || !isMatch);
}

void Client::remove(const Key& key) {
    if (ask([&] { return library.deleteProfile(key); })) {
        requireGone(key);
    }
}

/** A key that names nothing never names anything again. */
void Client::requireGone(const Key& key) {
    tally.require(!ask([&] { return library.getProfile(key); }).has_value());
}

void Client::listen(const Key& key) {
    auto& counts = tally;
    switch (random.below(4)) {
        case 0: {
            const auto other = std::make_shared<Key>(choose());
            return ask([&] {
                key->registerExpirationListener(
                    [&counts, other] { asListener(counts, [&] { other->reset(); }); });
            });
        }
        case 1:
            return ask([&] {
                key->registerExpirationListener([&counts, &asked = library] {
                    asListener(counts, [&] {
                        counts.require(asked.filter(vela::FilterProfileParams()).empty());
                    });
                });
            });
        default:
            return ask(
                [&] { key->registerExpirationListener([&counts] { asListener(counts, [] {}); }); });
    }
}

void Client::share(const Key& key) {
    ask([&] { surroundings.shared.replace(key); });
}

void Client::dropOne() {
    if (!keys.empty()) {
        std::swap(keys[random.below(keys.size())], keys.back());
        ask([&] { keys.pop_back(); });
    }
}
