// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "vela/IProfileKey.h"

namespace vela {

/** What to call when a cached profile dies, and the key that must still live for it. */
using ExpirationListener = std::pair<std::function<void()>, std::weak_ptr<IProfileKey>>;

/**
 * True when the listener's key is gone, or never was. Never makes the calling thread an owner of
 * the key, not even for a moment: it could then end up as the last one.
 */
inline bool expired(const ExpirationListener& listener) {
    return listener.second.expired();
}

}  // namespace vela
