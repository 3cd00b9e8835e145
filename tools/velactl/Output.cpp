// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Output.h"

#include "Table.h"
#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

constexpr const char* kindName(ProfileChange::Kind kind) {
    switch (kind) {
        case ProfileChange::Kind::Created:
            return "created";
        case ProfileChange::Kind::Deleted:
            return "deleted";
        case ProfileChange::Kind::Changed:
            break;
    }
    return "changed";
}

/** What is absent is not what is none or empty. */
std::string value(const std::optional<std::string>& text) {
    return !text ? "(absent)" : text->empty() ? "\"\"" : *text;
}

Json textOrNull(const std::optional<std::string>& text) {
    return text ? Json(*text) : Json();
}

std::string persistence(const ProfileRecord& record) {
    if (!record.persistent) {
        return "";
    }
    return *record.persistent ? "stored" : "temporary";
}

}  // namespace

void Output::line(std::string_view text) {
    if (isText()) {
        out << text << '\n';
    }
}

void Output::profiles(std::string_view heading, const ProfileRecords& records) {
    if (!isText()) {
        return;
    }
    out << heading << '\n';
    std::vector<std::string> headings{"TECH", "INDEX", "KEPT"};
    for (const ProfileField& field : profileFields()) {
        headings.emplace_back(field.heading);
    }
    Table table(std::move(headings));
    for (const ProfileRecord& record : records) {
        std::vector<std::string> cells{word(record.tech), std::to_string(record.index),
                                       persistence(record)};
        for (const ProfileField& field : profileFields()) {
            cells.push_back(fieldText(field, record.params, showSecrets()));
        }
        table.add(std::move(cells));
    }
    if (table.isEmpty()) {
        out << "  no profiles\n";
    } else {
        table.print(out);
    }
}

void Output::changes(const std::vector<ProfileChange>& changes) {
    if (changes.empty()) {
        line("  nothing");
    }
    for (const ProfileChange& change : changes) {
        std::string text = "  " + title(change.record) + ' ' + kindName(change.kind);
        if (change.kind == ProfileChange::Kind::Created) {
            text += ": " + describe(change.record.params, showSecrets());
        }
        for (const ProfileChange::Field& field : change.fields) {
            text += &field == change.fields.data() ? ": " : "; ";
            text += field.key + ' ' + value(field.before) + " -> " + value(field.after);
        }
        line(text);
    }
}

void Output::note(std::string_view text) {
    err << "velactl: " << text << '\n';
}

void Output::finish() {
    if (!isText()) {
        out << answer.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    }
}

Json Output::toJson(const std::vector<ProfileChange>& changes) const {
    Json list = Json::array();
    for (const ProfileChange& change : changes) {
        Json item{{"change", kindName(change.kind)}};
        item.update(velactl::toJson(change.record, showSecrets()));
        for (const ProfileChange::Field& field : change.fields) {
            item["fields"][field.key] = {{"before", textOrNull(field.before)},
                                         {"after", textOrNull(field.after)}};
        }
        list.push_back(std::move(item));
    }
    return list;
}

Json Output::toJson(const ProfileRecords& records) const {
    return velactl::toJson(records, showSecrets());
}

}  // namespace velactl
