// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OperatorEntry.h"

namespace velactl {

/** An operator network: mobile country code and mobile network code. */
struct Plmn {
    std::string mcc;
    std::string mnc;

    /** Reads MCCMNC, "310260" or "26201", also as "310/260" and "310-260"; throws ToolError. */
    static Plmn parse(std::string_view text);

    std::string text() const { return mcc + '/' + mnc; }
    bool operator==(const Plmn&) const = default;
};

/** One operator's entries, or those of one of its virtual operators. */
struct Operator {
    Plmn plmn;
    std::string mvnoType;
    std::string mvnoData;
    /** In the file's order; owned by the file. */
    std::vector<const OperatorEntry*> entries;

    /** "310/260", "310/260 gid:6D38" */
    std::string name() const;
    /** The first carrier name. */
    std::string carrier() const { return entries.empty() ? "" : entries.front()->carrier; }
};

/** The APN settings of many operators, as Android ships them. */
class OperatorFile {
  public:
    /** Reads a file; throws ToolError that names file, line and column of what is wrong. */
    static OperatorFile load(const std::string& path);

    /** Reads text; `name` stands for the file. Any bytes are safe. */
    static OperatorFile parse(std::string_view text, const std::string& name);

    const std::string& name() const { return fileName; }
    const std::vector<OperatorEntry>& entries() const { return all; }

    /** What is odd beside the entries, with lines. */
    const std::vector<std::string>& oddities() const { return odd; }

    /** Every operator and virtual operator, in the order of their first entries. Valid while this
     * file lives and does not move. */
    std::vector<Operator> operators() const;

    /** The entries that belong to no operator. */
    std::vector<const OperatorEntry*> strays() const;

    /** The entries of an operator, or with `mvno` ("TYPE:DATA") of a virtual one. When it is not in
     * the file: a ToolError that tells what is. */
    Operator find(const Plmn& plmn, const std::string& mvno) const;

  private:
    std::string fileName;
    std::vector<OperatorEntry> all;
    std::vector<std::string> odd;
};

}  // namespace velactl
