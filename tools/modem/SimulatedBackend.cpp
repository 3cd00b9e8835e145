// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The choice of modem, made by the program that links this file.
#include "modem/SimulatedModem.h"

namespace velactl {

std::unique_ptr<Backend> makeBackend(const ModemOptions& options) {
    return std::make_unique<SimulatedModem>(options);
}

}  // namespace velactl
