// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Driver.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Expect.h"
#include "Model.h"
#include "Visitor.h"
#include "modem/Rest.h"
#include "vela/Manager.h"
#include "velasim/Simulator.h"

namespace coherence {

namespace {

using Kind = Operation::Kind;
using velasim::JournalKind;
using velasim::Technology;

constexpr unsigned kCapacity = 6;
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

constexpr auto kNothing = [] {};

class Driver {
  public:
    Driver(std::uint64_t seed, Outcome& outcome)
        : outcome(outcome),
          simulator(optionsFor(seed)),
          home(static_cast<int>(seed % Model::kInstances)) {}

    void run(const std::vector<Operation>& operations) {
        try {
            start();
            for (; outcome.step < operations.size(); ++outcome.step) {
                perform(operations[outcome.step]);
                check();
            }
            heal();
        } catch (const Mismatch& mismatch) {
            outcome.fail(mismatch.what());
        }
    }

  private:
    using Key = std::shared_ptr<vela::IProfileKey>;

    void perform(Operation::Kind kind) { perform({kind, 0, 0, 0, {}}); }

    /** Some provisioned profiles, and a first key that tells where tokens start. */
    void start() {
        provision(0, {Technology::ThreeGpp, Technology::ThreeGpp2});
        provision(1, {Technology::ThreeGpp, Technology::ThreeGpp2, Technology::ThreeGpp2});
        init(home);
        deliverAll();
        perform({Kind::Add, 0, 0, 1, {}});
        if (!keys[0]) {
            throw Mismatch("the first profile could not be added");
        }
        const auto token = tokenOf(*keys[0]);
        perform(Kind::Delete);
        model.startTokensAt(token + 1);
        perform(Kind::DeliverAll);
        check();
    }

    /** Other profiles on each instance, so that the one cannot be taken for the other. */
    void provision(int instance, const std::vector<Technology>& technologies) {
        for (const auto technology : technologies) {
            const auto index = simulator.storeProfile(instance, technology, {});
            model.provision(instance, {technology, index.value_or(0)}, {});
        }
    }

    void perform(const Operation& operation) {
        const auto slot = operation.slot;
        switch (operation.kind) {
            case Kind::Add:
                return add(slot, operation.addParams());
            case Kind::Filter:
                return fill(operation.filter());
            case Kind::Listen:
                return listen(slot, operation.other);
            case Kind::RefreshStart:
                return act([&] { manager.refresh(vela::PDCRefreshStatus::RefreshStarted); },
                           [&] { model.refresh(true); });
            case Kind::RefreshEnd:
                return act([&] { manager.refresh(vela::PDCRefreshStatus::RefreshCompleted); },
                           [&] { model.refresh(false); });
            case Kind::Init:
                return init(operation.instance());
            case Kind::Drop:
                return drop(slot);
            case Kind::Modify:
            case Kind::Delete:
            case Kind::Match:
                return performOnKey(operation);
            default:
                return performForModem(operation);
        }
    }

    void init(int instance) {
        home = instance;
        act([&] { manager.init(home, false); }, [&] { model.init(home); });
    }

    /** Holds the key meanwhile, so that it is not left to chance who drops it last when a listener
     * drops it, too. */
    void performOnKey(const Operation& operation) {
        const auto slot = operation.slot;
        auto key = keys[slot];
        model.use(slot);
        if (operation.kind == Kind::Modify) {
            const vela::ModifyProfileParams params(operation.params());
            act([&] { return manager.modifyProfile(params, key); },
                [&] { return model.modify(slot, params); });
        } else if (operation.kind == Kind::Delete) {
            act([&] { return manager.deleteProfile(key); }, [&] { return model.remove(slot); });
        } else {
            act([&] { return manager.match(operation.filter(), key); },
                [&] { return model.match(slot, operation.filter()); });
        }
        act([&] { key.reset(); }, [&] { model.endUse(); });
    }

