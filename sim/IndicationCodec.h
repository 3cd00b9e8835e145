// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <wds_service_v01.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace velasim {

// The indication on the wire: a sequence of elements, each a tag (one byte), a length (two bytes,
// little-endian) and that many bytes. Tag 0x10 is the change: profile type (four bytes), profile
// index (one byte), event (four bytes). Other tags are skipped, as parts that a newer modem sends.

std::vector<std::uint8_t> encodeProfileChanged(const wds_profile_changed_ind_type_v01& change);

/** Empty when the bytes are not a sequence of whole elements, the change has a wrong length or
 * occurs twice. Accepts any bytes. */
std::optional<wds_profile_changed_ind_msg_v01> decodeProfileChanged(
    std::span<const std::uint8_t> bytes);

}  // namespace velasim
