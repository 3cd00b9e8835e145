// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/Output.h"

#include <iterator>
#include <numeric>
#include <regex>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

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

void Table::add(const std::string& heading, Names cells, int rank, const std::string& key) {
    std::size_t widest = 0;
    for (const std::string& cell : cells) {
        widest = std::max(widest, displayWidth(cell));
    }
    if (widest != 0) {
        cells.insert(cells.begin(), heading);
        columns.push_back({std::move(cells), std::max(widest, displayWidth(heading)), rank, key});
    }
}

void Table::print(std::ostream& out, std::size_t indent, std::size_t width) const {
    constexpr std::size_t kGap = 2;
    std::vector<Column> shown = columns;
    Names left;
    const auto total = [&] {
        return std::accumulate(shown.begin(), shown.end(), indent,
                               [](auto sum, const auto& each) { return sum + each.width + kGap; });
    };
    while (width != 0 && !shown.empty() && total() > width + kGap) {
        const auto least =  // the last of the highest rank
            std::max_element(shown.rbegin(), shown.rend(), [](const auto& one, const auto& other) {
                return one.rank < other.rank;
            });
        if (least->rank == 0) {
            break;
        }
        left.push_back(least->key);
        shown.erase(std::next(least).base());
    }
    const std::string margin(indent, ' ');
    for (std::size_t row = 0; !shown.empty() && row < shown.front().cells.size(); ++row) {
        std::string line = margin;
        for (const Column& column : shown) {
            line += column.cells[row];
            line.append(column.width + kGap - displayWidth(column.cells[row]), ' ');
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

Names columnNames() {
    Names known;
    for (const ProfileField& column : allColumns()) {
        known.emplace_back(column.key);
    }
    return known;
}

std::vector<ProfileField> readColumns(std::string_view option, std::string_view text) {
    const Names known = columnNames();
    std::vector<ProfileField> columns;
    for (const std::string& name : split(text.empty() ? " " : text, ',')) {
        columns.push_back(allColumns()[readOneOf(option, replaced(name, '-', '_'), known)]);
        columns.back().rank = 0;
    }
    return columns;
}

Table profileTable(const ProfileRecords& records, bool showSecrets,
                   const std::vector<ProfileField>& chosen) {
    std::vector<Json> rows;
    for (const ProfileRecord& record : records) {
        rows.push_back(shownFields(toJson(record, showSecrets)));
    }
    Table table;
    for (const ProfileField& column : chosen.empty() ? allColumns() : chosen) {
        Names cells;
        for (const Json& row : rows) {
            cells.push_back(valueText(column, column.of(row)));
        }
        table.add(column.heading, std::move(cells), column.rank, column.key);
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
