// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Manager.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "modem/Traffic.h"
#include "profiles/ProfileRecord.h"

namespace velactl {

/** Which modem, and how it is kept. */
struct ModemOptions {
    /** The simulated modem's memory; empty: a new modem that is forgotten at the end. */
    std::string file = {};
    int instance = 0;
    /** Profiles per technology of a simulated modem. */
    std::optional<unsigned> capacity = {};
    /** Changes nothing, and so keeps others from the file only as long as it reads. */
    bool looksOnly = false;
    /** For how many seconds others may keep the file. */
    int wait = 10;
    /** Of a simulated modem's faults. */
    std::uint64_t seed = 1;
    /** Gets lines worth telling; may be empty. */
    std::function<void(const std::string& line)> note = {};
    /** Gets the library's log lines as they come, on any thread; may be empty, and must not log or
     * call the library. */
    std::function<void(std::string_view line)> log = {};
};

/**
 * What stands below the library: the modem. One implementation is linked in, the simulator's or a
 * device's.
 */
class Backend {
  public:
    Backend() = default;
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;
    virtual ~Backend() = default;

    /** Initialises the library for an instance, which modemProfiles() means from now on, and waits
     * until it has connected to the modem or given up. */
    virtual void connect(vela::Manager& manager, Recorder& recorder, int instance) = 0;

    /** Waits until what the modem has announced has reached the library's cache. */
    virtual void settle(vela::Manager& manager, Recorder& recorder) = 0;

    /** The modem's own tables, seen past the library; empty when the platform has no such view. */
    virtual std::optional<ProfileRecords> modemProfiles() = 0;

    /** A modem's own error number in words. */
    virtual std::string errorName(std::uint32_t error) const = 0;

    /** Whether what is changed is there for the next run. */
    virtual bool keepsMemory() const = 0;

    /** Keeps the modem's persistent memory where the options say; throws ToolError. */
    virtual void save() = 0;
};

/** The one that is linked in. Throws ToolError. */
std::unique_ptr<Backend> makeBackend(const ModemOptions& options);

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
     * nothing then. */
    Connection connect(int instance);

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
    /** Everything that the library holds, each compared with the filter. */
    std::vector<vela::ProfileCandidate> search(const vela::FilterProfileParams& filter);

    vela::Manager& library;
    const std::unique_ptr<Backend> backend;
    /** The library tells it until a newer one takes over, even when this object has gone. */
    std::shared_ptr<Recorder> recorder;
};

}  // namespace velactl
