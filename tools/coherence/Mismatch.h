// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>

namespace coherence {

/** What happened is not what was promised. */
class Mismatch : public std::runtime_error {
  public:
    using runtime_error::runtime_error;
};

}  // namespace coherence
