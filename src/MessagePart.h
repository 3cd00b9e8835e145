// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// An optional part of a modem message, a valid flag and a value, against an optional field.
// Writers expect a zero-filled message and leave it so where there is nothing to write.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

namespace vela {

/** Up to the terminator, or the whole array when the modem has sent none. */
template <std::size_t Size>
std::string textFrom(const char (&text)[Size]) {
    return std::string(text, strnlen(text, Size));
}

/** Cuts what does not fit and always terminates. */
template <std::size_t Size>
void copyText(const std::string& from, char (&to)[Size]) {
    const std::size_t length = std::min(std::strlen(from.c_str()), Size - 1);
    std::memcpy(to, from.data(), length);
    to[length] = '\0';
}

/** Leaves the field as it is when the part is not valid. */
template <typename Part, typename Value>
void readPart(std::uint8_t valid, const Part& part, std::optional<Value>& field,
              Value (*convert)(Part)) {
    if (valid != 0) {
        field = convert(part);
    }
}

template <std::size_t Size>
void readText(std::uint8_t valid, const char (&part)[Size], std::optional<std::string>& field) {
    if (valid != 0) {
        field = textFrom(part);
    }
}

template <typename Part, typename Value>
void writePart(const std::optional<Value>& field, std::uint8_t& valid, Part& part,
               Part (*convert)(Value)) {
    if (field) {
        valid = 1;
        part = convert(*field);
    }
}

template <std::size_t Size>
void writeText(const std::optional<std::string>& field, std::uint8_t& valid, char (&part)[Size]) {
    if (field) {
        valid = 1;
        copyText(*field, part);
    }
}

// Conversions of the parts that need no table.

inline bool flagFromByte(std::uint8_t byte) {
    return byte != 0;
}

inline std::uint8_t flagToByte(bool flag) {
    return flag ? 1 : 0;
}

/** To one of the library's enumerations, which hold any number. */
template <typename Enum>
Enum enumFromByte(std::uint8_t byte) {
    return static_cast<Enum>(byte);
}

template <typename Enum>
std::uint8_t enumToByte(Enum value) {
    return static_cast<std::uint8_t>(value);
}

inline int numberFromShort(std::uint16_t number) {
    return number;
}

/** Keeps the low 16 bits. */
inline std::uint16_t numberToShort(int number) {
    return static_cast<std::uint16_t>(number);
}

}  // namespace vela
