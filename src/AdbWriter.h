// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "LogWriter.h"

namespace vela {

/** Writes to the Android log. */
class AdbWriter : public LogWriter {
  public:
    void write(LogLevel level, std::string tag, std::string message) override;

    /** The Android log priority. */
    int convertPrio(LogLevel level) override;
};

}  // namespace vela
