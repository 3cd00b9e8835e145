// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/Words.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <type_traits>

#include "profiles/Text.h"
#include "profiles/ToolError.h"

namespace velactl {

template <typename Value>
const Words& wordsOf() {
    static const Words kTechnologies{{"3GPP", "3GPP2"}, {0, 1}};
    static const Words kIPTypes{{"IPv4", "IPv6", "IPv4v6"}, {1, 2, 3}};
    static const Words kAuthTypes{{"none", "PAP", "CHAP", "PAP_CHAP"}, {0, 1, 2, 3}};
    static const Words kClasses{{"IMS", "ADMN", "INET", "APP"}, {1, 2, 3, 4}};
    static const Words kTypes{{"default", "mms", "supl", "dun", "hipri", "fota", "ims", "cbs", "ia",
                               "emergency", "mcx", "xcap"},
                              {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048}};
    return std::is_same_v<Value, vela::TechType>   ? kTechnologies
           : std::is_same_v<Value, vela::IPType>   ? kIPTypes
           : std::is_same_v<Value, vela::AuthType> ? kAuthTypes
           : std::is_same_v<Value, vela::ApnClass> ? kClasses
                                                   : kTypes;
}

template const Words& wordsOf<vela::TechType>();
template const Words& wordsOf<vela::IPType>();
template const Words& wordsOf<vela::AuthType>();
template const Words& wordsOf<vela::ApnClass>();
template const Words& wordsOf<vela::ApnTypes>();

Json nameOf(std::uint64_t number, const Words& words) {
    const auto found = std::find(words.numbers.begin(), words.numbers.end(), number);
    const auto place = static_cast<std::size_t>(found - words.numbers.begin());
    return place < words.names.size() ? Json(words.names[place]) : Json(number);
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

vela::TechType readTech(std::string_view option, std::string_view text) {
    const Words& words = wordsOf<vela::TechType>();
    return static_cast<vela::TechType>(words.numbers[readOneOf(option, text, words.names)]);
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
