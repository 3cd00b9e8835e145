// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velactl {

/** Names and values of an element's attributes, in the file's order. */
using Attributes = std::vector<std::pair<std::string, std::string>>;

/** The beginning of an element; or, without a name, text that is not only white space. */
struct XmlItem {
    std::size_t line;
    /** How many elements stand around it. */
    std::size_t depth;
    std::string name = {};
    Attributes attributes = {};
};

/** Takes the next bytes of a document; none: there are no more. Throws ToolError with line and
 * column of what is wrong. */
using XmlFeed = std::function<void(std::string_view bytes)>;

/**
 * Reads XML piece by piece, in memory that does not grow with it, whatever it holds: the nesting,
 * the length of a tag and the number of different names have limits. Document types are refused,
 * and with them entities that would expand. `take`, which may throw, gets what the document holds,
 * as UTF-8; `name` is the document's, for messages.
 */
XmlFeed readXml(const std::string& name, const std::function<void(const XmlItem&)>& take);

}  // namespace velactl
