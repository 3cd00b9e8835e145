// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "decisions/Facts.h"

#include <string>

#include "profiles/Words.h"

namespace velactl {

namespace {

/** The name of a value of an enumeration that ends with `last`. */
template <auto last, std::size_t size>
const char* nameIn(const char* const (&names)[size], decltype(last) value) {
    static_assert(size == static_cast<std::size_t>(last) + 1);
    const auto number = static_cast<std::size_t>(value);
    return number < size ? names[number] : "unknown";
}

const char* nameOf(vela::MessageOutcome outcome) {
    constexpr const char* kNames[]{"answered", "refused", "timed_out", "not_sent", "lost"};
    return nameIn<vela::MessageOutcome::Lost>(kNames, outcome);
}

const char* nameOf(vela::ProfileChangedEvent event) {
    constexpr const char* kNames[]{"created", "deleted", "changed", "subscription_changed",
                                   "profiles_ready"};
    return nameIn<vela::ProfileChangedEvent::ProfileReady>(kNames, event);
}

/** What was written, as the modem gets it: of the IP types those that it keeps. */
Json sentOf(const vela::ProfileImage& image, bool isNew) {
    Json sent = toJson(recordOf(image), true);
    for (const char* key : {"technology", "index", "home_ip", "roam_ip"}) {
        sent.erase(key);
    }
    if (!isNew) {
        sent.erase("persistent");
        sent.erase("made_by");  // which a change never sets
    }
    if (image.overrideHomeIPType == vela::IPType::UNKNOWN) {
        sent["home_override"] = "none";
    }
    return sent;
}

}  // namespace

const char* nameOf(vela::Policy policy) {
    constexpr const char* kNames[]{"attach",    "match-attach", "data-call", "emergency",
                                   "apn-class", "apn-class",    "type-mask"};
    return nameIn<vela::Policy::ApnTypesMasks>(kNames, policy);
}

const char* nameOf(vela::ReqRespType type) {
    constexpr const char* kNames[]{"create",  "modify", "delete",  "search",
                                   "compare", "read",   "release", "refresh"};
    return nameIn<vela::ReqRespType::Refresh>(kNames, type);
}

const char* nameOf(vela::ServiceState state) {
    constexpr const char* kNames[]{"up", "down", "connect_failed"};
    return nameIn<vela::ServiceState::ConnectFailed>(kNames, state);
}

void setPlace(Json& object, vela::TechType tech, int index) {
    object["technology"] = word(tech);
    object["index"] = index < 0 ? Json() : Json(index);
}

bool isAt(const Json& profile, const Json& place) {
    return profile.is_object() && profile.value("technology", Json()) == place["technology"] &&
           profile.value("index", Json()) == place["index"];
}

Json askedOf(const vela::FilterProfileParams& filter) {
    Json asked = Json::object();
    if (filter.hasFilterByTechType()) {
        asked["technology"] = word(filter.getFilterByTechType());
    }
    if (filter.hasFilterByProfileId()) {
        asked["index"] = filter.getFilterByProfileId();
    }
    asked.update(toJson(filter, true));
    return asked;
}

Json loosenessOf(const vela::FilterProfileParams& filter) {
    using enum vela::FilterMatchCriteria;
    struct Way {
        vela::FilterMatchCriteria bit;
        const char* field;
        const char* word;
    };
    constexpr Way kWays[]{
        {HomeIPSubset, "home_ip", "wider"}, {HomeIPSuperset, "home_ip", "narrower"},
        {RoamIPSubset, "roam_ip", "wider"}, {RoamIPSuperset, "roam_ip", "narrower"},
        {ApnNameSubset, "apn", "longer"},   {ApnTypeBitmaskSubset, "types", "more"}};
    Json ways = Json::object();
    for (const Way& way : kWays) {
        if ((filter.getFilterMatchCriteria() & toMask(way.bit)) != 0) {
            ways[way.field].push_back(way.word);
        }
    }
    return ways;
}

Json profileOf(const std::optional<vela::ProfileImage>& image) {
    if (!image) {
        return {};
    }
    Json profile = toJson(recordOf(*image), true);
    profile["made_by_this_process"] = image->isVelaCreated;
    return profile;
}

Json mismatchesOf(const vela::ProfileCandidate& candidate, const Json& asked) {
    const Json profile = profileOf(candidate.profile);
    Json mismatches = Json::object();
    for (const vela::FilterCriterion criterion : candidate.mismatches) {
        const std::string key = criterionName(criterion);
        mismatches[key] = {{"has", profile.value(key, Json())},
                           {"asked", asked.value(key, Json())}};
    }
    return mismatches;
}

Json differencesOf(const Json& first, const Json& second, const char* name, bool all) {
    Json differences = Json::object();
    for (const ProfileField& field : profileFields()) {
        const Json has = first.value(field.key, Json());
        const Json other = second.value(field.key, Json());
        if ((all || !other.is_null()) && !isSame(field, first, second)) {
            differences[field.key] = {{"has", has}, {name, other}};
        }
    }
    return differences;
}

Json messageOf(const vela::ModemMessage& message, const Backend& modem) {
    const std::string reason = failureOf(message, modem);
    const vela::ProfileImage* written = isWrite(message) ? message.profile : nullptr;
    const vela::ProfileImage* read = isWrite(message) ? nullptr : message.profile;
    const bool isNew = message.type == vela::ModemMessageType::CreateProfile;
    Json json{{"message", nameOf(message.type)}};
    setPlace(json, message.techType, message.profileId);
    json["outcome"] = nameOf(message.outcome);
    json["error"] = message.error == 0 ? Json() : Json(message.error);
    json["reason"] = reason.empty() ? Json() : Json(reason);
    json["microseconds"] =
        std::chrono::duration_cast<std::chrono::microseconds>(message.duration).count();
    json["sent"] = written == nullptr ? Json() : sentOf(*written, isNew);
    json["read"] = read == nullptr ? Json() : profileOf(*read);
    return json;
}

Json indicationOf(const vela::ModemIndication& indication) {
    Json json{{"kind", "indication"}};
    if (indication.outcome == vela::IndicationOutcome::Unreadable) {
        json.update({{"change", "unreadable"}, {"technology", Json()}, {"index", Json()}});
    } else {
        json["change"] = nameOf(indication.change.event);
        setPlace(json, indication.change.techType, indication.change.profileId);
    }
    return json;
}

Json changesOf(const std::optional<ProfileRecords>& before,
               const std::optional<ProfileRecords>& after) {
    return before && after ? changesBetween(*before, *after, true) : Json::array();
}

void maskSecrets(Json& document) {
    const auto leaves = nlohmann::json(document).flatten();
    for (const auto& item : leaves.items()) {
        const bool isSecret = item.key().find("password") != std::string::npos;
        if (isSecret && item.value().is_string() &&
            !item.value().get_ref<const std::string&>().empty()) {
            document[Json::json_pointer(item.key())] = "***";
        }
    }
}

}  // namespace velactl
