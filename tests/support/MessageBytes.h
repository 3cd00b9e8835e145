// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace vela {

/** A message as it crosses to the modem, padding included. */
template <typename Message>
std::string_view bytesOf(const Message& message) {
    return {reinterpret_cast<const char*>(&message), sizeof(message)};
}

}  // namespace vela
