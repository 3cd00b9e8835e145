// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct XML_ParserStruct;

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

/**
 * Reads XML piece by piece, in memory that does not grow with it, whatever it holds: the nesting,
 * the length of a tag and the number of different names have limits. Document types are refused,
 * and with them entities that would expand. What is handed on is UTF-8.
 */
class XmlReader {
  public:
    /** `name` is the document's, for messages; `take`, which may throw, gets what it holds. */
    XmlReader(std::string name, std::function<void(const XmlItem&)> take);
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    /** The next bytes; none: there are no more. Throws ToolError with line and column of what is
     * wrong. */
    void feed(std::string_view bytes);

  private:
    template <typename Action>
    static void guarded(void* data, Action action);

    void begin(const std::string& element, const char** attributes);
    void declare(const char* encoding);
    void know(const std::string& word);
    std::size_t line() const;
    std::string place() const;
    std::string reason() const;
    bool isForeignByte() const;

    const std::string name;
    const std::function<void(const XmlItem&)> take;
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_ParserStruct*)> parser;
    std::string start;     // the first bytes
    std::string declared;  // encoding
    std::size_t depth = 0;
    std::set<std::string> names;
    std::size_t unanswered = 0;  // bytes since the parser last told something
    std::string failure;         // the first of a callback
};

}  // namespace velactl
