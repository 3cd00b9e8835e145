// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "EnumNames.h"

namespace vela {

/** Collects one dump line. Numbers are plain decimal, whatever locale the process has chosen. */
class DumpText {
  public:
    enum class Booleans { Words, Digits };

    /** What the dump of a profile seldom exceeds. */
    static constexpr std::size_t kProfile = 240;

    explicit DumpText(Booleans booleans = Booleans::Words, std::size_t expected = 0)
        : booleans(booleans) {
        line.reserve(expected);
    }

    DumpText& operator<<(std::string_view text) {
        line.append(text);
        return *this;
    }

    DumpText& operator<<(const char* text) { return *this << std::string_view(text); }

    DumpText& operator<<(bool value) {
        if (booleans == Booleans::Digits) {
            return *this << static_cast<int>(value);
        }
        return *this << (value ? "true" : "false");
    }

    template <std::integral Number>
    DumpText& operator<<(Number number) {
        std::array<char, 20> digits;  // of the longest, and its sign
        char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        return *this << std::string_view(digits.data(),
                                         static_cast<std::size_t>(end - digits.data()));
    }

    /** The value's name, or its number when it has none. */
    template <typename Enum>
    requires std::is_enum_v<Enum> DumpText& operator<<(Enum value) {
        const std::string_view name = nameOf(value);
        return name.empty() ? *this << static_cast<std::int32_t>(value) : *this << name;
    }

    /** Appends `label`, "=", the value and ",", or nothing when there is no value. */
    template <typename Value>
    DumpText& field(const char* label, const std::optional<Value>& value) {
        return value ? *this << label << "=" << *value << "," : *this;
    }

    /** The line; nothing is left of it here. */
    std::string take() { return std::move(line); }

  private:
    const Booleans booleans;
    std::string line;
};

}  // namespace vela
