// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

// Marks what libvelar.so exports; everything else is hidden.
#define VELA_API __attribute__((visibility("default")))
