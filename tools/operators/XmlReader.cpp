// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The XML of operator files.
#include "operators/OperatorFile.h"

#include <expat.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <set>

#include "profiles/Text.h"

namespace velactl {

namespace {

// Far beyond any operator file; each bounds something that the parser keeps.
constexpr std::size_t kMaxDepth = 100;
constexpr std::size_t kMaxNames = 1000;
constexpr std::size_t kMaxTag = 1U << 20U;

class XmlReader {
  public:
    XmlReader(const std::string& name, const std::function<void(const XmlItem&)>& take)
        : name(name), take(take), parser(XML_ParserCreate(nullptr), XML_ParserFree) {
        if (!parser) {
            throw std::bad_alloc();
        }
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(
            parser.get(),
            [](void* data, const char* element, const char** attributes) {
                guarded(data, [&](XmlReader& reader) { reader.begin(element, attributes); });
            },
            [](void* data, const char*) {
                guarded(data, [](XmlReader& reader) { --reader.depth; });
            });
        XML_SetCharacterDataHandler(parser.get(), [](void* data, const char* text, int size) {
            guarded(data, [&](XmlReader& reader) {
                if (!trim({text, static_cast<std::size_t>(size)}).empty()) {
                    reader.take({reader.line(), reader.depth});
                }
            });
        });
        XML_SetDefaultHandler(
            parser.get(), [](void* data, const char*, int) { guarded(data, [](XmlReader&) {}); });
        XML_SetXmlDeclHandler(parser.get(), [](void* data, const char*, const char* encoding, int) {
            guarded(data, [&](XmlReader& reader) { reader.declare(encoding); });
        });
        XML_SetStartDoctypeDeclHandler(
            parser.get(), [](void* data, const char*, const char*, const char*, int) {
                guarded(data, [](XmlReader&) {
                    throw refused("a document type is not read; an operator file has none");
                });
            });
    }

    void feed(std::string_view bytes) {
        constexpr std::size_t kBlock = 65536;
        constexpr std::size_t kStart = 3;
        start += bytes.substr(0, kStart - std::min(kStart, start.size()));
        const bool isLast = bytes.empty();
        do {
            const std::string_view block = bytes.substr(0, kBlock);
            bytes.remove_prefix(block.size());
            const XML_Status status = XML_Parse(parser.get(), block.data(),
                                                static_cast<int>(block.size()), isLast ? 1 : 0);
            if (!failure.empty() || status != XML_STATUS_OK) {
                throw refused(failure.empty() ? place() + reason() : failure);
            }
            unanswered += block.size();
            if (unanswered > kMaxTag) {
                throw refused(place() +
                              "a tag or comment of more than 1 MiB; an operator file has none");
            }
        } while (!bytes.empty());
    }

  private:
    /** No error may cross the parser: the first is kept, and the parser stopped. */
    template <typename Action>
    static void guarded(void* data, Action action) {
        auto& reader = *static_cast<XmlReader*>(data);
        reader.unanswered = 0;
        if (!reader.failure.empty()) {
            return;
        }
        try {
            action(reader);
        } catch (const std::exception& error) {
            reader.failure = reader.place() + error.what();
            XML_StopParser(reader.parser.get(), XML_FALSE);
        }
    }

    void begin(const std::string& element, const char** attributes) {
        XmlItem item{line(), depth++, element};
        names.insert(element);
        for (; *attributes != nullptr; attributes += 2) {
            names.insert(item.attributes.emplace_back(attributes[0], attributes[1]).first);
        }
        if (names.size() > kMaxNames) {
            throw refused("broken XML: more than " + std::to_string(kMaxNames) +
                          " different names of elements and attributes");
        }
        if (depth > kMaxDepth) {
            throw refused("broken XML: elements nested more than " + std::to_string(kMaxDepth) +
                          " deep");
        }
        take(item);
    }

    /** The parser itself would believe the declaration more than a mark of UTF-8. */
    void declare(const char* encoding) {
        declared = encoding == nullptr ? "" : encoding;
        if (start == "\xEF\xBB\xBF" && !declared.empty() && !sameLetters(declared, "UTF-8")) {
            throw refused("declares the encoding " + inQuotes(declared) +
                          ", but begins with the mark of UTF-8");
        }
    }

    std::size_t line() const { return XML_GetCurrentLineNumber(parser.get()); }

    std::string place() const {
        return name + ':' + std::to_string(line()) + ':' +
               std::to_string(XML_GetCurrentColumnNumber(parser.get()) + 1) + ": ";
    }

    std::string reason() const {
        const XML_Error error = XML_GetErrorCode(parser.get());
        if (error == XML_ERROR_NO_ELEMENTS) {
            return depth == 0 ? "no element; an operator file has <apns>"
                              : "broken XML: the file ends inside an element";
        }
        if (error == XML_ERROR_UNKNOWN_ENCODING) {
            return "encoding " + inQuotes(declared) +
                   " is not known; convert the file to UTF-8 (UTF-16, ISO-8859-1 and US-ASCII are "
                   "read, too)";
        }
        if (error == XML_ERROR_INCORRECT_ENCODING) {
            return "declares the encoding " + inQuotes(declared) +
                   ", but is written in another one";
        }
        return isForeignByte() ? "a byte that cannot stand there in " +
                                     inQuotes(declared.empty() ? "UTF-8" : declared) +
                                     "; convert the file to UTF-8, or declare its encoding"
                               : std::string("broken XML: ") + XML_ErrorString(error);
    }

    /** Whether what the parser stumbled over is beyond ASCII, in a file of single bytes. */
    bool isForeignByte() const {
        int offset = 0;
        int size = 0;
        const char* bytes = XML_GetInputContext(parser.get(), &offset, &size);
        const std::string mark = start.substr(0, 2);
        return bytes != nullptr && offset < size && mark != "\xFE\xFF" && mark != "\xFF\xFE" &&
               static_cast<unsigned char>(bytes[offset]) >= 0x80;
    }

    const std::string name;
    const std::function<void(const XmlItem&)> take;
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser;
    std::string start;     // the first bytes
    std::string declared;  // encoding
    std::size_t depth = 0;
    std::set<std::string> names;
    std::size_t unanswered = 0;  // bytes since the parser last told something
    std::string failure;         // the first of a callback
};

}  // namespace

XmlFeed readXml(const std::string& name, const std::function<void(const XmlItem&)>& take) {
    return [reader = std::make_shared<XmlReader>(name, take)](auto bytes) { reader->feed(bytes); };
}

}  // namespace velactl
