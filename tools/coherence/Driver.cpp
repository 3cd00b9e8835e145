// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Driver.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace coherence {

namespace {

using velasim::JournalKind;
using velasim::Technology;

constexpr unsigned kCapacity = 6;
constexpr std::pair<int, ProfileId> kProvisioned[] = {{0, {Technology::ThreeGpp, 1}},
                                                      {0, {Technology::ThreeGpp2, 1}},
                                                      {1, {Technology::ThreeGpp, 1}},
                                                      {1, {Technology::ThreeGpp2, 1}},
                                                      {1, {Technology::ThreeGpp2, 2}}};
const std::vector<std::uint8_t> kSaysNothing{0x7F, 0, 0};

velasim::SimulatorOptions optionsFor(std::uint64_t seed) {
    velasim::SimulatorOptions options;
    options.instances = Model::kInstances;
    options.capacity = kCapacity;
    options.delivery = velasim::DeliveryMode::Stepped;
    options.seed = seed;
    return options;
}

std::uint64_t tokenOf(const vela::IProfileKey& key) {
    const auto line = key.dump();
    return std::stoull(line.substr(line.rfind('=') + 1));
}

/** A key of no profile, by which something is done while the library's worker is at work: that asks
 * each key that it is given for its dump. */
class ActingKey : public vela::IProfileKey {
  public:
    explicit ActingKey(std::function<void()> act) : act(std::move(act)) {}

    int getProfileId() const override { return 0; }
    vela::TechType getTechType() const override { return vela::TechType::TECH_3GPP; }
    void registerExpirationListener(std::function<void()> /*callback*/) override {}
    std::string dump() const override {
        if (act && std::this_thread::get_id() != owner) {
            std::exchange(act, nullptr)();
        }
        return "acting key";
    }

  private:
    const std::thread::id owner = std::this_thread::get_id();
    mutable std::function<void()> act;  // while the owner waits for the worker
};

}  // namespace

Driver::Driver(std::uint64_t seed, Outcome& outcome)
    : outcome(outcome),
      simulator(optionsFor(seed)),
      model(kCapacity),
      home(static_cast<int>(seed % Model::kInstances)) {}

void Driver::run(const std::vector<Operation>& operations) {
    try {
        start();
        for (; outcome.step < operations.size(); ++outcome.step) {
            operations[outcome.step].perform(*this);
            check();
        }
        heal();
    } catch (const Mismatch& mismatch) {
        outcome.fail(mismatch.what());
    }
}

/** Some provisioned profiles, and a first key that tells where tokens start. */
void Driver::start() {
    // Other profiles on each instance, so that the one cannot be taken for the other.
    for (const auto& [where, id] : kProvisioned) {
        simulator.storeProfile(where, id.technology, {}, id.index);
        model.provision(where, id, {});
    }
    init(home);
    deliverAll();
    add(0, {true, vela::TechType::TECH_3GPP, false});
    if (!keys[0]) {
        throw Mismatch("the first profile could not be added");
    }
    const auto token = tokenOf(*keys[0]);
    remove(0);
    model.startTokensAt(token + 1);
    deliverAll();
    check();
}

// ---- A client

void Driver::add(unsigned slot, const vela::AddProfileParams& params) {
    drop(slot);
    Key added;
    act(
        [&] {
            added = manager.addProfile(params);
            return added != nullptr;
        },
        [&] { return model.add(slot, params); });
    keys[slot] = std::move(added);
}

/** Holds the key meanwhile, so that it is not left to chance who drops it last when a listener
 * drops it, too. */
template <typename Real, typename Predicted>
void Driver::useKey(unsigned slot, Real real, Predicted predicted) {
    auto key = keys[slot];
    model.use(slot);
    act([&] { return real(key); }, predicted);
    act([&] { key.reset(); }, [&] { model.endUse(); });
}

void Driver::modify(unsigned slot, const vela::ModifyProfileParams& params) {
    useKey(
        slot, [&](const Key& key) { return manager.modifyProfile(params, key); },
        [&] { return model.modify(slot, params); });
}

void Driver::remove(unsigned slot) {
    useKey(
        slot, [&](const Key& key) { return manager.deleteProfile(key); },
        [&] { return model.remove(slot); });
}

void Driver::match(unsigned slot, const vela::FilterProfileParams& params) {
    useKey(
        slot, [&](const Key& key) { return manager.match(params, key); },
        [&] { return model.match(slot, params); });
}

void Driver::filter(const vela::FilterProfileParams& params) {
    std::map<std::uint64_t, Key> found;
    act(
        [&] {
            std::vector<std::uint64_t> tokens;
            for (auto& key : manager.filter(params)) {
                tokens.push_back(tokenOf(*key));
                found.emplace(tokens.back(), std::move(key));
            }
            std::sort(tokens.begin(), tokens.end());
            return tokens;
        },
        [&] { return model.filter(params); });
    for (auto& [token, key] : found) {
        const auto free = std::find(keys.begin(), keys.end(), nullptr);
        if (free != keys.end()) {
            *free = std::move(key);
        } else {
            act([&key = key] { key.reset(); }, [this, token = token] { model.release(token); });
        }
    }
}

