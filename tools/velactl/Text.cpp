// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <utility>

namespace velactl {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

template <std::size_t Count>
bool contains(const std::array<Range, Count>& ranges, char32_t letter) {
    return std::any_of(ranges.begin(), ranges.end(), [letter](const Range& range) {
        return letter >= range.first && letter <= range.last;
    });
}

// Control characters, and those that turn the direction of writing.
constexpr std::array<Range, 6> kUnprintable{{{0, 0x1F},
                                             {0x7F, 0x9F},
                                             {0x200B, 0x200F},
                                             {0x2028, 0x202E},
                                             {0x2060, 0x206F},
                                             {0xFEFF, 0xFEFF}}};

constexpr std::array<Range, 7> kTwoColumns{{{0x1100, 0x115F},
                                            {0x2E80, 0xA4CF},
                                            {0xAC00, 0xD7A3},
                                            {0xF900, 0xFAFF},
                                            {0xFE30, 0xFE6F},
                                            {0xFF00, 0xFF60},
                                            {0xFFE0, 0xFFE6}}};

/** One decoded character; `size` 0 when the bytes are not UTF-8. */
struct Letter {
    char32_t value = 0;
    std::size_t size = 0;
};

std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
}

bool isLegal(char32_t value, std::size_t size) {
    constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    return value >= kSmallest[size] && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

Letter decode(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = sequenceLength(lead);
    if (size == 1) {
        return {lead, 1};
    }
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size) {
        return {};
    }
    char32_t value = lead & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0U) != 0x80U) {
            return {};
        }
        value = (value << 6U) | (byte & 0x3FU);
    }
    return isLegal(value, size) ? Letter{value, size} : Letter{};
}

template <typename Visit>
void forEachLetter(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const Letter letter = decode(text);
        const std::size_t size = std::max<std::size_t>(letter.size, 1);
        visit(letter, text.substr(0, size));
        text.remove_prefix(size);
    }
}

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
}

}  // namespace

bool isUtf8(std::string_view text) {
    bool valid = true;
    forEachLetter(text, [&](Letter letter, std::string_view /*bytes*/) {
        valid = valid && letter.size != 0;
    });
    return valid;
}

std::string printable(std::string_view text) {
    std::string result;
    forEachLetter(text, [&](Letter letter, std::string_view bytes) {
        if (letter.size != 0 && !contains(kUnprintable, letter.value)) {
            result += bytes;
            return;
        }
        for (const char byte : bytes) {
            result += "\\x" + hex(std::string_view(&byte, 1));
        }
    });
    return result;
}

std::string inQuotes(std::string_view text) {
    return '"' + printable(text) + '"';
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    forEachLetter(text, [&](Letter letter, std::string_view /*bytes*/) {
        width += contains(kTwoColumns, letter.value) ? 2U : 1U;
    });
    return width;
}

std::string fitting(std::string_view text, std::size_t columns) {
    std::string result;
    std::size_t width = 0;
    forEachLetter(text, [&](Letter letter, std::string_view bytes) {
        width += contains(kTwoColumns, letter.value) ? 2U : 1U;
        if (width <= columns) {
            result += bytes;
        }
    });
    return result;
}

std::string hex(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string result;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        result += kDigits[value >> 4U];
        result += kDigits[value & 0xFU];
    }
    return result;
}

std::string toLower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

bool sameLetters(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lower(a) == lower(b); });
}

std::string_view trim(std::string_view text) {
    constexpr std::string_view kBlank = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        parts.emplace_back(trim(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::string join(const std::vector<std::string>& parts, std::string_view separator) {
    std::string result;
    for (const std::string& part : parts) {
        result += &part == parts.data() ? "" : separator;
        result += part;
    }
    return result;
}

std::string alternatives(const std::vector<std::string>& words) {
    if (words.size() < 2) {
        return words.empty() ? "" : words.front();
    }
    return join({words.begin(), std::prev(words.end())}, ", ") + " or " + words.back();
}

std::string grouped(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t place = digits.size(); place > 3;) {
        place -= 3;
        digits.insert(place, ",");
    }
    return digits;
}

std::string counted(std::size_t number, std::string_view noun) {
    std::string text = grouped(number) + ' ' + std::string(noun);
    if (number == 1) {
        return text;
    }
    if (text.back() == 'y') {
        text.pop_back();
        return text + "ies";
    }
    return text + 's';
}

}  // namespace velactl
