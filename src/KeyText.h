// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "vela/IProfileKey.h"

namespace vela {

/** The key's dump, or `ifEmpty` when there is no key. */
inline std::string keyText(const std::shared_ptr<IProfileKey>& key, const char* ifEmpty) {
    return key ? key->dump() : ifEmpty;
}

}  // namespace vela
