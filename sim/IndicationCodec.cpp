// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "IndicationCodec.h"

namespace velasim {

namespace {

constexpr std::uint8_t kChangeTag = 0x10;
constexpr std::size_t kHeaderSize = 3;
constexpr std::size_t kChangeSize = 9;

void putWord(std::vector<std::uint8_t>& bytes, std::uint32_t word) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(word >> shift));
    }
}

std::int32_t wordAt(std::span<const std::uint8_t> bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        word |= std::uint32_t{bytes[at + i]} << (8 * i);
    }
    return static_cast<std::int32_t>(word);
}

bool decodeChange(std::span<const std::uint8_t> value, wds_profile_changed_ind_msg_v01& message) {
    if (value.size() != kChangeSize || message.profile_changed_valid != 0) {
        return false;
    }
    message.profile_changed_valid = 1;
    message.profile_changed.profile_type = static_cast<wds_profile_type_enum_v01>(wordAt(value, 0));
    message.profile_changed.profile_index = value[4];
    message.profile_changed.change_event =
        static_cast<wds_profile_change_event_enum_v01>(wordAt(value, 5));
    return true;
}

}  // namespace

std::vector<std::uint8_t> encodeProfileChanged(const wds_profile_changed_ind_type_v01& change) {
    std::vector<std::uint8_t> bytes = {kChangeTag, kChangeSize, 0};
    putWord(bytes, static_cast<std::uint32_t>(change.profile_type));
    bytes.push_back(change.profile_index);
    putWord(bytes, static_cast<std::uint32_t>(change.change_event));
    return bytes;
}

std::optional<wds_profile_changed_ind_msg_v01> decodeProfileChanged(
    std::span<const std::uint8_t> bytes) {
    wds_profile_changed_ind_msg_v01 message{};
    while (!bytes.empty()) {
        if (bytes.size() < kHeaderSize) {
            return std::nullopt;
        }
        const std::size_t length = bytes[1] + 256U * bytes[2];
        if (bytes.size() - kHeaderSize < length) {
            return std::nullopt;
        }
        const auto value = bytes.subspan(kHeaderSize, length);
        if (bytes[0] == kChangeTag && !decodeChange(value, message)) {
            return std::nullopt;
        }
        bytes = bytes.subspan(kHeaderSize + length);
    }
    return message;
}

}  // namespace velasim
