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

#include "ProfileRecord.h"

namespace velactl {

/** Which modem, and how it is kept. */
struct ModemOptions {
    /** The simulated modem's memory; empty: a new modem that is forgotten at the end. */
    std::string file;
    int instance = 0;
    /** Profiles per technology of a simulated modem. */
    std::optional<unsigned> capacity;
    /** Of a simulated modem's faults. */
    std::uint64_t seed = 1;
};

/** Gets the library's log lines as they come, on any thread; must not log or call the library. */
using LogSink = std::function<void(std::string_view line)>;

/** What became of one request of the library to the modem. */
struct Answer {
    enum class Message { Create, Modify, Delete, List, Read, Other };
    enum class Outcome { Done, Refused, NoAnswer, NotSent };

    Message message = Message::Other;
    Outcome outcome = Outcome::Done;
    /** Why; may be empty. */
    std::string reason;
};

using Answers = std::vector<Answer>;

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

    /** Initialises the library and waits until it is connected to the modem; throws ToolError. */
    virtual void connect(vela::Manager& manager) = 0;

    /** Waits until what the modem has announced has reached the library's cache. */
    virtual void settle(vela::Manager& manager) = 0;

    /** The modem's own tables, seen past the library; empty when the platform has no such view. */
    virtual std::optional<ProfileRecords> modemProfiles() = 0;

    /** The library's log lines since the last call, oldest first. */
    virtual std::vector<std::string> takeLog() = 0;

    /** What became of the requests that crossed over since the last call, oldest first; empty when
     * the platform has no such view. */
    virtual std::optional<Answers> takeAnswers() = 0;

    /** Keeps the modem's persistent memory where the options say; throws ToolError. Returns a line
     * worth telling, or nothing. */
    virtual std::string save() = 0;
};

/** The one that is linked in. Throws ToolError. */
std::unique_ptr<Backend> makeBackend(const ModemOptions& options, LogSink sink);

}  // namespace velactl
