// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Simulator.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Model.h"
#include "Operation.h"
#include "vela/Manager.h"

namespace coherence {

/** What a run came to. */
struct Outcome {
    /** Empty: all was as promised. */
    std::string failure;
    /** The step that failed; the number of steps: what follows them. */
    std::size_t step = 0;
    /** Comparisons of one cached profile with the modem's table, and how often an exception was
     * claimed instead. */
    std::uint64_t compared = 0;
    std::uint64_t excused = 0;
    std::uint64_t faults = 0;
    /** The journal of the run; empty unless asked for. */
    std::string journal;
};

/**
 * Carries out a run against the library on a simulator of its own, and against the model beside it;
 * compares them after every step. Callbacks of the messaging library are made only while the worker
 * rests, or all while it is kept busy, so that a run is always the same.
 */
class Driver {
  public:
    /** `seed` decides what a fault does to the bytes of an indication, and on which instance of the
     * modem the library starts. */
    explicit Driver(std::uint64_t seed, bool keepJournal = false);
    ~Driver();
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    /** Once. At the end the faults are ended and everything has to heal.
     * @param onStep is told of each step before it is taken */
    Outcome run(const std::vector<Operation>& operations,
                const std::function<void(std::size_t step)>& onStep = {});

  private:
    using Key = std::shared_ptr<vela::IProfileKey>;

    void start();
    void provision(int instance, const std::vector<velasim::Technology>& technologies);
    void init(int instance);
    void perform(const Operation& operation);
    void perform(Operation::Kind kind) { perform({kind, 0, 0, 0, {}}); }
    void performForClient(const Operation& operation);
    void performForModem(const Operation& operation);
    void performOnKey(const Operation& operation);
    void add(unsigned slot, const vela::AddProfileParams& params);
    void fill(const vela::FilterProfileParams& params);
    void listen(unsigned slot, unsigned victim);
    void drop(unsigned slot);
    void deliver();
    void deliverAll();
    void deliverAtOnce();
    void reconnect();
    void heal();

    template <typename Real, typename Predicted>
    void act(Real real, Predicted predicted);
    void awaitRest();
    void check();
    void checkCache();
    void checkKeys();
    void checkTable(int instance);

    const bool keepJournal;
    velasim::Simulator simulator;
    vela::Manager manager;
    Model model;
    int home;  // the instance that the library was started on
    std::vector<Key> keys{Model::kSlots};

    std::vector<KeyRing::Call> calls;  // of listeners, on the worker while this thread waits for it
    int nextListener = 0;
    Outcome outcome;
};

}  // namespace coherence
