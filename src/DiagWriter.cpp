// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "DiagWriter.h"

#include <cstdint>

#include "diag_log.h"

namespace vela {

namespace {

constexpr std::uint32_t kDescriptorLine = 116;
constexpr std::uint32_t kSubsystemId = 63;

diag_log_descriptor makeDescriptor(int mask) {
    diag_log_descriptor descriptor{};
    descriptor.line = kDescriptorLine;
    descriptor.subsystem_id = kSubsystemId;
    descriptor.mask = static_cast<std::uint32_t>(mask);
    descriptor.format = "|%s| %s";
    descriptor.file = "src/LocalLogBuffer";
    return descriptor;
}

}  // namespace

DiagWriter::DiagWriter() {
    diagLogInit(nullptr);
}

DiagWriter::~DiagWriter() {
    diagLogDeinit();
}

int DiagWriter::convertPrio(LogLevel level) {
    switch (level) {
        case LogLevel::Error:
        case LogLevel::Notice:
            return DIAG_LOG_MASK_HIGH;
        case LogLevel::Fatal:
            return DIAG_LOG_MASK_FATAL;
        case LogLevel::Verbose:
        case LogLevel::Debug:
        case LogLevel::Info:
            return DIAG_LOG_MASK_LOW;
    }
    return DIAG_LOG_MASK_LOW;
}

void DiagWriter::write(LogLevel level, std::string tag, std::string message) {
    const int mask = convertPrio(level);
    if ((mask & DIAG_LOG_MASK_ALL) == 0) {
        return;
    }
    // One descriptor for the process: every line carries the mask of the first, intentionally.
    static const diag_log_descriptor descriptor = makeDescriptor(mask);
    diagLogPrintf(&descriptor, tag.c_str(), message.c_str());
}

}  // namespace vela
