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

#include "profiles/ProfileRecord.h"

namespace velactl {

class Recorder;

/** Which modem, and how it is kept. */
struct ModemOptions {
    /** The simulated modem's memory; empty: a new modem that is forgotten at the end. */
    std::string file;
    int instance = 0;
    /** Profiles per technology of a simulated modem. */
    std::optional<unsigned> capacity;
    /** Changes nothing, and so keeps others from the file only as long as it reads. */
    bool looksOnly = false;
    /** For how many seconds others may keep the file. */
    int wait = 10;
    /** Of a simulated modem's faults. */
    std::uint64_t seed = 1;
    /** Gets lines worth telling; may be empty. */
    std::function<void(const std::string& line)> note;
    /** Gets the library's log lines as they come, on any thread; may be empty, and must not log or
     * call the library. */
    std::function<void(std::string_view line)> log;
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

}  // namespace velactl
