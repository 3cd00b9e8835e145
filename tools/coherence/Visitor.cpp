// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Visitor.h"

namespace coherence {

std::string Visitor::dump() const {
    if (visit && std::this_thread::get_id() != owner) {
        std::exchange(visit, nullptr)();
    }
    return "visitor";
}

}  // namespace coherence
