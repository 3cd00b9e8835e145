// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velactl {

/** Names and values of an element's attributes, in the file's order. */
using Attributes = std::vector<std::pair<std::string, std::string>>;

/** Takes values out of attributes; what cannot be read as asked becomes a note. */
class AttributeReader {
  public:
    /** Both must outlive the reader. */
    AttributeReader(const Attributes& attributes, std::vector<std::string>& notes)
        : attributes(attributes), notes(notes) {}

    /** The first value of that name; empty when there is none. */
    std::string_view text(std::string_view name) const;

    /** An attribute as text for messages: authtype "7" */
    std::string cite(std::string_view name) const;

    /** A decimal number within the limits; empty also without the attribute. */
    std::optional<long> number(std::string_view name, long least, long most);

    /** Only the word "true" counts. */
    bool flag(std::string_view name, bool ifAbsent);

    void note(std::string text) { notes.push_back(std::move(text)); }

  private:
    const Attributes& attributes;
    std::vector<std::string>& notes;
};

}  // namespace velactl
