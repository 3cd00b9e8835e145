// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "Load.h"
#include "velasim/Random.h"

namespace {

using vela::TechType;
using velasim::Technology;
using Key = std::shared_ptr<vela::IProfileKey>;

constexpr std::size_t kKeysHeld = 6;

// So many requests between two.
constexpr double kRequestsPerChange = 40;
constexpr double kRequestsPerRestart = 2000;
constexpr double kRequestsPerOutage = 30;

thread_local bool isListening = false;

void change(velasim::Simulator& simulator, velasim::Random& random) {
    const auto technology = static_cast<Technology>(random.below(2));
    const auto index = static_cast<int>(1 + random.below(100));
    velasim::Settings settings{};
    velasim::setText(settings, technology == Technology::ThreeGpp ? "apn_name" : "apn_string_3gpp2",
                     "foreign");
    const auto kind = random.below(16);
    if (kind == 0) {
        simulator.profileReady(0);
    } else if (kind < 4) {
        simulator.foreignCreate(0, technology, settings);
    } else if (kind < 8) {
        simulator.foreignModify(0, technology, index, settings);
    } else {
        simulator.foreignDelete(0, technology, index);
    }
}

/** What others do to the modem between two requests. */
void disturb(Scene& scene, velasim::Random& random) {
    if (random.chance(1 / kRequestsPerChange)) {
        change(scene.simulator, random);
        ++scene.changes;
    }
    if (!scene.simulator.isServiceUp()) {
        if (random.chance(1 / kRequestsPerOutage)) {
            scene.simulator.serviceUp();
        }
    } else if (random.chance(1 / kRequestsPerRestart)) {
        random.chance(0.5) ? scene.simulator.restart() : scene.simulator.serviceDown();
        ++scene.outages;
    }
}

class Client {
  public:
    Client(Scene& scene, std::uint64_t number, std::uint64_t seed)
        : scene(scene), name("client" + std::to_string(number)), random(seed) {}

    void run(std::uint64_t requests) {
        constexpr void (Client::*kCalls[])(const Key& key) = {
            &Client::add,    &Client::find,   &Client::get, &Client::modify,
            &Client::remove, &Client::listen, &Client::drop};
        constexpr std::size_t kWithoutKey = 2;
        for (std::uint64_t i = 0; i < requests || !keys.empty(); ++i) {
            const auto key = keys.empty() ? nullptr : keys[random.below(keys.size())];
            const auto call = random.below(key ? std::size(kCalls) : kWithoutKey);
            const bool isTooMuch = i >= requests || keys.size() > kKeysHeld;
            (this->*(isTooMuch ? &Client::drop : kCalls[call]))(key);
        }
    }

  private:
    /** Has it done as one request. */
    template <typename Request>
    auto ask(Request request) {
        ++scene.asked;
        progress();
        disturb(scene, random);
        return request(scene.library);
    }

    void require(bool isPossible) { scene.wrongAnswers += isPossible ? 0 : 1; }

    /** A key that names nothing never names anything again. */
    void requireGone(const Key& key) {
        require(!ask([&](auto& library) { return library.getProfile(key); }).has_value());
    }

    void add(const Key& /*key*/) {
        vela::AddProfileParams params(random.chance(0.1), static_cast<TechType>(random.below(2)),
                                      false);
        params.setApnName(name);
        ++scene.addsAsked;
        if (auto key = ask([&](auto& library) { return library.addProfile(params); })) {
            ++scene.added;
            require(key->getTechType() == params.getTechType());
            keys.push_back(std::move(key));
        }
    }

    void find(const Key& /*key*/) {
        vela::FilterProfileParams wanted;
        wanted.setApnName(name);
        wanted.setFilterByTechType(static_cast<TechType>(random.below(2)));
        for (auto& key : ask([&](auto& library) { return library.filter(wanted); })) {
            require(key && key->getTechType() == wanted.getFilterByTechType());
            keys.push_back(std::move(key));
        }
    }

    /** Everyone here writes a name, and only 3GPP knows who made a profile. */
    void get(const Key& key) {
        const auto params = ask([&](auto& library) { return library.getProfile(key); });
        const bool is3gpp = key->getTechType() == TechType::TECH_3GPP;
        require(
            !params ||
            ((params->getApnName().starts_with("client") || params->getApnName() == "foreign") &&
             vela::FilterProfileParams(*params).hasFilterByIsVelaProfile() == is3gpp));
    }

    void modify(const Key& key) {
        vela::ModifyProfileParams params;
        params.setApnName(name);
        params.setHomeIPType(static_cast<vela::IPType>(random.below(4)));
        if (!ask([&](auto& library) { return library.modifyProfile(params, key); })) {
            requireGone(key);
        }
    }

    void remove(const Key& key) {
        if (ask([&](auto& library) { return library.deleteProfile(key); })) {
            requireGone(key);
        }
    }

    /** The listener drops another key, and asks, which is refused there. */
    void listen(const Key& key) {
        const auto other = std::make_shared<Key>(keys[random.below(keys.size())]);
        const auto listener = [&scene = scene, other] {
            isListening = true;
            ++scene.expirations;
            other->reset();
            scene.wrongAnswers += scene.library.filter({}).empty() ? 0 : 1;
            isListening = false;
        };
        ask([&](auto& /*library*/) { key->registerExpirationListener(listener); });
    }

    void drop(const Key& /*key*/) {
        std::swap(keys[random.below(keys.size())], keys.back());
        ask([&](auto& /*library*/) { keys.pop_back(); });
    }

    Scene& scene;
    const std::string name;
    velasim::Random random;
    std::vector<Key> keys;
};

}  // namespace

void runClient(Scene& scene, std::uint64_t number, std::uint64_t seed, std::uint64_t requests) {
    Client(scene, number, seed).run(requests);
}

bool isInListener() {
    return isListening;
}
