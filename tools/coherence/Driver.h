// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Expect.h"
#include "Model.h"
#include "Runs.h"
#include "vela/Manager.h"
#include "velasim/Simulator.h"

namespace coherence {

class Driver;

/** One step of a run: a run is a list of these, and stays a run when any of them are left out. */
struct Operation {
    std::string text;  // for people
    std::function<void(Driver& driver)> perform;
};

/**
 * The run of a seed. Some seeds have no faults, and some no restarts.
 * @param mix these faults and no others, from the start to the end; empty: a few of every kind,
 * some of the time
 */
std::vector<Operation> randomOperations(std::uint64_t seed, std::size_t count,
                                        const std::vector<velasim::FaultRule>& mix = {});

/** What a run came to. */
struct Outcome : Verdict {
    /** The step that is under way, or failed; the number of steps: what follows them. */
    std::size_t step;
    Figures figures;
    std::uint64_t faults;
};

/**
 * Carries out a run against the library on a simulator of its own, and against the model beside it;
 * compares them after every step. At the end the faults are ended and everything has to heal.
 * Callbacks of the messaging library are made only while the worker rests, or all while it is kept
 * busy, so that a run is always the same. `seed` decides what a fault does to the bytes of an
 * indication, and on which instance of the modem the library starts.
 */
class Driver {
  public:
    Driver(std::uint64_t seed, Outcome& outcome);

    void run(const std::vector<Operation>& operations);

    // ---- What operations do: a client

    void add(unsigned slot, const vela::AddProfileParams& params);
    void modify(unsigned slot, const vela::ModifyProfileParams& params);
    void remove(unsigned slot);
    void match(unsigned slot, const vela::FilterProfileParams& params);
    /** Fills the empty slots with what is found. */
    void filter(const vela::FilterProfileParams& params);
    void drop(unsigned slot);
    /** The slot's key gets a listener that drops the victim's. */
    void listen(unsigned slot, unsigned victim);
    void startRefresh();
    void endRefresh();
    void init(int instance);

    // ---- The modem, and others who use it

    /** The instance that the library was started on, or another. */
    int instance(bool isElsewhere) const { return isElsewhere ? 1 - home : home; }
    /** Does the same to the simulator and to the model. */
    template <typename Change>
    void onBoth(Change change) {
        act([&] { return change(simulator); }, [&] { return change(model); });
    }
    template <auto OfSimulator, auto OfModel>
    void onBoth() {
        act([&] { (simulator.*OfSimulator)(); }, [&] { (model.*OfModel)(); });
    }
    /** Does something that the model learns of from the journal. */
    template <typename Change>
    void onSimulator(Change change) {
        act([&] { change(simulator); }, [] {});
    }
    void clearFaults() { simulator.faults().clear(); }
    void addFault(const velasim::FaultRule& rule) { simulator.faults().add(rule); }
    void deliver();
    void deliverAll();
    /** All callbacks while the worker is busy: it finds them together. */
    void deliverAtOnce();

  private:
    using Key = std::shared_ptr<vela::IProfileKey>;

    void start();
    template <typename Real, typename Predicted>
    void useKey(unsigned slot, Real real, Predicted predicted);
    void reconnect();
    void heal();

    /** Does something, lets the worker come to rest, and compares with what the model says of it.
     */
    template <typename Real, typename Predicted>
    void act(Real real, Predicted predicted) {
        const std::string found = resultOf(real);
        witness();
        expectEqual("result", resultOf(predicted), found);
        model.finish();
    }
    void witness();
    void check();
    void checkCache();
    void checkKeys();
    void checkTable(int instance);

    Outcome& outcome;
    velasim::Simulator simulator;
    vela::Manager manager;
    Model model;
    int home;  // the instance that the library was started on
    std::vector<Key> keys = std::vector<Key>(Model::kSlots);

    std::vector<KeyRing::Call> calls;  // of listeners, on the worker while this thread waits for it
    int nextListener = 0;
};

}  // namespace coherence
