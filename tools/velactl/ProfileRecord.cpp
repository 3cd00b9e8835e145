// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ProfileRecord.h"

#include <algorithm>
#include <tuple>

#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

using Params = vela::ProfileParams;

constexpr const char* kMask = "***";

template <auto Has, auto Get>
Json plain(const Params& params) {
    return (params.*Has)() ? Json((params.*Get)()) : Json();
}

template <auto Has, auto Get>
Json inWord(const Params& params) {
    return (params.*Has)() ? Json(word((params.*Get)())) : Json();
}

Json types(const Params& params) {
    return params.hasApnTypesMask() ? Json(typeWords(params.getApnTypesMask())) : Json();
}

Json maker(const Params& params) {
    if (params.getIsIAProfile()) {
        return "vela IA";
    }
    return params.getIsVelaProfile() ? Json("vela") : Json();
}

bool isBlank(const Json& value) {
    return value.is_null() || (value.is_string() && value.get_ref<const std::string&>().empty());
}

std::string text(const Json& value) {
    switch (value.type()) {
        case Json::value_t::null:
            return "";
        case Json::value_t::string:
            return printable(value.get_ref<const std::string&>());
        case Json::value_t::boolean:
            return value.get<bool>() ? "yes" : "no";
        case Json::value_t::array:
            return value.empty() ? "none" : join(value.get<std::vector<std::string>>(), ",");
        default:
            return value.dump();
    }
}

auto place(const ProfileRecord& record) {
    return std::tuple(record.tech, record.index);
}

bool isBefore(const ProfileRecord& left, const ProfileRecord& right) {
    return place(left) < place(right);
}

std::optional<std::string> presentText(const ProfileField& field, const Params& params,
                                       bool showSecrets) {
    if (field.value(params).is_null()) {
        return std::nullopt;
    }
    return fieldText(field, params, showSecrets);
}

std::vector<ProfileChange::Field> changedFields(const Params& before, const Params& after,
                                                bool showSecrets) {
    std::vector<ProfileChange::Field> fields;
    for (const ProfileField& field : profileFields()) {
        if (field.value(before) != field.value(after)) {
            fields.push_back({field.key, presentText(field, before, showSecrets),
                              presentText(field, after, showSecrets)});
        }
    }
    return fields;
}

}  // namespace

const ProfileRecord* findRecord(const ProfileRecords& records, vela::TechType tech, int index) {
    const auto found = std::find_if(records.begin(), records.end(), [&](const auto& record) {
        return record.tech == tech && record.index == index;
    });
    return found == records.end() ? nullptr : &*found;
}

const std::vector<ProfileField>& profileFields() {
    static const std::vector<ProfileField> kFields{
        {"made_by", "MADE BY", false, maker},
        {"apn", "APN", false, plain<&Params::hasApnName, &Params::getApnName>},
        {"home_ip", "HOME", false, inWord<&Params::hasHomeIPType, &Params::getHomeIPType>},
        {"roam_ip", "ROAMING", false, inWord<&Params::hasRoamIPType, &Params::getRoamIPType>},
        {"types", "TYPES", false, types},
        {"class", "CLASS", false, inWord<&Params::hasApnClass, &Params::getApnClass>},
        {"auth", "AUTH", false, inWord<&Params::hasAuthType, &Params::getAuthType>},
        {"user", "USER", false, plain<&Params::hasUserName, &Params::getUserName>},
        {"password", "PASSWORD", true, plain<&Params::hasPassword, &Params::getPassword>},
        {"clat", "CLAT", false, plain<&Params::hasIsClatEnabled, &Params::getIsClatEnabled>},
        {"emergency", "EMERGENCY", false,
         plain<&Params::hasIsEmergencySupported, &Params::getIsEmergencySupported>},
        {"disabled", "DISABLED", false,
         plain<&Params::hasIsApnDisabled, &Params::getIsApnDisabled>},
        {"max_conns", "MAX CONNS", false,
         plain<&Params::hasMaxPdnsConnPerBlock, &Params::getMaxPdnsConnPerBlock>},
        {"max_conns_time", "PER SECONDS", false,
         plain<&Params::hasMaxPdnConnTimer, &Params::getMaxPdnConnTimer>},
        {"wait_time", "WAIT", false,
         plain<&Params::hasPdnReqWaitInterval, &Params::getPdnReqWaitInterval>},
    };
    return kFields;
}

std::string fieldText(const ProfileField& field, const Params& params, bool showSecrets) {
    const Json value = field.value(params);
    return field.isSecret && !showSecrets && !isBlank(value) ? kMask : text(value);
}

bool isSame(const ProfileField& field, const Params& left, const Params& right) {
    if (field.value == plain<&Params::hasApnName, &Params::getApnName>) {
        return left.hasApnName() == right.hasApnName() &&
               sameLetters(left.getApnName(), right.getApnName());
    }
    return field.value(left) == field.value(right);
}

std::string describe(const Params& params, bool showSecrets) {
    std::vector<std::string> parts;
    for (const ProfileField& field : profileFields()) {
        if (!field.value(params).is_null()) {
            parts.push_back(std::string(field.key) + '=' + fieldText(field, params, showSecrets));
        }
    }
    return parts.empty() ? "nothing in particular" : join(parts, ", ");
}

Json toJson(const Params& params, bool showSecrets) {
    Json object = Json::object();
    for (const ProfileField& field : profileFields()) {
        const Json value = field.value(params);
        if (value.is_null()) {
            continue;
        }
        const bool masked = field.isSecret && !showSecrets && !isBlank(value);
        object[field.key] = masked ? Json(kMask) : value;
        if (!masked && value.is_string() && !isUtf8(value.get_ref<const std::string&>())) {
            object[std::string(field.key) + "_hex"] = hex(value.get_ref<const std::string&>());
        }
    }
    return object;
}

Json toJson(const ProfileRecord& record, bool showSecrets) {
    Json object{{"technology", word(record.tech)}, {"index", record.index}};
    if (record.persistent) {
        object["persistent"] = *record.persistent;
    }
    object.update(toJson(record.params, showSecrets));
    return object;
}

Json toJson(const ProfileRecords& records, bool showSecrets) {
    Json list = Json::array();
    for (const ProfileRecord& record : records) {
        list.push_back(toJson(record, showSecrets));
    }
    return list;
}

std::string title(const ProfileRecord& record) {
    const std::string name = record.params.getApnName();
    return word(record.tech) + " profile " + std::to_string(record.index) + " (" +
           (name.empty() ? "no APN name" : printable(name)) + ')';
}

std::vector<ProfileChange> changesBetween(const ProfileRecords& before, const ProfileRecords& after,
                                          bool showSecrets) {
    using Kind = ProfileChange::Kind;
    std::vector<ProfileChange> changes;
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        if (now == after.end() || (old != before.end() && isBefore(*old, *now))) {
            changes.push_back({Kind::Deleted, *old++, {}});
        } else if (old == before.end() || isBefore(*now, *old)) {
            changes.push_back({Kind::Created, *now++, {}});
        } else {
            auto fields = changedFields(old->params, now->params, showSecrets);
            if (!fields.empty()) {
                changes.push_back({Kind::Changed, *now, std::move(fields)});
            }
            ++old;
            ++now;
        }
    }
    return changes;
}

void sortTable(ProfileRecords& records) {
    std::sort(records.begin(), records.end(), isBefore);
}

}  // namespace velactl
