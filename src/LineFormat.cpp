// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "LineFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace vela {
namespace {

/** Fills a line; what does not fit is dropped. */
class Line {
  public:
    Line(char* begin, std::size_t room) : begin(begin), position(begin), end(begin + room) {}

    void add(std::string_view text) {
        const auto left = static_cast<std::size_t>(end - position);
        position = std::copy_n(text.data(), std::min(text.size(), left), position);
    }

    template <typename Number>
    void add(Number number, int base) {
        std::array<char, 20> digits;  // of the longest, and its sign
        const auto last = std::to_chars(digits.data(), digits.data() + digits.size(), number, base);
        add({digits.data(), static_cast<std::size_t>(last.ptr - digits.data())});
    }

    std::string_view text() const { return {begin, static_cast<std::size_t>(position - begin)}; }

  private:
    char* const begin;
    char* position;
    char* const end;
};

/** False at a conversion that is not one of the usual. */
bool addUsual(Line& line, const char* format, va_list arguments) {
    while (const char* percent = std::strchr(format, '%')) {
        line.add({format, static_cast<std::size_t>(percent - format)});
        format = percent + 2;
        switch (percent[1]) {
            case 's': {
                const char* text = va_arg(arguments, const char*);
                if (text == nullptr) {
                    return false;
                }
                line.add(text);
                break;
            }
            case 'p': {
                const void* pointer = va_arg(arguments, const void*);
                if (pointer == nullptr) {
                    return false;  // which C libraries write differently
                }
                line.add("0x");
                line.add(reinterpret_cast<std::uintptr_t>(pointer), 16);
                break;
            }
            case 'd':
                line.add(va_arg(arguments, int), 10);
                break;
            case 'x':
                line.add(va_arg(arguments, unsigned int), 16);
                break;
            case 'l':
                if (*format++ != 'u') {
                    return false;
                }
                line.add(va_arg(arguments, unsigned long), 10);
                break;
            default:
                return false;
        }
    }
    line.add(format);
    return true;
}

}  // namespace

std::string_view formatLine(char* line, std::size_t room, const char* format, va_list arguments) {
    Line usual(line, room - 1);
    va_list again;
    va_copy(again, arguments);
    const bool isUsual = addUsual(usual, format, again);
    va_end(again);
    if (isUsual) {
        return usual.text();
    }
    const int length = std::vsnprintf(line, room, format, arguments);
    return {line, static_cast<std::size_t>(std::clamp(length, 0, static_cast<int>(room) - 1))};
}

}  // namespace vela
