// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Texts for people, and the errors that bring them. What comes from a modem, an operator's file or
// an argument may be any bytes.
#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velactl {

bool isUtf8(std::string_view text);

/** The text with everything that a terminal might obey, or that is not UTF-8, as "\xNN". */
std::string printable(std::string_view text);

/** printable(), in double quotes. */
std::string inQuotes(std::string_view text);

/** Columns that a printable text takes on a terminal. */
std::size_t displayWidth(std::string_view text);

/** As much of a printable text as fits into so many columns. */
std::string fitting(std::string_view text, std::size_t columns);

/** A printable text in lines of no more columns, parted at blanks where there are any; what goes on
 * stands further right. 0: in one line. */
std::string wrapped(std::string text, std::size_t columns);

/** The bytes as hexadecimal digits. */
std::string hex(std::string_view bytes);

/** ASCII letters only; so are the comparisons below. */
std::string toLower(std::string_view text);
bool sameLetters(std::string_view left, std::string_view right);

/** Without spaces and tabs at both ends. */
std::string_view trim(std::string_view text);

/** The trimmed parts between separators; none for an empty text. */
std::vector<std::string> split(std::string_view text, char separator);

std::string join(const std::vector<std::string>& parts, std::string_view separator);

/** "a, b or c" */
std::string alternatives(const std::vector<std::string>& words);

/** A text with another letter in place of each of one kind. */
std::string replaced(std::string text, char from, char by);

/** "1 profile", "2 profiles"; `noun` forms its plural with an s, or "y" to "ies". */
std::string counted(std::size_t number, std::string_view noun);

/** Hands out a file or a stream piece by piece; "-" is the standard input. `what` names it for
 * people, as "a scenario". Throws ToolError. */
void readBlocks(const std::string& path, const std::string& what,
                const std::function<void(std::string_view block)>& take);

/** All that a file or a stream holds, up to `limit` bytes; otherwise as readBlocks(). */
std::string readText(const std::string& path, std::size_t limit, const std::string& what);

/** Exit statuses of the tool. */
enum class Exit : int {
    Done = 0,
    Refused = 1,  // refused, failed or not found
    Usage = 2,    // the command line makes no sense
};

/** Ends a verb: one line that says what is wrong and what would be right. */
class ToolError : public std::runtime_error {
  public:
    ToolError(Exit exit, const std::string& message, std::size_t line = 0)
        : std::runtime_error(message), exit(exit), place(line) {}

    Exit status() const { return exit; }

    /** The line of a file where it lies; 0: in none. */
    std::size_t line() const { return place; }

  private:
    Exit exit;
    std::size_t place;
};

inline ToolError refused(const std::string& message) {
    return {Exit::Refused, message};
}
inline ToolError badUsage(const std::string& message) {
    return {Exit::Usage, message};
}

/** The same error, with the place in a file where it lies. */
inline ToolError atLine(std::string_view file, std::size_t line, const ToolError& error) {
    return {error.status(), std::string(file) + ":" + std::to_string(line) + ": " + error.what(),
            line};
}

}  // namespace velactl
