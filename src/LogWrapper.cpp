// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "LogWrapper.h"

#include <array>
#include <new>
#include <utility>

#include "ForkedChild.h"
#include "LineFormat.h"
#include "LocalLogBuffer.h"

namespace vela {

/** Closes the wrapper at process exit, while the local buffer still exists. */
class LogWrapper::ExitGuard {
  public:
    explicit ExitGuard(LogWrapper& wrapper) : wrapper(wrapper) { LocalLogBuffer::getInstance(); }
    ExitGuard(const ExitGuard&) = delete;
    ExitGuard& operator=(const ExitGuard&) = delete;
    ~ExitGuard() { wrapper.close(); }

  private:
    LogWrapper& wrapper;
};

LogWrapper& LogWrapper::getInstance() {
    // Never destroyed: static objects of clients, keys among them, log until the very end.
    alignas(LogWrapper) static std::array<std::byte, sizeof(LogWrapper)> storage;
    static LogWrapper* const instance = new (storage.data()) LogWrapper;
    static const ExitGuard guard(*instance);
    return *instance;
}

void LogWrapper::log(LogLevel level, const char* tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    logArguments(level, tag, format, arguments);
    va_end(arguments);
}

void LogWrapper::logArguments(LogLevel level, const char* tag, const char* format,
                              va_list arguments) {
    std::array<char, kMessageSize> message;
    deliver(level, tag, formatLine(message.data(), message.size(), format, arguments));
}

void LogWrapper::logText(LogLevel level, const char* tag, std::string_view message) {
    deliver(level, tag, message.substr(0, kMessageSize - 1));
}

void LogWrapper::deliver(LogLevel level, const char* tag, std::string_view message) {
    if (isForkedChild()) {
        return;
    }
    const SharedLock lock(writerMutex);
    if (closed) {
        return;
    }
    if (writer) {
        writer->write(level, tag, std::string(message));
    }
    if (level == LogLevel::Error || level == LogLevel::Notice) {
        LocalLogBuffer::getInstance().addLogWithTimestamp(message);
    }
}

void LogWrapper::setLogWriter(std::unique_ptr<LogWriter> newWriter) {
    if (isForkedChild()) {
        return;
    }
    {
        const ExclusiveLock lock(writerMutex);
        writer.swap(newWriter);
    }
    newWriter.reset();
}

void LogWrapper::close() {
    if (isForkedChild()) {
        return;
    }
    {
        const ExclusiveLock lock(writerMutex);
        closed = true;
    }
    setLogWriter(nullptr);
}

void log(LogLevel level, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    LogWrapper::getInstance().logArguments(level, kLogTag, format, arguments);
    va_end(arguments);
}

void logText(LogLevel level, std::string_view message) {
    LogWrapper::getInstance().logText(level, kLogTag, message);
}

}  // namespace vela
