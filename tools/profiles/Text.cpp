// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace velactl {

namespace {

using Range = std::pair<char32_t, char32_t>;

// Control characters, and those that turn the direction of writing.
constexpr Range kUnprintable[]{{0, 0x1F},        {0x7F, 0x9F},     {0x200B, 0x200F},
                               {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}};

constexpr Range kTwoColumns[]{{0x1100, 0x115F}, {0x2E80, 0xA4CF}, {0xAC00, 0xD7A3},
                              {0xF900, 0xFAFF}, {0xFE30, 0xFE6F}, {0xFF00, 0xFF60},
                              {0xFFE0, 0xFFE6}};

/** One character, or a byte that belongs to none. */
struct Letter {
    std::string_view bytes;
    bool isValid = false;
    char32_t value = 0;

    template <std::size_t Count>
    bool isIn(const Range (&ranges)[Count]) const {
        return std::any_of(std::begin(ranges), std::end(ranges), [this](const Range& range) {
            return value >= range.first && value <= range.second;
        });
    }
    std::size_t width() const { return isIn(kTwoColumns) ? 2 : 1; }
};

Letter firstOf(std::string_view text) {
    constexpr char32_t kSmallest[]{0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    bool isLegal = (lead & 0xC0U) != 0x80U && lead < 0xF5 && text.size() >= size;
    char32_t value = size == 1 ? lead : lead & (0x7FU >> size);
    for (std::size_t i = 1; isLegal && i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        isLegal = (byte & 0xC0U) == 0x80U;
        value = (value << 6U) | (byte & 0x3FU);
    }
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    isLegal = isLegal && value >= kSmallest[size] && value <= 0x10FFFF && !isSurrogate;
    return isLegal ? Letter{text.substr(0, size), true, value} : Letter{text.substr(0, 1)};
}

std::vector<Letter> lettersOf(std::string_view text) {
    std::vector<Letter> letters;
    while (!text.empty()) {
        letters.push_back(firstOf(text));
        text.remove_prefix(letters.back().bytes.size());
    }
    return letters;
}

}  // namespace

bool isUtf8(std::string_view text) {
    const auto letters = lettersOf(text);
    return std::all_of(letters.begin(), letters.end(),
                       [](const Letter& letter) { return letter.isValid; });
}

std::string printable(std::string_view text) {
    std::string result;
    for (const Letter& letter : lettersOf(text)) {
        if (letter.isValid && !letter.isIn(kUnprintable)) {
            result += letter.bytes;
            continue;
        }
        for (const char byte : letter.bytes) {
            result += "\\x" + hex(std::string_view(&byte, 1));
        }
    }
    return result;
}

std::string inQuotes(std::string_view text) {
    return '"' + printable(text) + '"';
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (const Letter& letter : lettersOf(text)) {
        width += letter.width();
    }
    return width;
}

std::string fitting(std::string_view text, std::size_t columns) {
    std::string result;
    std::size_t width = 0;
    for (const Letter& letter : lettersOf(text)) {
        width += letter.width();
        result += width <= columns ? letter.bytes : "";
    }
    return result;
}

std::string wrapped(std::string text, std::size_t columns) {
    constexpr std::size_t kFurther = 4;
    constexpr std::size_t kNarrowest = 3;  // where the widest letter fits beside the margin
    std::string lines;
    std::size_t start = text.find_first_not_of(' ');
    const std::size_t margin = std::min(start + kFurther, columns / 2);
    while (columns >= kNarrowest && displayWidth(text) > columns) {
        const std::size_t fits = fitting(text, columns).size();
        const std::size_t blank = text.rfind(' ', fits);
        const std::size_t end = blank != std::string::npos && blank > start ? blank : fits;
        lines += text.substr(0, end) + '\n';
        text = std::string(margin, ' ').append(trim(text.substr(end)));
        start = margin;
    }
    return lines + text;
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
    for (char& letter : result) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
    }
    return result;
}

bool sameLetters(std::string_view left, std::string_view right) {
    return toLower(left) == toLower(right);
}

std::string_view trim(std::string_view text) {
    constexpr std::string_view kBlank = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(kBlank), text.size()));
    return text.substr(0, text.find_last_not_of(kBlank) + 1);
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

std::string replaced(std::string text, char from, char by) {
    std::replace(text.begin(), text.end(), from, by);
    return text;
}

std::string counted(std::size_t number, std::string_view noun) {
    const std::string one = std::to_string(number) + ' ' + std::string(noun);
    const std::size_t stem = one.size() - 1;
    return number == 1 ? one : one[stem] == 'y' ? one.substr(0, stem) + "ies" : one + 's';
}

void readBlocks(const std::string& path, const std::string& what,
                const std::function<void(std::string_view)>& take) {
    if (std::error_code error; std::filesystem::is_directory(path, error)) {
        throw refused(path + ": is a directory; " + what + " is needed");
    }
    std::ifstream in(path == "-" ? "/dev/stdin" : path, std::ios::binary);
    std::array<char, 65536> block{};
    // Not by iterators, which throw when the disk fails; and no file tells how long a stream is.
    while (in.read(block.data(), block.size()) || in.gcount() > 0) {
        take({block.data(), static_cast<std::size_t>(in.gcount())});
    }
    if (!in.is_open() || in.bad()) {
        throw refused(path + ": cannot be read: " + std::strerror(errno));
    }
}

std::string readText(const std::string& path, std::size_t limit, const std::string& what) {
    std::string text;
    readBlocks(path, what, [&](std::string_view block) {
        text.append(block);
        if (text.size() > limit) {
            throw refused(path + ": larger than " + std::to_string(limit >> 20U) +
                          " MiB, so hardly " + what);
        }
    });
    return text;
}

}  // namespace velactl
