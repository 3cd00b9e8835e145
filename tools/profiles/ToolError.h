// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velactl {

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
