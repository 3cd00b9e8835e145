// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "profiles/ProfileRecord.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

std::string titleOf(const std::string& tech, const std::string& index, const std::string& apn) {
    return tech + " profile " + index + " (" + (apn.empty() ? "no APN name" : printable(apn)) + ')';
}

bool isBefore(const ProfileRecord& left, const ProfileRecord& right) {
    return std::tie(left.tech, left.index) < std::tie(right.tech, right.index);
}

/** The members that differ, as texts; an absent one is null. */
template <typename TextOf>
Json differences(const Json& before, const Json& after, TextOf textOf) {
    Json list = Json::object();
    Json all = before;
    all.update(after);
    for (const auto& item : all.items()) {
        const Json old = before.value(item.key(), Json());
        const Json now = after.value(item.key(), Json());
        const auto text = [&](const Json& value) {
            return value.is_null() ? value : Json(textOf(item.key(), value));
        };
        if (old != now) {
            list[item.key()] = {{"before", text(old)}, {"after", text(now)}};
        }
    }
    return list;
}

Json changedFields(const Json& before, const Json& after, bool showSecrets) {
    const bool areUsual = hasUsualIPTypes(before) && hasUsualIPTypes(after);
    return differences(areUsual ? shownFields(before) : before,
                       areUsual ? shownFields(after) : after,
                       [&](const std::string& key, const Json& value) {
                           return valueText(*fieldNamed(key), value, showSecrets);
                       });
}

Json changedSettings(const Json& before, const Json& after, bool showSecrets) {
    if (before.is_null() || after.is_null()) {
        return Json::object();
    }
    return differences(before, after, [&](const std::string& name, const Json& value) {
        const bool isSecret = name.find("password") != std::string::npos && value != Json("");
        return isSecret && !showSecrets ? "***"
               : value.is_string()      ? printable(value.get_ref<const std::string&>())
                                        : value.dump();
    });
}

Json changeOf(const char* kind, const ProfileRecord& record, bool showSecrets) {
    Json change{{"change", kind}};
    change.update(toJson(record, showSecrets));
    change["fields"] = change["settings"] = Json::object();
    return change;
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

/** What is absent is not what is none or empty. */
std::string valueText(const Json& text) {
    return text.is_null() ? "(absent)" : text == Json("") ? "\"\"" : text.get<std::string>();
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

std::string title(const ProfileRecord& record) {
    return titleOf(word(record.tech), std::to_string(record.index), record.apnName());
}

void sortTable(ProfileRecords& records) {
    std::sort(records.begin(), records.end(), isBefore);
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
    Json changes = Json::array();
    auto old = before.begin();
    for (const ProfileRecord& now : after) {
        for (; old != before.end() && isBefore(*old, now); ++old) {
            changes.push_back(changeOf("deleted", *old, showSecrets));
        }
        if (old == before.end() || isBefore(now, *old)) {
            changes.push_back(changeOf("created", now, showSecrets));
            continue;
        }
        Json change = changeOf("changed", now, showSecrets);
        change["fields"] = changedFields(old->fields, now.fields, showSecrets);
        change["settings"] = changedSettings(old->settings, now.settings, showSecrets);
        if (!change["fields"].empty() || !change["settings"].empty()) {
            changes.push_back(std::move(change));
        }
        ++old;
    }
    for (; old != before.end(); ++old) {
        changes.push_back(changeOf("deleted", *old, showSecrets));
    }
    return changes;
}

std::string changeLine(const Json& change) {
    const auto kind = change["change"].get<std::string>();
    std::string text =
        titleOf(change["technology"], change["index"].dump(), change.value("apn", "")) + ' ' + kind;
    if (kind == "created") {
        return text + ": " + describe(change, true);
    }
    Names parts;
    for (const char* list : {"fields", "settings"}) {
        for (const auto& item : change[list].items()) {
            if (list == std::string("fields") || !isTold(change["fields"], item.key())) {
                parts.push_back(item.key() + ' ' + valueText(item.value()["before"]) + " -> " +
                                valueText(item.value()["after"]));
            }
        }
    }
    return text + (parts.empty() ? "" : ": ") + join(parts, "; ");
}

}  // namespace velactl
