// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "profiles/ProfileField.h"

namespace velactl {

/** One profile as seen in a table: the library's, or the modem's own. A plain value. */
struct ProfileRecord {
    vela::TechType tech = vela::TechType::TECH_3GPP;
    int index = 0;
    /** By key, as profileFields() describes them. */
    Json fields = Json::object();
    /** All that the modem holds, by its names; null when only the library's view is known. */
    Json settings = {};

    std::string apnName() const { return fields.value("apn", ""); }
};

using ProfileRecords = std::vector<ProfileRecord>;

/** What the library told its observer of a profile. */
ProfileRecord recordOf(const vela::ProfileImage& image);

/** What the modem's settings say, by the modem's names. */
ProfileRecord recordOf(vela::TechType tech, int index, Json settings);

/** One of the records; null when there is none. */
const ProfileRecord* findRecord(const ProfileRecords& records, vela::TechType tech, int index);

/** "3GPP profile 3 (internet)", by `technology` and `index`, with the APN name when the profile is
 * known. */
std::string titleOf(const Json& place, const Json& profile = {});
std::string title(const ProfileRecord& record);

/** By technology, then by index. */
void sortTable(ProfileRecords& records);

/** toJson() of the fields, after technology and index. */
Json toJson(const ProfileRecord& record, bool showSecrets);
Json toJson(const ProfileRecords& records, bool showSecrets);

/** What must happen to `before` to become `after`, both in the order of the tables. Each change is
 * `created`, `deleted` or `changed`, which stands under `change`, of the profile as it is now, a
 * deleted one as it was; with the texts `before` and `after` of all `fields` and of all `settings`,
 * where both records tell them, that differ. */
Json changesBetween(const ProfileRecords& before, const ProfileRecords& after, bool showSecrets);

/** The text of one of two values, of which an absent one is not one that is none or empty. */
std::string orAbsent(const Json& text, const char* absent = "(absent)");

/** A change in words: "3GPP profile 1 (internet) changed: auth PAP -> CHAP". Of the settings those
 * that no changed field tells. */
std::string changeLine(const Json& change);

}  // namespace velactl
