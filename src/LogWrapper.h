// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string_view>

#include "LogWriter.h"
#include "Mutex.h"

namespace vela {

/** The tag of every line of the library. */
inline constexpr const char* kLogTag = "VELA";

/**
 * The one way to log. Any thread, at any time: before a writer is installed, and after static
 * objects have been destroyed (lines are then dropped). Errors and notices are also kept in the
 * LocalLogBuffer.
 */
class LogWrapper {
  public:
    /** What a message can hold, with the terminator. */
    static constexpr std::size_t kMessageSize = 512;

    /** The process-wide instance. Its writer is destroyed at process exit, after the Manager. */
    static LogWrapper& getInstance();

    LogWrapper(const LogWrapper&) = delete;
    LogWrapper& operator=(const LogWrapper&) = delete;

    /** Logs a printf-style message, cut to 511 bytes. */
    void log(LogLevel level, const char* tag, const char* format, ...)
        __attribute__((format(printf, 4, 5)));

    /** Logs `message` as it stands, cut to 511 bytes; for texts that are not the library's own. */
    void logText(LogLevel level, const char* tag, std::string_view message);

    /** Replaces the writer, and destroys the previous one; empty for none. */
    void setLogWriter(std::unique_ptr<LogWriter> newWriter);

  private:
    class ExitGuard;

    LogWrapper() = default;
    ~LogWrapper() = default;

    friend void log(LogLevel level, const char* format, ...);

    void logArguments(LogLevel level, const char* tag, const char* format, va_list arguments)
        __attribute__((format(printf, 4, 0)));
    void deliver(LogLevel level, const char* tag, std::string_view message);
    void close();

    // Shared by lines, so that they do not wait for one another; exclusive for a change of writer.
    SharedMutex writerMutex;
    std::unique_ptr<LogWriter> writer VELA_GUARDED_BY(writerMutex);
    bool closed VELA_GUARDED_BY(writerMutex) = false;
};

/** Logs a printf-style message under the library's own tag. */
void log(LogLevel level, const char* format, ...) __attribute__((format(printf, 2, 3)));

/** Logs `message` as it stands under the library's own tag. */
void logText(LogLevel level, std::string_view message);

}  // namespace vela
