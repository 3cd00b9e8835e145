// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/Words.h"

#include <charconv>
#include <sstream>
#include <type_traits>

#include "profiles/Text.h"
#include "profiles/ToolError.h"

namespace velactl {

namespace {

using vela::ApnTypes;
using vela::AuthType;
using vela::IPType;
using vela::TechType;

// A type without a name here does not compile.
constexpr const char* textOf(ApnTypes value) {
    // clang-format off
    switch (value) {
        case ApnTypes::DEFAULT: return "default";
        case ApnTypes::MMS: return "mms";
        case ApnTypes::SUPL: return "supl";
        case ApnTypes::DUN: return "dun";
        case ApnTypes::HIPRI: return "hipri";
        case ApnTypes::FOTA: return "fota";
        case ApnTypes::IMS: return "ims";
        case ApnTypes::CBS: return "cbs";
        case ApnTypes::IA: return "ia";
        case ApnTypes::EMERGENCY: return "emergency";
        case ApnTypes::MCX: return "mcx";
        case ApnTypes::XCAP: return "xcap";
    }
    // clang-format on
    return "";
}

/** The library's own name; what has none is a number there. */
template <typename Value>
std::string textOf(Value value) {
    std::ostringstream out;
    out << value;
    const bool isNumber = out.str().find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? "" : out.str();
}

std::string textOf(IPType value) {
    const std::string name = textOf<IPType>(value);  // "V4V6"
    return name.empty() || value == IPType::UNKNOWN ? "" : "IP" + toLower(name);
}

std::string textOf(AuthType value) {
    return value == AuthType::NONE ? "none" : textOf<AuthType>(value);
}

}  // namespace

template <typename Value>
const Words& wordsOf() {
    static const Words kWords = [] {
        Words words;
        for (std::uint64_t i = 0; i < 32; ++i) {
            const auto number = std::is_same_v<Value, ApnTypes> ? std::uint64_t{1} << i : i;
            if (const std::string name = textOf(static_cast<Value>(number)); !name.empty()) {
                words.names.push_back(name);
                words.numbers.push_back(number);
            }
        }
        return words;
    }();
    return kWords;
}

template const Words& wordsOf<TechType>();
template const Words& wordsOf<IPType>();
template const Words& wordsOf<AuthType>();
template const Words& wordsOf<vela::ApnClass>();
template const Words& wordsOf<ApnTypes>();

Json nameOf(std::uint64_t number, const Words& words) {
    for (std::size_t i = 0; i < words.names.size(); ++i) {
        if (words.numbers[i] == number) {
            return words.names[i];
        }
    }
    return number;
}

Json namesOf(std::uint64_t mask, const Words& bits) {
    Json list = Json::array();
    for (std::size_t i = 0; i < bits.names.size(); ++i) {
        if ((mask & bits.numbers[i]) != 0) {
            list.push_back(bits.names[i]);
            mask &= ~bits.numbers[i];
        }
    }
    if (mask != 0) {
        std::ostringstream rest;
        rest << "0x" << std::hex << mask;
        list.push_back(rest.str());
    }
    return list;
}

std::optional<std::size_t> placeOf(std::string_view text, const Names& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (sameLetters(text, words[i])) {
            return i;
        }
    }
    return std::nullopt;
}

std::size_t readOneOf(std::string_view option, std::string_view text, const Names& words) {
    if (const auto place = placeOf(text, words)) {
        return *place;
    }
    throw badUsage(std::string(option) + ": " + inQuotes(text) + " is none; use " +
                   alternatives(words));
}

TechType readTech(std::string_view option, std::string_view text) {
    const Words& words = wordsOf<TechType>();
    return static_cast<TechType>(words.numbers[readOneOf(option, text, words.names)]);
}

// The parser of options would take an empty text as 0, and 010 as 8.
std::string wrongNumber(const std::string& text, std::int64_t lowest, std::int64_t highest) {
    const std::string digits = text.substr(text.rfind('-', 0) == 0 ? 1 : 0);
    const bool isPadded = digits.size() > 1 && digits.front() == '0';
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool isNumber = result.ec == std::errc() && result.ptr == end && !isPadded;
    return isNumber && number >= lowest && number <= highest
               ? ""
               : inQuotes(text) + " must be a whole number from " + std::to_string(lowest) +
                     " to " + std::to_string(highest) + ", in decimal digits without leading zeros";
}

}  // namespace velactl
