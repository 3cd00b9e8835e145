// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "AdbWriter.h"

#include <android/log.h>

namespace vela {

int AdbWriter::convertPrio(LogLevel level) {
    switch (level) {
        case LogLevel::Verbose:
            return ANDROID_LOG_VERBOSE;
        case LogLevel::Debug:
            return ANDROID_LOG_DEBUG;
        case LogLevel::Info:
        case LogLevel::Notice:
            return ANDROID_LOG_INFO;
        case LogLevel::Error:
            return ANDROID_LOG_ERROR;
        case LogLevel::Fatal:
            return ANDROID_LOG_FATAL;
    }
    return ANDROID_LOG_INFO;
}

void AdbWriter::write(LogLevel level, std::string tag, std::string message) {
    __android_log_print(convertPrio(level), tag.c_str(), "%s", message.c_str());
}

}  // namespace vela
