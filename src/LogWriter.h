// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace vela {

enum class LogLevel : std::int32_t {
    Verbose = 0,  // tracing
    Debug = 1,    // object life, indication details
    Info = 2,     // event-loop conditions, start and end of a modem refresh
    Error = 3,    // failures
    Fatal = 4,
    Notice = 5,  // operational record: client requests, cache changes
};

/** A sink of formatted log lines. Called from any thread, several at a time. */
class LogWriter {
  public:
    LogWriter() = default;
    LogWriter(const LogWriter&) = delete;
    LogWriter& operator=(const LogWriter&) = delete;
    virtual ~LogWriter() = default;

    /** Writes one line; `message` is text, never a format. */
    virtual void write(LogLevel level, std::string tag, std::string message) = 0;

    /** The sink's own number for `level`. */
    virtual int convertPrio(LogLevel level) = 0;
};

}  // namespace vela