void Driver::listen(unsigned slot, unsigned victim) {
    const int number = ++nextListener;
    const auto listener = [this, number, victim] {
        calls.push_back({number, withoutLog(manager.dump())});
        if (manager.getProfile(keys[victim])) {
            calls.push_back({-number, {}});  // nothing may be answered here
        }
        const auto dropped = std::move(keys[victim]);
    };
    if (keys[slot]) {
        act([&] { keys[slot]->registerExpirationListener(listener); },
            [&] { model.listen(slot, number, victim); });
    }
}

void Driver::drop(unsigned slot) {
    act([&] { const auto dropped = std::move(keys[slot]); }, [&] { model.drop(slot); });
}

void Driver::startRefresh() {
    act([&] { manager.refresh(vela::PDCRefreshStatus::RefreshStarted); },
        [&] { model.startRefresh(); });
}

void Driver::endRefresh() {
    act([&] { manager.refresh(vela::PDCRefreshStatus::RefreshCompleted); },
        [&] { model.endRefresh(); });
}

void Driver::init(int instance) {
    home = instance;
    act([&] { manager.init(home, false); }, [&] { model.init(home); });
}

// ---- The modem

void Driver::deliver() {
    onSimulator([](auto& modem) { modem.deliverNext(); });
    checkCache();
}

void Driver::deliverAll() {
    while (simulator.pendingDeliveries() != 0) {
        deliver();
    }
}

void Driver::deliverAtOnce() {
    bool hasVisited = false;
    onSimulator([&](auto& modem) {
        manager.getProfile(std::make_shared<ActingKey>([&] {
            modem.deliverAll();
            hasVisited = true;
        }));
    });
    if (!hasVisited) {
        throw Mismatch("the worker did not look at a key");
    }
    checkCache();
}

// ---- The end

/** The next outage heals all but a connection that nobody waits for any more. */
void Driver::reconnect() {
    if (!model.isSubscribed()) {
        onBoth<&velasim::Simulator::serviceDown, &Model::serviceDown>();
        deliverAll();
        onBoth<&velasim::Simulator::serviceUp, &Model::serviceUp>();
        deliverAll();
    }
    if (model.isCutOff()) {
        init(home);
        deliverAll();
    }
    if (!model.isSubscribed() || simulator.subscribedClients(home) != 1) {
        throw Mismatch("an outage did not heal the connection");
    }
}

/** Without faults, a reload makes the cache the modem's table, whatever happened before. */
void Driver::heal() {
    clearFaults();
    onBoth<&velasim::Simulator::serviceUp, &Model::serviceUp>();
    onBoth<&velasim::Simulator::releaseDelayed, &Model::releaseDelayed>();
    deliverAll();
    reconnect();
    check();
    while (!model.hasHandledAll()) {  // each that cannot be decoded keeps those behind it waiting
        onSimulator([](auto& modem) { modem.injectIndication(kSaysNothing); });
        deliverAll();
        check();
    }
    endRefresh();
    check();
    Figures healed{};
    model.compareWithModem(healed);
    if (healed.excused != 0) {
        throw Mismatch("a reload did not heal everything");
    }
    for (unsigned slot = 0; slot < Model::kSlots; ++slot) {
        drop(slot);
    }
    check();
}

// ---- Comparing

/** Tells the model what happened until the library has come to rest. */
void Driver::witness() {
    manager.settle();
    const auto entries = simulator.journal().snapshot();
    outcome.faults += static_cast<std::uint64_t>(
        std::count_if(entries.begin(), entries.end(),
                      [](const auto& entry) { return entry.kind == JournalKind::FaultInjected; }));
    simulator.journal().clear();
    model.witness(entries, std::exchange(calls, {}));
}

void Driver::check() {
    checkCache();
    checkKeys();
    for (int instance = 0; instance < Model::kInstances; ++instance) {
        checkTable(instance);
    }
    if (simulator.pendingDeliveries() == 0) {
        model.settle();
        model.compareWithModem(outcome.figures);
    }
}

void Driver::checkCache() {
    expectEqual("cache", model.dump(), withoutLog(manager.dump()));
}

void Driver::checkKeys() {
    for (unsigned slot = 0; slot < Model::kSlots; ++slot) {
        const auto name = "key" + std::to_string(slot);
        expectEqual("life of " + name, text(model.isLive(slot)), text(keys[slot] != nullptr));
        if (keys[slot]) {
            expectEqual(name, text(model.get(slot)), text(manager.getProfile(keys[slot])));
        }
    }
}

void Driver::checkTable(int instance) {
    auto promised = model.table(instance);
    for (const auto technology : {Technology::ThreeGpp, Technology::ThreeGpp2}) {
        for (const auto& [index, settings] : simulator.profiles(instance, technology)) {
            const ProfileId id{technology, index};
            const auto found = promised.find(id);
            if (found == promised.end() ||
                !velasim::sameSettings(found->second, settings, technology)) {
                throw Mismatch("the modem should not have " + id.text() + " " +
                               velasim::describe(settings, technology));
            }
            promised.erase(found);
        }
    }
    if (!promised.empty()) {
        throw Mismatch("the modem should have " + promised.begin()->first.text());
    }
}

}  // namespace coherence
