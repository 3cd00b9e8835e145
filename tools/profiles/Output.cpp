// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/Output.h"

#include <cctype>
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

Names allColumns() {
    Names names{"technology", "index"};
    for (const ProfileField& field : profileFields()) {
        names.emplace_back(field.key);
    }
    return names;
}

std::string cell(const std::string& column, const ProfileRecord& record, const Json& shown,
                 bool showSecrets) {
    const ProfileField* field = fieldNamed(column);
    return field != nullptr    ? valueText(*field, field->of(shown), showSecrets)
           : column == "index" ? std::to_string(record.index)
                               : word(record.tech);
}

bool isPlain(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0;
}

// What may follow the password in a dump; none of it is free text, or else it is masked too.
bool isFields(std::string_view text) {
    static const std::regex kFields(
        "((AuthType|HomeIPType|RoamIPType|CommonIPType|ApnTypesMask|ApnClass|IsClatEnabled|"
        "OverrideHomeIPType|LteRoamIP|UmtsRoamIP|MaxPdnsConnPerBlock|MaxPdnConnTimer|"
        "PdnReqWaitInterval|IsApnDisabled|IsEmergencySupported|IsVelaProfile|IsIAProfile|"
        "ProfileName)=[0-9A-Za-z_|-]*,)*");
    return std::regex_match(text.begin(), text.end(), kFields);
}

/** Where a field's value begins; npos: there is no such field. */
std::size_t passwordIn(std::string_view line) {
    constexpr std::string_view kLabel = "Password=";
    std::size_t found = line.find(kLabel);
    while (found < line.size() && found > 0 && isPlain(line[found - 1])) {
        found = line.find(kLabel, found + 1);
    }
    return found == std::string_view::npos ? found : found + kLabel.size();
}

/** A printable text in lines of no more columns, broken at spaces where there are any; what goes on
 * stands further right. */
std::string folded(std::string text, std::size_t columns) {
    constexpr std::size_t kFurther = 4;
    constexpr std::size_t kNarrowest = 10;
    std::string result;
    std::size_t start = text.find_first_not_of(' ');
    const std::size_t margin = std::min(start + kFurther, columns / 2);
    while (columns >= kNarrowest && displayWidth(text) > columns) {
        const std::size_t fits = fitting(text, columns).size();
        const std::size_t blank = text.rfind(' ', fits);
        const std::size_t end = blank != std::string::npos && blank > start ? blank : fits;
        result += text.substr(0, end) + '\n';
        text = std::string(margin, ' ').append(trim(text.substr(end)));
        start = margin;
    }
    return result + text;
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
        const std::string hint =
            "not shown: " + join(left, ", ") + "; --columns shows what you name";
        for (const std::string& line : wrapped(hint, width - indent)) {
            out << cut(margin + line, width) << '\n';
        }
    }
}

Names readColumns(std::string_view option, std::string_view text) {
    const Names known = allColumns();
    Names columns;
    for (std::string name : split(text.empty() ? " " : text, ',')) {
        std::replace(name.begin(), name.end(), '-', '_');
        columns.push_back(known[readOneOf(option, name, known)]);
    }
    return columns;
}

Table profileTable(const ProfileRecords& records, bool showSecrets, const Names& columns) {
    const Names keys = columns.empty() ? allColumns() : columns;
    Names headings;
    std::vector<int> ranks;
    for (const std::string& key : keys) {
        const ProfileField* field = fieldNamed(key);
        headings.emplace_back(field != nullptr ? field->heading
                              : key == "index" ? "INDEX"
                                               : "TECH");
        ranks.push_back(field != nullptr && columns.empty() ? field->rank : 0);
    }
    Table table(std::move(headings), std::move(ranks), keys);
    for (const ProfileRecord& record : records) {
        Names cells;
        const Json shown = shownFields(record.fields);
        for (const std::string& key : keys) {
            cells.push_back(cell(key, record, shown, showSecrets));
        }
        table.add(std::move(cells));
    }
    return table;
}

void Output::line(std::string_view text) {
    if (isText()) {
        out << folded(std::string(text), options.width) << '\n';
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
// tell where a text ends. So it is masked from there on.
std::string withoutPassword(std::string_view line) {
    const std::size_t start = passwordIn(line);
    if (start > line.size()) {
        return std::string(line);
    }
    std::size_t comma = line.find(',', start);
    while (comma < line.size() && !isFields(line.substr(comma + 1))) {
        comma = line.find(',', comma + 1);
    }
    return std::string(line.substr(0, start)) + "***" +
           std::string(line.substr(std::min(comma, line.size())));
}

}  // namespace velactl
