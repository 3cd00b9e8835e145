// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/ProfileRecord.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

/** The members that differ, as texts, of fields or of the modem's own settings; an absent one is
 * null. */
Json differences(const Json& before, const Json& after, bool areFields) {
    Json list = Json::object();
    Json all = before;
    all.update(after);
    for (const auto& item : all.items()) {
        const Json old = before.value(item.key(), Json());
        const Json now = after.value(item.key(), Json());
        const auto text = [&](const Json& value) {
            return value.is_null() ? value
                   : areFields     ? Json(valueText(*fieldNamed(item.key()), value))
                                   : Json(valueText(value));
        };
        if (old != now) {
            list[item.key()] = {{"before", text(old)}, {"after", text(now)}};
        }
    }
    return list;
}

Json changedFields(const Json& before, const Json& after) {
    return hasUsualIPTypes(before) && hasUsualIPTypes(after)
               ? differences(shownFields(before), shownFields(after), true)
               : differences(before, after, true);
}

/** Whether one of the changed fields is made of the setting. */
bool isTold(const Json& fields, const std::string& name) {
    const auto& all = profileFields();
    return std::any_of(all.begin(), all.end(), [&](const ProfileField& field) {
        return fields.contains(field.key) &&
               std::any_of(field.settings.begin(), field.settings.end(),
                           [&](const auto& setting) { return setting.isNamed(name); });
    });
}

}  // namespace

ProfileRecord recordOf(const vela::ProfileImage& image) {
    ProfileRecord record{image.techType, image.profileId, fieldsOf(image.params)};
    const auto add = [&](const char* key, std::optional<vela::IPType> type) {
        if (type) {
            record.fields[key] = word(*type);
        }
    };
    record.fields["persistent"] = image.isPersistent;
    add("pdp_type", image.pdpType);
    add("lte_roaming", image.lteRoamIPType);
    add("umts_roaming", image.umtsRoamIPType);
    if (image.overrideHomeIPType != vela::IPType::UNKNOWN) {  // which stands for none
        add("home_override", image.overrideHomeIPType);
    }
    return record;
}

ProfileRecord recordOf(vela::TechType tech, int index, Json settings) {
    ProfileRecord record{tech, index};
    for (const ProfileField& field : profileFields()) {
        if (Json value = field.in(settings, tech); !value.is_null()) {
            record.fields[field.key] = std::move(value);
        }
    }
    if (tech == vela::TechType::TECH_3GPP) {
        const Json name = settings.value("profile_name", "");
        record.fields["made_by"] = name == "vela_profile"      ? "vela"
                                   : name == "vela_profile_ia" ? "vela IA"
                                                               : "others";
    }
    record.settings = std::move(settings);
    return record;
}

const ProfileRecord* findRecord(const ProfileRecords& records, vela::TechType tech, int index) {
    const auto found = std::find_if(records.begin(), records.end(), [&](const auto& record) {
        return record.tech == tech && record.index == index;
    });
    return found == records.end() ? nullptr : &*found;
}

std::string titleOf(const Json& place, const Json& profile) {
    if (place["index"].is_null()) {
        return "a profile";
    }
    std::string title =
        place["technology"].get<std::string>() + " profile " + place["index"].dump();
    if (profile.is_object()) {
        const std::string name = profile.value("apn", "");
        title += " (" + (name.empty() ? "no APN name" : printable(name)) + ')';
    }
    return title;
}

std::string title(const ProfileRecord& record) {
    const Json profile = toJson(record, false);
    return titleOf(profile, profile);
}

void sortTable(ProfileRecords& records) {
    std::sort(records.begin(), records.end(), [](const auto& left, const auto& right) {
        return std::tie(left.tech, left.index) < std::tie(right.tech, right.index);
    });
}

Json toJson(const ProfileRecord& record, bool showSecrets) {
    Json object{{"technology", word(record.tech)}, {"index", record.index}};
    object.update(toJson(record.fields, showSecrets));
    return object;
}

Json toJson(const ProfileRecords& records, bool showSecrets) {
    Json list = Json::array();
    for (const ProfileRecord& record : records) {
        list.push_back(toJson(record, showSecrets));
    }
    return list;
}

Json changesBetween(const ProfileRecords& before, const ProfileRecords& after, bool showSecrets) {
    std::set<std::pair<vela::TechType, int>> places;
    for (const ProfileRecords* table : {&before, &after}) {
        for (const ProfileRecord& record : *table) {
            places.emplace(record.tech, record.index);
        }
    }
    Json changes = Json::array();
    for (const auto& [tech, index] : places) {
        const ProfileRecord* old = findRecord(before, tech, index);
        const ProfileRecord* now = findRecord(after, tech, index);
        Json change{{"change", old == nullptr   ? "created"
                               : now == nullptr ? "deleted"
                                                : "changed"}};
        change.update(toJson(now != nullptr ? *now : *old, showSecrets));
        change.update({{"settings", Json::object()}, {"fields", Json::object()}});
        Json& fields = change["fields"];
        Json& settings = change["settings"];
        if (old != nullptr && now != nullptr) {
            fields = changedFields(old->fields, now->fields);
            const bool areTold = !old->settings.is_null() && !now->settings.is_null();
            settings = areTold ? differences(old->settings, now->settings, false) : settings;
        }
        if (change["change"] != "changed" || !fields.empty() || !settings.empty()) {
            changes.push_back(masked(std::move(change), showSecrets));
        }
    }
    return changes;
}

std::string orAbsent(const Json& text, const char* absent) {
    return text.is_null() ? absent : text == Json("") ? "\"\"" : text.get<std::string>();
}

std::string changeLine(const Json& change) {
    const auto kind = change["change"].get<std::string>();
    const std::string text = titleOf(change, change) + ' ' + kind;
    if (kind == "created") {
        return text + ": " + describe(change, true);
    }
    Names parts;
    for (const char* list : {"fields", "settings"}) {
        for (const auto& item : change[list].items()) {
            if (list == std::string("fields") || !isTold(change["fields"], item.key())) {
                parts.push_back(item.key() + ' ' + orAbsent(item.value()["before"]) + " -> " +
                                orAbsent(item.value()["after"]));
            }
        }
    }
    return text + (parts.empty() ? "" : ": ") + join(parts, "; ");
}

}  // namespace velactl
