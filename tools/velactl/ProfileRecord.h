// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/ProfileParams.h>
#include <vela/ProfileTypes.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velactl {

using Json = nlohmann::ordered_json;

/** One profile as seen in a table: the library's, or the modem's own. A plain value. */
struct ProfileRecord {
    vela::TechType tech = vela::TechType::TECH_3GPP;
    int index = 0;
    vela::ProfileParams params;
    /** Empty when the table does not tell. */
    std::optional<bool> persistent;
};

using ProfileRecords = std::vector<ProfileRecord>;

/** One of the records; null when there is none. */
const ProfileRecord* findRecord(const ProfileRecords& records, vela::TechType tech, int index);

/** One field of a profile, by which tables, JSON and comparisons walk. */
struct ProfileField {
    /** Name in JSON; with '-' for '_' also the option's name. */
    const char* key;
    const char* heading;
    bool isSecret;
    /** Text, number, boolean or list of texts; null when the field is absent. */
    Json (*value)(const vela::ProfileParams& params);
};

/** All fields, in the order of printing. */
const std::vector<ProfileField>& profileFields();

/** A field's value in words: a secret masked unless `showSecrets`, an absent one empty. */
std::string fieldText(const ProfileField& field, const vela::ProfileParams& params,
                      bool showSecrets);

/** Whether both have the field's value; APN names without regard to case, as the library compares
 * them. */
bool isSame(const ProfileField& field, const vela::ProfileParams& left,
            const vela::ProfileParams& right);

/** The present fields, as "apn=internet, auth=PAP". */
std::string describe(const vela::ProfileParams& params, bool showSecrets);

/** The present fields as a JSON object. A text that is not UTF-8 has its bytes beside it, under its
 * key and "_hex". */
Json toJson(const vela::ProfileParams& params, bool showSecrets);

/** Technology, index and fields. */
Json toJson(const ProfileRecord& record, bool showSecrets);
Json toJson(const ProfileRecords& records, bool showSecrets);

/** "3GPP profile 3 (internet)" */
std::string title(const ProfileRecord& record);

/** One difference between two states of a modem's tables. */
struct ProfileChange {
    enum class Kind { Created, Deleted, Changed };
    /** One field's value before and after. */
    struct Field {
        std::string key;
        std::optional<std::string> before;
        std::optional<std::string> after;
    };

    Kind kind = Kind::Changed;
    /** As it is now; a deleted one as it was. */
    ProfileRecord record;
    std::vector<Field> fields;
};

/** What must happen to `before` to become `after`; both in the order of the tables. */
std::vector<ProfileChange> changesBetween(const ProfileRecords& before, const ProfileRecords& after,
                                          bool showSecrets);

/** By technology, then by index. */
void sortTable(ProfileRecords& records);

}  // namespace velactl
