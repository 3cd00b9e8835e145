// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "operators/OperatorFile.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

/** The first of many, each once, and how many more there are: "3, 4, 6, 8, 9 and 12 more". */
class Some {
  public:
    void add(const std::string& item) {
        constexpr std::size_t kSome = 5;
        if (item != std::exchange(last, item) && total++ < kSome) {
            first.push_back(item);
        }
    }

    bool isOne() const { return total == 1; }

    std::string text(const char* separator = ", ") const {
        const std::size_t others = total - first.size();
        return join(first, separator) +
               (others == 0 ? "" : " and " + std::to_string(others) + " more");
    }

  private:
    Names first;
    std::string last;
    std::size_t total = 0;
};

using Row = Names;

// Entries of no operator have no codes. Attributes are JSON.
constexpr const char* kSetUp[] = {
    "PRAGMA journal_mode = OFF",
    "PRAGMA cache_size = -4096",
    "BEGIN",
    ("CREATE TABLE entry (mcc TEXT, mnc TEXT, mvno TEXT COLLATE NOCASE, line INTEGER, "
     "carrier TEXT, attributes TEXT)"),
};
/** Of each operator its first entry. */
const std::string kOperators =
    "(SELECT mcc, mnc, mvno, carrier, min(rowid) AS first FROM entry WHERE mcc <> '' "
    "GROUP BY mcc, mnc, mvno)";

}  // namespace

/** A database that ends with this object, in memory that does not grow with it: what is too much
 * for that goes into a temporary file without a name, which nobody else can open. */
class OperatorFile::Database {
  public:
    Database() {
        sqlite3* opened = nullptr;
        const int code = sqlite3_open("", &opened);
        connection.reset(opened, sqlite3_close);
        check(code == SQLITE_OK);
        for (const char* sql : kSetUp) {
            run(sql, {});
        }
    }

    /** Runs a statement, with values for its parameters, and hands out the rows. */
    void run(const std::string& sql, const Row& values,
             const std::function<void(const Row&)>& visit = {}) {
        sqlite3_stmt* made = nullptr;
        check(sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &made, nullptr) == SQLITE_OK);
        const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(made,
                                                                              sqlite3_finalize);
        for (std::size_t i = 0; i < values.size(); ++i) {
            check(sqlite3_bind_text(made, static_cast<int>(i) + 1, values[i].data(),
                                    static_cast<int>(values[i].size()),
                                    SQLITE_STATIC) == SQLITE_OK);
        }
        int code = SQLITE_OK;
        while ((code = sqlite3_step(made)) == SQLITE_ROW) {
            Row row;
            for (int column = 0; column < sqlite3_column_count(made); ++column) {
                const void* const text = sqlite3_column_text(made, column);
                const auto size = sqlite3_column_bytes(made, column);
                row.emplace_back(static_cast<const char*>(text), static_cast<std::size_t>(size));
            }
            if (visit) {
                visit(row);
            }
        }
        check(code == SQLITE_DONE);
    }

    std::size_t count(const std::string& table) {
        std::size_t value = 0;
        run("SELECT count(*) FROM " + table, {},
            [&](const Row& row) { value = std::stoul(row[0]); });
        return value;
    }

    void forEachEntry(const Row& owner, const std::function<void(const OperatorEntry&)>& visit) {
        run("SELECT line, attributes FROM entry WHERE mcc = ?1 AND mnc = ?2 AND mvno = ?3 "
            "ORDER BY rowid",
            owner, [&](const Row& row) {
                visit(
                    OperatorEntry::read(Json::parse(row[1]).get<Attributes>(), std::stoul(row[0])));
            });
    }

  private:
    void check(bool isDone) const {
        if (!isDone) {
            throw refused(std::string("no temporary file: ") + sqlite3_errmsg(connection.get()) +
                          "; TMPDIR can name another folder");
        }
    }

    std::shared_ptr<sqlite3> connection;
};

Plmn Plmn::parse(std::string_view text) {
    std::string digits(text);
    if (digits.size() > 3 && (digits[3] == '/' || digits[3] == '-')) {
        digits.erase(3, 1);
    }
    const bool isNumber = digits.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber || digits.size() < 5 || digits.size() > 6) {
        throw badUsage(
            "--plmn: " + inQuotes(text) +
            " is not a network; write MCC (3 digits) and MNC (2 or 3 digits), as 26201 or "
            "310/260");
    }
    return {digits.substr(0, 3), digits.substr(3)};
}

std::string Operator::name() const {
    return plmn.text() + (mvno.empty() ? "" : ' ' + printable(mvno));
}

const OperatorEntry* Operator::find(unsigned int types) const {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [types](const OperatorEntry& entry) {
            return entry.isUsable() && !entry.fields.contains("disabled") &&
                   (entry.types & types) == types;
        });
    return found == entries.end() ? nullptr : &*found;
}

const OperatorEntry* Operator::attachEntry() const {
    const OperatorEntry* const entry = find(toMask(vela::ApnTypes::IA));
    return entry != nullptr ? entry : find(toMask(vela::ApnTypes::DEFAULT));
}

std::string Operator::refusals() const {
    Some refused;
    for (const OperatorEntry& entry : entries) {
        if (!entry.isUsable()) {
            refused.add(entry.title() + ": " + entry.refusal);
        }
    }
    return refused.text("; ");
}

