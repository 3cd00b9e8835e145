// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "LogWrapper.h"

namespace vela {

/** Keeps the library's log lines for as long as it lives; no writer is installed afterwards. */
class LogCapture {
  public:
    using Line = std::pair<LogLevel, std::string>;

    LogCapture() { LogWrapper::getInstance().setLogWriter(std::make_unique<Writer>(lines)); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture() { LogWrapper::getInstance().setLogWriter(nullptr); }

    /** The lines since the last call, oldest first. Any thread. */
    std::vector<Line> take() {
        const std::lock_guard lock(lines->mutex);
        return std::exchange(lines->kept, {});
    }

  private:
    struct Lines {
        std::mutex mutex;
        std::vector<Line> kept;
    };

    class Writer : public LogWriter {
      public:
        explicit Writer(std::shared_ptr<Lines> target) : lines(std::move(target)) {}

        void write(LogLevel level, std::string tag, std::string message) override {
            const std::lock_guard lock(lines->mutex);
            lines->kept.emplace_back(level, tag == kLogTag ? message : tag + ": " + message);
        }

        int convertPrio(LogLevel level) override { return static_cast<int>(level); }

      private:
        const std::shared_ptr<Lines> lines;
    };

    const std::shared_ptr<Lines> lines = std::make_shared<Lines>();
};

}  // namespace vela
