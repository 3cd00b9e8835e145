// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#if __cplusplus < 202002L
#error "The simulator's headers need C++20."
#endif

// Marks what libvelasim.so exports; everything else is hidden.
#define VELASIM_API __attribute__((visibility("default")))
