// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The words in which the tool reads and prints values. Reading ignores case.
#pragma once

#include <vela/ProfileTypes.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velactl {

using Json = nlohmann::ordered_json;
using Names = std::vector<std::string>;
using Numbers = std::vector<std::uint64_t>;

/** The names of an enumeration, and its values, or bits, in the same order. */
struct Words {
    Names names;
    Numbers numbers;
};

/** Of TechType, IPType, AuthType, ApnClass or ApnTypes. */
template <typename Value>
const Words& wordsOf();

/** A number's name; without one the number. */
Json nameOf(std::uint64_t number, const Words& words);

/** The names of the set bits; those without a name together as a hexadecimal number. */
Json namesOf(std::uint64_t mask, const Words& bits);

/** "9 (unknown)" */
inline std::string unknownText(const Json& number) {
    return number.dump() + " (unknown)";
}

template <typename Value>
std::string word(Value value) {
    const Json name = nameOf(static_cast<std::uint64_t>(value), wordsOf<Value>());
    return name.is_string() ? name.get<std::string>() : unknownText(name);
}

inline std::string word(vela::IPType value) {
    return value == vela::IPType::UNKNOWN ? "unknown" : word<vela::IPType>(value);
}

/** Which of the words a text is; empty: none of them. */
std::optional<std::size_t> placeOf(std::string_view text, const Names& words);

// What an option's text means. Otherwise a usage error that names the option and what is right.

/** Which of the words it is. */
std::size_t readOneOf(std::string_view option, std::string_view text, const Names& words);
vela::TechType readTech(std::string_view option, std::string_view text);

/** What is wrong with a number; empty when it is one from `lowest` to `highest`. */
std::string wrongNumber(const std::string& text, std::int64_t lowest, std::int64_t highest);

}  // namespace velactl
