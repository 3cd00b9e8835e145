// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "profiles/Output.h"

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

/** "line 12 "internet" (Carrier)" */
std::string entryTitle(std::size_t line, const std::string& apnName, const std::string& carrier);

/**
 * One `apn` element of an operator's file, in the library's words. Nothing of it gets lost: what
 * the library has no words for is named in `notes` or `notSent`, and what cannot be used at all has
 * a refusal. A plain value.
 */
struct OperatorEntry {
    /** Line in its file, from 1. */
    std::size_t line = 0;
    std::string carrier;
    /** Empty, with a refusal, when the file's are not made of 3, and 2 or 3 digits. */
    std::string mcc;
    std::string mnc;
    /** "spn:name"; empty: of the host operator. */
    std::string mvno;

    /** All that it asks of a profile but types and class, which are not one profile's affair:
     * several entries may share an APN name, and a class has one owner. */
    Json fields = Json::object();
    /** `ApnTypes` bits. */
    unsigned int types = 0;
    /** In words; null: none. */
    Json apnClass = {};
    /** Why this can be no profile; empty when it can. */
    std::string refusal;
    /** What is odd, or was left out or guessed. */
    Names notes;
    /** Attributes that say something for which a profile has no field. */
    Names notSent;

    bool isUsable() const { return refusal.empty(); }
    std::string apnName() const { return fields.value("apn", ""); }

    /** As one profile, with types and class or without. */
    Json wanted(bool hasTypes, bool hasClass) const;
    vela::ProfileParams profile(bool hasTypes, bool hasClass) const {
        return paramsOf(wanted(hasTypes, hasClass));
    }
    std::string title() const { return entryTitle(line, apnName(), carrier); }
    static OperatorEntry read(const Attributes& attributes, std::size_t line);
};

/** An operator network: mobile country code and mobile network code. */
struct Plmn {
    std::string mcc;
    std::string mnc;

    /** Reads MCCMNC, "310260" or "26201", also as "310/260" and "310-260"; throws ToolError. */
    static Plmn parse(std::string_view text);

    std::string text() const { return mcc + '/' + mnc; }
};

/** One operator's entries, or those of one of its virtual operators. */
struct Operator {
    Plmn plmn;
    /** "gid:6D38"; empty: the host operator. */
    std::string mvno;
    /** In the file's order. */
    std::vector<OperatorEntry> entries;

    /** "310/260", "310/260 gid:6D38" */
    std::string name() const;
    /** The first carrier name. */
    std::string carrier() const { return entries.empty() ? "" : entries.front().carrier; }
    /** The first usable entry with all these types that is not disabled; null: none. */
    const OperatorEntry* find(unsigned int types) const;
    /** The one whose settings the attach uses: of type ia, else default; null: none. */
    const OperatorEntry* attachEntry() const;
    /** The entries that can be no profile, and why; some, when there are many. */
    std::string refusals() const;
};

/** The APN settings of many operators, as Android ships them. What it takes of memory does not grow
 * with the file; the entries of one operator are what callers get at once. */
class OperatorFile {
  public:
    /** Reads a file, "-" the standard input; throws ToolError that names file, line and column of
     * what is wrong. */
    static OperatorFile load(const std::string& path, Progress* progress = nullptr);

    /** Reads text; `name` stands for the file. Any bytes are safe. */
    static OperatorFile parse(std::string_view text, const std::string& name);

    const std::string& name() const { return fileName; }
    std::size_t entryCount() const;
    /** Virtual operators included. */
    std::size_t operatorCount() const;

    /** What is odd beside the entries, with lines. */
    const std::vector<std::string>& oddities() const { return odd; }

    /** Hands out every operator and virtual operator, in the order of their first entries. */
    void forEach(const std::function<void(const Operator&)>& visit) const;

    /** Hands out the entries that belong to no operator. */
    void forEachStray(const std::function<void(const OperatorEntry&)>& visit) const;

    /** What is odd and the entries that belong to no operator, some of it, to end an error. */
    std::string leftOut() const;

    /** The entries of an operator, or with `mvno` ("TYPE:DATA") of a virtual one. When it is not in
     * the file: a ToolError that tells what is. */
    Operator find(const Plmn& plmn, const std::string& mvno) const;

  private:
    class Database;

    /** `readInto` has the bytes of a file read into what it is given. */
    OperatorFile(const std::string& name, const std::function<void(const XmlFeed&)>& readInto);
    std::string nearest(const Plmn& plmn) const;

    std::string fileName;
    std::shared_ptr<Database> database;
    std::vector<std::string> odd;
};

}  // namespace velactl
