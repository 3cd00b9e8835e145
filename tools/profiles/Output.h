// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "profiles/ProfileRecord.h"

namespace velactl {

/** Columns of text. */
class Table {
  public:
    /** One more, with as many cells as the others; one in which every cell is empty is left out. Of
     * columns that do not fit those of the highest rank are left out first, and named by their
     * keys; those of rank 0 stay. */
    void add(const std::string& heading, Names cells, int rank = 0, const std::string& key = "");

    /** `indent` spaces stand before each line, of which none is wider than `width`; 0: any may. The
     * last lines name what was left out. */
    void print(std::ostream& out, std::size_t indent = 2, std::size_t width = 0) const;

  private:
    struct Column {
        Names cells;  // the heading first
        std::size_t width;
        int rank;
        std::string key;
    };
    std::vector<Column> columns;
};

/** What --columns can name. */
Names columnNames();

/** The columns named in a comma list, as --columns takes it: fields by key or option, "technology",
 * "index". Throws ToolError that lists them. */
std::vector<ProfileField> readColumns(std::string_view option, std::string_view text);

/** One row per profile; with all columns, as far as they fit, when none are chosen. */
Table profileTable(const ProfileRecords& records, bool showSecrets,
                   const std::vector<ProfileField>& chosen = {});

/** How answers are given. */
struct OutputOptions {
    bool json = false;
    bool showSecrets = false;
    /** The terminal's, for tables; 0: none, or unlimited. */
    std::size_t width = 0;
    /** Those of tables of profiles, from readColumns(); empty: all. */
    std::vector<ProfileField> columns;
};

/**
 * Where a verb's answer goes: text as it comes, or, with --json, one document at the end. A verb
 * tells both; what is not asked for is dropped. Documents come with passwords masked().
 */
class Output {
  public:
    /** The options must outlive this object. */
    Output(std::ostream& out, std::ostream& err, const OutputOptions& options)
        : out(out), err(err), options(options) {}

    bool isText() const { return !options.json; }
    bool showSecrets() const { return options.showSecrets; }

    /** The stream of text answers; use it only when isText(). */
    std::ostream& text() { return out; }

    void line(std::string_view text = {});

    /** In text only. */
    void table(const Table& table);

    /** A heading and the table below it. */
    void profiles(std::string_view heading, const ProfileRecords& records);

    /** One indented line per change; "nothing" when there is none. */
    void changes(const Json& changes);

    /** The JSON answer. */
    Json& document() { return answer; }

    /** Prints one more item of the answer's list `key` now: of a list that is too long to be kept.
     * All items of one list follow each other, and the rest of the answer follows at the end. */
    void listed(std::string_view key, const Json& item);

    /** Aside of the answer, on the error stream, in both forms. */
    void note(std::string_view text);

    /** Prints the JSON document, if that is the form. */
    void finish();

    Json toJson(const ProfileRecords& records) const {
        return velactl::toJson(records, showSecrets());
    }

  private:
    std::ostream& out;
    std::ostream& err;
    const OutputOptions& options;
    Json answer = Json::object();
    std::string openList;  // the list of listed() that has no end yet
};

/** How far long work has come, on one line of a terminal, which it leaves empty at the end. */
class Progress {
  public:
    /** `columns` is the terminal's width; 0: nobody watches. */
    Progress(std::ostream& out, std::size_t columns, std::size_t total)
        : out(out), columns(columns), total(std::max<std::size_t>(total, 1)) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    /** Empties the line for something else; what was there comes back with the next one. */
    void clear();

    /** One more is being worked on, or number `number` of all. */
    void next(const std::string& what) { moveTo(done + 1, what); }
    void moveTo(std::size_t number, const std::string& what);

  private:
    std::ostream& out;
    const std::size_t columns;
    const std::size_t total;
    std::size_t done = 0;
};

/** A log or dump line of the library with the password in it masked. What cannot be told apart from
 * the password is masked with it. */
std::string withoutPassword(std::string_view line);

}  // namespace velactl