    void add(unsigned slot, const vela::AddProfileParams& params) {
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

    /** Someone else's change, on this instance of the modem or on another. */
    void changeAsAnother(const Operation& operation) {
        const auto id = operation.id();
        const auto settings = operation.settings();
        const auto where = operation.isElsewhere() ? (home + 1) % Model::kInstances : home;
        if (operation.kind == Kind::ForeignCreate) {
            act([&] { return simulator.foreignCreate(where, id.technology, settings).value_or(0); },
                [&] { return model.foreignCreate(where, id.technology, settings); });
        } else if (operation.kind == Kind::ForeignModify) {
            act([&] { return simulator.foreignModify(where, id.technology, id.index, settings); },
                [&] { return model.foreignModify(where, id, settings); });
        } else {
            act([&] { return simulator.foreignDelete(where, id.technology, id.index); },
                [&] { return model.foreignDelete(where, id); });
        }
    }

    void performForModem(const Operation& operation) {
        const auto instance = operation.isElsewhere() ? (home + 1) % Model::kInstances : home;
        switch (operation.kind) {
            case Kind::SubscriptionChange:
                return act([&] { simulator.subscriptionChange(instance); }, kNothing);
            case Kind::ProfileReady:
                return act([&] { simulator.profileReady(instance); }, kNothing);
            case Kind::ServiceDown:
                return act([&] { simulator.serviceDown(); }, [&] { model.serviceDown(); });
            case Kind::ServiceUp:
                return act([&] { simulator.serviceUp(); }, [&] { model.serviceUp(); });
            case Kind::Restart:
                return act([&] { simulator.restart(); }, [&] { model.restart(); });
            case Kind::ReleaseDelayed:
                return act([&] { simulator.releaseDelayed(); }, [&] { model.delayedReleased(); });
            case Kind::Inject: {
                const auto bytes = operation.bytes();
                return act([&] { simulator.injectIndication(bytes, operation.messageId()); },
                           kNothing);
            }
            case Kind::SetFault:
                simulator.faults().add(operation.rule());
                return;
            case Kind::ClearFaults:
                return simulator.faults().clear();
            case Kind::DeliverOne:
                return deliver();
            case Kind::DeliverAtOnce:
                return deliverAtOnce();
            case Kind::DeliverAll:
                return deliverAll();
            default:
                return changeAsAnother(operation);
        }
    }

    void fill(const vela::FilterProfileParams& params) {
        std::vector<std::pair<std::uint64_t, Key>> found;
        act(
            [&] {
                for (auto& key : manager.filter(params)) {
                    found.emplace_back(tokenOf(*key), std::move(key));
                }
                std::sort(found.begin(), found.end());
                std::vector<std::uint64_t> tokens;
                std::transform(found.begin(), found.end(), std::back_inserter(tokens),
                               [](const auto& item) { return item.first; });
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

    void listen(unsigned slot, unsigned victim) {
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

    void drop(unsigned slot) {
        act([&] { const auto dropped = std::move(keys[slot]); }, [&] { model.drop(slot); });
    }

    void deliver() {
        act([&] { simulator.deliverNext(); }, kNothing);
        checkCache();
    }

    void deliverAll() {
        while (simulator.pendingDeliveries() != 0) {
            deliver();
        }
    }

    /** All callbacks while the worker is busy: it finds them together. */
    void deliverAtOnce() {
        const auto visitor = std::make_shared<Visitor>([this] { simulator.deliverAll(); });
        act([&] { manager.getProfile(visitor); }, kNothing);
        if (!visitor->hasVisited()) {
            throw Mismatch("the worker did not look at a key");
        }
        checkCache();
    }

    /** The next outage heals all but a connection that nobody waits for any more. */
    void reconnect() {
        if (!model.isSubscribed()) {
            perform(Kind::ServiceDown);
            deliverAll();
            perform(Kind::ServiceUp);
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
    void heal() {
        simulator.faults().clear();
        perform(Kind::ServiceUp);
        perform(Kind::ReleaseDelayed);
        deliverAll();
        reconnect();
        check();
        while (
            !model.hasHandledAll()) {  // each that cannot be decoded keeps those behind it waiting
            act([&] { simulator.injectIndication(kSaysNothing); }, kNothing);
            deliverAll();
            check();
        }
        perform(Kind::RefreshEnd);
        check();
        if (!model.isHealed()) {
            throw Mismatch("a reload did not heal everything");
        }
        for (unsigned slot = 0; slot < Model::kSlots; ++slot) {
            drop(slot);
        }
        check();
    }

    // ---- Comparing

    /** Does something, lets the worker come to rest, and compares with what the model says of it.
     */
    template <typename Real, typename Predicted>
    void act(Real real, Predicted predicted) {
        const std::string found = resultOf(real);
        velactl::awaitRest(manager, simulator, kNothing);
        const auto entries = simulator.journal().snapshot();
        for (const auto& entry : entries) {
            outcome.faults += entry.kind == JournalKind::FaultInjected ? 1 : 0;
        }
        simulator.journal().clear();
        model.witness(entries, std::exchange(calls, {}));
        expectEqual("result", resultOf(predicted), found);
        model.finish();
    }

    void check() {
        checkCache();
        checkKeys();
        for (int instance = 0; instance < Model::kInstances; ++instance) {
            checkTable(instance);
        }
        if (simulator.pendingDeliveries() == 0) {
            model.settle();
            const auto comparison = model.compareWithModem();
            outcome.compared += comparison.compared;
            outcome.excused += comparison.excused;
        }
    }

    void checkCache() { expectEqual("cache", model.dump(), withoutLog(manager.dump())); }

    void checkKeys() {
        for (unsigned slot = 0; slot < Model::kSlots; ++slot) {
            expectEqual("life of key" + std::to_string(slot), text(model.isLive(slot)),
                        text(keys[slot] != nullptr));
            if (keys[slot]) {
                expectEqual("key" + std::to_string(slot), text(model.get(slot)),
                            text(manager.getProfile(keys[slot])));
            }
        }
    }

    void checkTable(int instance) {
        auto promised = model.table(instance);
        for (const auto technology : {Technology::ThreeGpp, Technology::ThreeGpp2}) {
            for (const auto& [index, settings] : simulator.profiles(instance, technology)) {
                const auto found = promised.find({technology, index});
                if (found == promised.end() ||
                    !velasim::sameSettings(found->second, settings, technology)) {
                    throw Mismatch("the modem should not have " + toString(technology) + ":" +
                                   std::to_string(index) + " " +
                                   velasim::describe(settings, technology));
                }
                promised.erase(found);
            }
        }
        if (!promised.empty()) {
            throw Mismatch("the modem should have " + promised.begin()->first.text());
        }
    }

    Outcome& outcome;
    velasim::Simulator simulator;
    vela::Manager manager;
    Model model{kCapacity};
    int home;  // the instance that the library was started on
    std::vector<Key> keys = std::vector<Key>(Model::kSlots);

    std::vector<KeyRing::Call> calls;  // of listeners, on the worker while this thread waits for it
    int nextListener = 0;
};

}  // namespace

void run(std::uint64_t seed, const std::vector<Operation>& operations, Outcome& outcome) {
    Driver(seed, outcome).run(operations);
}

}  // namespace coherence
