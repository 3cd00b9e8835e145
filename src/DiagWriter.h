// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "LogWriter.h"

namespace vela {

/** Writes to the modem's diagnostic log; registers the process with it for as long as it lives. */
class DiagWriter : public LogWriter {
  public:
    DiagWriter();
    ~DiagWriter() override;

    void write(LogLevel level, std::string tag, std::string message) override;

    /** The mask bit of the diagnostic log. */
    int convertPrio(LogLevel level) override;
};

}  // namespace vela
