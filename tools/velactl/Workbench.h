// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Manager.h>

#include <memory>
#include <string>
#include <vector>

#include "Backend.h"

namespace velactl {

/** What the library asked the modem to change. */
struct Traffic {
    std::size_t writes = 0;
    /** The changes that failed: refused, not answered or not sent, in words. */
    std::vector<std::string> failures;
    /** The same for reading the modem's tables. */
    std::vector<std::string> failedReads;
    /** The library's log lines meanwhile. */
    std::vector<std::string> log;
};

/**
 * A modem with the library connected to it and its cache filled: what verbs and scenarios work on.
 * The library is one per process, and so is the workbench that is in use: a newer one takes over.
 */
class Workbench {
  public:
    /** Throws ToolError when there is no such modem or its memory cannot be read. */
    explicit Workbench(const ModemOptions& options, LogSink sink = {});

    vela::Manager& manager() { return library; }
    Backend& modem() { return *backend; }

    /** Has the library read the modem's tables anew. Keys that were handed out name nothing then.
     */
    void reload();

    /** Waits until the library has taken in what the modem has announced. */
    void settle() { backend->settle(library); }

    /** What the library says the modem holds, as far as it matches; only whether a profile is
     * persistent is the modem's own word. */
    ProfileRecords libraryProfiles(const vela::FilterProfileParams& filter = {});

    /** What the modem holds, seen past the library where that is possible. */
    ProfileRecords modemProfiles();

    /** Where library and modem differ, one line each; none when they agree. */
    std::vector<std::string> disagreements();

    /** The key of one profile; refuses with the indexes that exist when there is none. */
    std::shared_ptr<vela::IProfileKey> find(vela::TechType tech, int index);

    /** What has crossed over to the modem since the last call. */
    Traffic takeTraffic();

    /** Keeps the modem's memory. Returns a line worth telling, or nothing. */
    std::string save() { return backend->save(); }

  private:
    vela::Manager& library;
    const std::unique_ptr<Backend> backend;
};

}  // namespace velactl
