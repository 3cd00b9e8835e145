// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/IProfileKey.h"

namespace vela {

IProfileKey::~IProfileKey() = default;

}  // namespace vela
