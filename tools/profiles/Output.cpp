// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/Output.h"

#include <numeric>
#include <regex>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

constexpr std::size_t kGap = 2;

/** The end of what does not fit is no more than hinted at. */
std::string cut(const std::string& line, std::size_t width) {
    const bool isTooLong = width != 0 && displayWidth(line) > width;
    return isTooLong ? fitting(line, width - 1) + "…" : line;
}

/** All that a table of profiles can have. */
const std::vector<ProfileField>& allColumns() {
    static const std::vector<ProfileField> kColumns = [] {
        std::vector<ProfileField> columns{{"technology", "TECH", "", 0, {}},
                                          {"index", "INDEX", "", 0, {}}};
        columns.back().kind = ProfileField::Kind::Number;
        columns.insert(columns.end(), profileFields().begin(), profileFields().end());
        return columns;
    }();
    return kColumns;
}

std::string textOf(const Json& value, int indent) {
    return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

Table::Table(Names headings, std::vector<int> ranks, Names keys)
    : ranks(std::move(ranks)), keys(std::move(keys)), rows{std::move(headings)} {
    this->ranks.resize(rows.front().size());
}

/** With the gap behind each; 0: an empty one. */
std::vector<std::size_t> Table::widths() const {
    std::vector<std::size_t> result(rows.front().size(), 0);
    for (std::size_t column = 0; column < result.size(); ++column) {
        std::size_t widest = 0;
        for (std::size_t row = 1; row < rows.size(); ++row) {
            widest = std::max(widest, displayWidth(rows[row][column]));
        }
        result[column] =
            widest == 0 ? 0 : std::max(widest, displayWidth(rows.front()[column])) + kGap;
    }
    return result;
}

/** Empties columns until the rest fits; the keys of those. */
Names Table::fit(std::vector<std::size_t>& columns, std::size_t width) const {
    Names left;
    for (int rank = *std::max_element(ranks.begin(), ranks.end()); rank > 0; --rank) {
        for (std::size_t column = columns.size(); column-- > 0;) {
            const auto total = std::accumulate(columns.begin(), columns.end(), std::size_t{0});
            if (columns[column] != 0 && ranks[column] == rank && total > width + kGap) {
                columns[column] = 0;
                left.push_back(keys[column]);
            }
        }
    }
    return left;
}

void Table::print(std::ostream& out, std::size_t indent, std::size_t width) const {
    std::vector<std::size_t> columns = widths();
    const std::string margin(indent, ' ');
    const Names left = width == 0 ? Names() : fit(columns, width - indent);
    for (const Names& row : rows) {
        std::string line = margin;
        for (std::size_t column = 0; column < columns.size(); ++column) {
            if (columns[column] != 0) {
                line += row[column];
                line.append(columns[column] - displayWidth(row[column]), ' ');
            }
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << cut(line, width) << '\n';
    }
    if (!left.empty()) {
        out << wrapped(
                   margin + "not shown: " + join(left, ", ") + "; --columns shows what you name",
                   width)
            << '\n';
    }
}

std::vector<ProfileField> readColumns(std::string_view option, std::string_view text) {
    Names known;
    for (const ProfileField& column : allColumns()) {
        known.emplace_back(column.key);
    }
    std::vector<ProfileField> columns;
    for (const std::string& name : split(text.empty() ? " " : text, ',')) {
        columns.push_back(allColumns()[readOneOf(option, replaced(name, '-', '_'), known)]);
        columns.back().rank = 0;
    }
    return columns;
}

Table profileTable(const ProfileRecords& records, bool showSecrets,
                   const std::vector<ProfileField>& chosen) {
    const std::vector<ProfileField>& columns = chosen.empty() ? allColumns() : chosen;
    Names headings;
    Names keys;
    std::vector<int> ranks;
    for (const ProfileField& column : columns) {
        headings.emplace_back(column.heading);
        keys.emplace_back(column.key);
        ranks.push_back(column.rank);
    }
    Table table(std::move(headings), std::move(ranks), std::move(keys));
    for (const ProfileRecord& record : records) {
        const Json shown = shownFields(toJson(record, showSecrets));
        Names cells;
        for (const ProfileField& column : columns) {
            cells.push_back(valueText(column, column.of(shown)));
        }
        table.add(std::move(cells));
    }
    return table;
}

void Output::line(std::string_view text) {
    if (isText()) {
        out << wrapped(std::string(text), options.width) << '\n';
    }
}

void Output::table(const Table& table) {
    if (isText()) {
        table.print(out, 2, options.width);
    }
}

void Output::profiles(std::string_view heading, const ProfileRecords& records) {
    line(heading);
    if (records.empty()) {
        line("  no profiles");
    } else {
        table(profileTable(records, showSecrets(), options.columns));
    }
}

void Output::changes(const Json& changes) {
    if (changes.empty()) {
        line("  nothing");
    }
    for (const Json& change : changes) {
        line("  " + changeLine(change));
    }
}

void Output::note(std::string_view text) {
    err << "velactl: " << text << '\n';
}

void Output::listed(std::string_view key, const Json& item) {
    if (isText()) {
        return;
    }
    if (openList == key) {
        out << ",\n";
    } else {
        out << (openList.empty() ? "{\n" : "\n],\n") << Json(key) << ": [\n";
        openList = key;
    }
    out << textOf(item, -1);
}

void Output::finish() {
    if (isText()) {
        return;
    }
    if (openList.empty()) {
        out << textOf(answer, 2) << '\n';
        return;
    }
    out << "\n]";
    for (const auto& item : answer.items()) {
        out << ",\n" << Json(item.key()) << ": " << textOf(item.value(), -1);
    }
    out << "\n}\n";
}

void Progress::clear() {
    if (columns != 0) {
        out << "\r\x1b[K" << std::flush;
    }
}

void Progress::moveTo(std::size_t number, const std::string& what) {
    done = std::clamp<std::size_t>(number, 1, total);
    if (columns != 0) {
        const std::string text = std::to_string(done) + '/' + std::to_string(total) + ' ' + what;
        // Not into the last column, from where a terminal may go on to the next line.
        out << '\r' << fitting(text, columns - 1) << "\x1b[K" << std::flush;
    }
}

// A name or user that contains ",Password=" looks like a password, and may be one: a line does not
// tell where a text ends. So it is masked up to where only fields follow that are no free text.
std::string withoutPassword(std::string_view line) {
    static const std::regex kPassword(
        "(^|[^0-9A-Za-z])Password=[\\s\\S]*?((,((AuthType|HomeIPType|RoamIPType|CommonIPType|"
        "ApnTypesMask|ApnClass|IsClatEnabled|OverrideHomeIPType|LteRoamIP|UmtsRoamIP|"
        "MaxPdnsConnPerBlock|MaxPdnConnTimer|PdnReqWaitInterval|IsApnDisabled|"
        "IsEmergencySupported|IsVelaProfile|IsIAProfile|ProfileName)=[0-9A-Za-z_|-]*,)*)?)$");
    return std::regex_replace(std::string(line), kPassword, "$1Password=***$2");
}

}  // namespace velactl
