// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <android/log.h>

int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    return prio != 0 && tag != 0 && fmt != 0;
}
