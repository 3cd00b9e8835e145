// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Operation.h"

namespace velactl {

Names valuesOf(const std::string& /*placeholder*/) {
    return {};
}

Operations simulatorOperations() {
    return {};
}

}  // namespace velactl
