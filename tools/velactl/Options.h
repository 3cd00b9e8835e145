// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Backend.h"

namespace velactl {

/** What every verb can be told. */
struct Options {
    ModemOptions modem;
    bool json = false;
    bool showSecrets = false;
    bool log = false;
};

}  // namespace velactl
