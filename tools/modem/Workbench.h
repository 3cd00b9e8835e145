// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Manager.h>

#include <memory>
#include <string>
#include <vector>

#include "modem/Recorder.h"

namespace velactl {

/** A profile's place. Never a key: one that is kept keeps a temporary profile alive. */
struct KeyName {
    vela::TechType tech = vela::TechType::TECH_3GPP;
    int index = 0;
};

/**
 * A modem with the library connected to it and its cache filled: what verbs and scenarios work on.
 * The library is one per process, and so is the workbench that is in use: a newer one takes over.
 */
class Workbench {
  public:
    /** Throws ToolError when the modem's memory cannot be read or the modem does not answer. */
    explicit Workbench(const ModemOptions& options);
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    vela::Manager& manager() { return library; }
    Backend& modem() { return *backend; }

    /** Initialises the library again, perhaps for another instance; keys that were handed out name
     * nothing then. Returns why the modem does not answer; empty when it does. */
    std::string init(int instance) { return connect(instance).failure; }

    /** Waits until the library has taken in what the modem has announced. */
    void settle() { backend->settle(library, *recorder); }

    /** What the library says the modem holds, as far as it matches. A profile that it holds twice
     * is there twice. */
    ProfileRecords libraryProfiles(const vela::FilterProfileParams& filter = {});

    /** What the modem holds, seen past the library where that is possible. */
    ProfileRecords modemProfiles();

    /** Where library and modem differ, one line each; none when they agree as far as the library
     * can tell. */
    std::vector<std::string> disagreements();

    /** What disagreements() cannot compare, one line each. */
    std::vector<std::string> uncompared();

    /** The key of one profile; refuses with the indexes that exist when there is none. */
    std::shared_ptr<vela::IProfileKey> find(vela::TechType tech, int index);

    /** Tells `observer` what the library does from now on, one call after the other, but for what
     * this object has it do; null: nobody. */
    void tell(vela::Observer* observer) { recorder->passTo(observer); }

    /** What has crossed over to the modem since the last call. */
    Traffic takeTraffic() { return trafficOf(recorder->takeMessages(), *backend); }

    /** How many indications of its own changes the library still expects. */
    int expectedIndications() const { return recorder->expectedIndications(); }

  private:
    Connection connect(int instance);

    /** Everything that the library holds, each compared with the filter. */
    std::vector<vela::ProfileCandidate> search(const vela::FilterProfileParams& filter);

    vela::Manager& library;
    const std::unique_ptr<Backend> backend;
    /** The library tells it until a newer one takes over, even when this object has gone. */
    std::shared_ptr<Recorder> recorder;
};

}  // namespace velactl
