// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The modem platform's diagnostic log.
#pragma once

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bits of a message's mask: who is interested in it. */
enum {
    DIAG_LOG_MASK_LOW = 1,
    DIAG_LOG_MASK_MEDIUM = 2,
    DIAG_LOG_MASK_HIGH = 4,
    DIAG_LOG_MASK_ERROR = 8,
    DIAG_LOG_MASK_FATAL = 16,
    DIAG_LOG_MASK_ALL = 31
};

/* The constant part of a message. All of it must outlive the call. */
typedef struct diag_log_descriptor {
    uint32_t line;
    uint32_t subsystem_id;
    uint32_t mask;
    const char* format; /* printf format of the arguments that follow */
    const char* file;
} diag_log_descriptor;

/* Registers the process with the diagnostic log; `argument` is reserved and empty (null). Calls
 * nest: the registration ends with as many diagLogDeinit() calls. */
bool diagLogInit(void* argument);

/* Ends a registration. */
bool diagLogDeinit(void);

/* Logs one message. Any thread. */
void diagLogPrintf(const diag_log_descriptor* descriptor, ...);

#ifdef __cplusplus
}
#endif