OperatorFile::OperatorFile(const std::string& name,
                           const std::function<void(const XmlFeed&)>& readInto)
    : fileName(name), database(std::make_shared<Database>()) {
    std::map<std::string, Some> ignored;
    Names kinds;  // of what is ignored, in the order of their first lines
    const XmlFeed feed = readXml(name, [&](const XmlItem& item) {
        const bool isText = item.name.empty();
        if (item.depth == 0 && item.name != "apns") {
            throw refused("the root element is <" + printable(item.name) +
                          ">; an operator file has <apns>");
        }
        if (item.depth == 1 && item.name == "apn") {
            const OperatorEntry entry = OperatorEntry::read(item.attributes, item.line);
            database->run("INSERT INTO entry VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
                          {entry.mcc, entry.mnc, entry.mcc.empty() ? "" : entry.mvno,
                           std::to_string(item.line), entry.carrier, Json(item.attributes).dump()});
        } else if (isText || item.depth != 0) {
            const std::string kind = isText ? "text between the elements"
                                            : "element <" + printable(item.name) + '>' +
                                                  (item.depth > 1 ? " inside another" : "");
            if (ignored.count(kind) == 0) {
                kinds.push_back(kind);
            }
            ignored[kind].add(std::to_string(item.line));
        }
    });
    readInto(feed);
    feed({});
    database->run("CREATE INDEX by_operator ON entry (mcc, mnc, mvno)", {});
    for (const std::string& kind : kinds) {
        const Some& lines = ignored[kind];
        odd.push_back((lines.isOne() ? "line " : "lines ") + lines.text() + ": " + kind +
                      " left out");
    }
}

OperatorFile OperatorFile::load(const std::string& path, Progress* progress) {
    constexpr std::uintmax_t kPercent = 100;
    std::error_code unsized;
    const std::uintmax_t size = std::filesystem::file_size(path, unsized);
    std::uintmax_t done = 0;
    return {path, [&](const XmlFeed& feed) {
                readBlocks(path, "an operator file", [&](std::string_view block) {
                    feed(block);
                    done += block.size();
                    if (progress != nullptr && !unsized && size != 0) {
                        progress->moveTo(done * kPercent / size,
                                         "% of " + printable(path) + " read");
                    }
                });
            }};
}

OperatorFile OperatorFile::parse(std::string_view text, const std::string& name) {
    return {name, [text](const XmlFeed& feed) {
                if (!text.empty()) {
                    feed(text);
                }
            }};
}

std::size_t OperatorFile::entryCount() const {
    return database->count("entry");
}

std::size_t OperatorFile::operatorCount() const {
    return database->count(kOperators);
}

void OperatorFile::forEach(const std::function<void(const Operator&)>& visit) const {
    database->run("SELECT mcc, mnc, mvno FROM " + kOperators + " ORDER BY first", {},
                  [&](const Row& row) {
                      visit(find({row[0], row[1]}, row[2]));
                  });
}

void OperatorFile::forEachStray(const std::function<void(const OperatorEntry&)>& visit) const {
    database->forEachEntry({"", "", ""}, visit);
}

std::string OperatorFile::leftOut() const {
    Some all;
    for (const std::string& each : odd) {
        all.add(each);
    }
    forEachStray(
        [&](const OperatorEntry& stray) { all.add(stray.title() + ": " + stray.refusal); });
    const std::string text = all.text("; ");
    return text.empty() ? "" : "; left out: " + text;
}

Operator OperatorFile::find(const Plmn& plmn, const std::string& mvno) const {
    if (!mvno.empty() && mvno.find(':') == std::string::npos) {
        throw badUsage("--mvno: " + inQuotes(mvno) +
                       " is not a virtual operator; write TYPE:DATA, as gid:BAE0 or spn:Example");
    }
    Operator result{plmn, mvno, {}};
    database->forEachEntry({plmn.mcc, plmn.mnc, mvno},
                           [&](const OperatorEntry& entry) { result.entries.push_back(entry); });
    if (result.entries.empty()) {
        throw refused(fileName + ": no operator " + result.name() + nearest(plmn) + leftOut());
    }
    result.mvno = result.entries.front().mvno;
    return result;
}

/** What the file holds instead of an operator: of the same network, of the same number in another
 * form, of a number that goes on with its digits, and then the nearest. */
std::string OperatorFile::nearest(const Plmn& plmn) const {
    Some names;
    database->run("SELECT mnc, mvno, carrier FROM " + kOperators +
                      " WHERE mcc = ?1 ORDER BY mnc <> ?2, "
                      "abs(mnc - ?2) <> 0, substr(mnc, 1, length(?2)) <> ?2, abs(mnc - ?2), first",
                  {plmn.mcc, plmn.mnc}, [&](const Row& row) {
                      const Operator each{{plmn.mcc, row[0]}, row[1], {}};
                      names.add(each.name() + " (" + printable(row[2]) + ')');
                  });
    const std::string text = names.text();
    return "; it holds " + counted(operatorCount(), "operator") +
           (text.empty() ? ", none of MCC " : ", of MCC ") + plmn.mcc +
           (text.empty() ? "" : ": " + text);
}

}  // namespace velactl
