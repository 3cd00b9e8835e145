// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "decisions/Facts.h"

#include <algorithm>
#include <string>
#include <utility>

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
    return nameIn<vela::MessageOutcome::Lost>(
        {"answered", "refused", "timed_out", "not_sent", "lost"}, outcome);
}

const char* nameOf(vela::ProfileChangedEvent event) {
    return nameIn<vela::ProfileChangedEvent::ProfileReady>(
        {"created", "deleted", "changed", "subscription_changed", "profiles_ready"}, event);
}

/** A profile as the observer is told of it; null when the library could not read it. */
Json profileOf(const std::optional<vela::ProfileImage>& image) {
    if (!image) {
        return {};
    }
    Json profile = toJson(recordOf(*image), true);
    profile["made_by_this_process"] = image->isVelaCreated;
    return profile;
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

const ProfileRecord* recordAt(const ProfileRecords& records, const Json& place) {
    return findRecord(records, readTech("", place["technology"].get<std::string>()),
                      place["index"].get<int>());
}

/** The latest request that says whether a profile is the one that is wanted. */
Json lastQuestion(const Json& steps) {
    const auto found = std::find_if(steps.rbegin(), steps.rend(), [](const Json& step) {
        return step["kind"] == "search" || step["kind"] == "read" || step["kind"] == "compare";
    });
    return found == steps.rend() ? Json() : *found;
}

/** Its `creation`, and by which criteria it was found or compared. */
Json originOf(const Json& place, const Json& steps) {
    Json compared = Json::array();
    const char* creation = "before";
    for (const Json& step : steps) {
        if (step["kind"] == "create" && isAt(step, place)) {
            return {{"creation", "this_process_now"}, {"compared", Json::array()}};
        }
        for (const Json& candidate : step.value("candidates", Json::array())) {
            const Json& profile = candidate["profile"];
            if (isAt(profile, place) && (candidate["first"] == true || step["kind"] == "compare")) {
                compared = Json::array();
                for (const auto& item : step["asked"].items()) {
                    compared.push_back(item.key());
                }
                creation =
                    profile["made_by_this_process"] == true ? "this_process_before" : "before";
            }
        }
    }
    return {{"creation", creation}, {"compared", compared}};
}

}  // namespace

const char* nameOf(vela::Policy policy) {
    return nameIn<vela::Policy::ApnTypesMasks>(
        {"attach", "match-attach", "data-call", "emergency", "apn-class", "apn-class", "type-mask"},
        policy);
}

const char* nameOf(vela::ReqRespType type) {
    return nameIn<vela::ReqRespType::Refresh>(
        {"create", "modify", "delete", "search", "compare", "read", "release", "refresh"}, type);
}

const char* nameOf(vela::ServiceState state) {
    return nameIn<vela::ServiceState::ConnectFailed>({"up", "down", "connect_failed"}, state);
}

void setPlace(Json& object, vela::TechType tech, int index) {
    object["technology"] = word(tech);
    object["index"] = index < 0 ? Json() : Json(index);
}

bool isAt(const Json& profile, const Json& place) {
    return profile.is_object() && profile.value("technology", Json()) == place["technology"] &&
           profile.value("index", Json()) == place["index"];
}

Json entriesOf(const vela::PolicyCall& policy) {
    using enum vela::Policy;
    Json list = Json::array();
    const auto add = [&](const vela::ProfileParams& params, vela::TechType tech) {
        Json& entry = list.emplace_back(Json::object());
        if (policy.policy != ApnTypesMasks) {  // which is of both
            entry["technology"] = word(tech);
        }
        if (policy.policy == LteAttachMatch) {
            entry["index"] = policy.profileId;
        }
        entry.update(toJson(params, true));
    };
    if (policy.params != nullptr) {
        add(*policy.params, policy.techType);
    }
    for (const auto& [entries, tech] : {std::pair(policy.profiles, vela::TechType::TECH_3GPP),
                                        {policy.profiles3gpp2, vela::TechType::TECH_3GPP2}}) {
        if (entries != nullptr) {
            for (const vela::ProfileParams& params : *entries) {
                add(params, tech);
            }
        }
    }
    return list;
}

Json searchOf(const vela::FilterProfileParams& filter) {
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
    Json asked = Json::object();
    if (filter.hasFilterByTechType()) {
        asked["technology"] = word(filter.getFilterByTechType());
    }
    if (filter.hasFilterByProfileId()) {
        asked["index"] = filter.getFilterByProfileId();
    }
    asked.update(toJson(filter, true));
    Json ways = Json::object();
    for (const Way& way : kWays) {
        if ((filter.getFilterMatchCriteria() & toMask(way.bit)) != 0) {
            ways[way.field].push_back(way.word);
        }
    }
    return {{"asked", asked}, {"loosely", ways}};
}

Json candidatesOf(const std::vector<vela::ProfileCandidate>& candidates, const Json& asked) {
    Json list = Json::array();
    Json first;
    for (const vela::ProfileCandidate& candidate : candidates) {
        const Json profile = profileOf(candidate.profile);
        const bool isFirst = candidate.fits() && first.is_null();
        Json mismatches = Json::object();
        for (const vela::FilterCriterion criterion : candidate.mismatches) {
            const std::string key = criterionName(criterion);
            mismatches[key] = {{"has", profile.value(key, Json())},
                               {"asked", asked.value(key, Json())}};
        }
        list.push_back(
            {{"readable", candidate.profile.has_value()},
             {"fits", candidate.fits()},
             {"first", isFirst},
             {"mismatches", mismatches},
             {"differs_from_first", candidate.fits() && !isFirst
                                        ? differencesOf(profile, first, "has", "first_has")
                                        : Json::object()},
             {"profile", profile}});
        first = isFirst ? profile : first;
    }
    return list;
}

Json messageOf(const vela::ModemMessage& message, const Backend& modem) {
    const std::string reason = failureOf(message, modem);
    const bool isNew = message.type == vela::ModemMessageType::CreateProfile;
    Json json{{"message", nameOf(message.type)}};
    setPlace(json, message.techType, message.profileId);
    json["outcome"] = nameOf(message.outcome);
    json["error"] = message.error == 0 ? Json() : Json(message.error);
    json["reason"] = reason.empty() ? Json() : Json(reason);
    json["microseconds"] =
        std::chrono::duration_cast<std::chrono::microseconds>(message.duration).count();
    const bool isWritten = message.profile != nullptr && isWrite(message);
    const bool isRead = message.profile != nullptr && !isWrite(message);
    json["sent"] = isWritten ? sentOf(*message.profile, isNew) : Json();
    json["read"] = isRead ? profileOf(*message.profile) : Json();
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

Json takenOf(const Json& document, const Json& yielded, const ProfileRecords& profiles) {
    const Json last = lastQuestion(document["steps"]);
    const bool isCompared = last.is_object() && last["kind"] == "compare";
    if (yielded.is_null() && !isCompared) {
        return {};
    }
    const Json& place = isCompared ? last : yielded;
    const ProfileRecord* record = recordAt(profiles, place);
    const Json profile = record == nullptr ? Json() : toJson(*record, true);
    Json taken{{"technology", place["technology"]}, {"index", place["index"]}};
    taken["in_modem"] = document["table_seen"] == true ? Json(record != nullptr) : Json();
    taken.update(originOf(place, document["steps"]));
    const Json& compared = taken["compared"];
    const Json differences =
        record == nullptr ? Json::object()
                          : differencesOf(profile, document["asked"].front(), "has", "asked");
    Json unknown = Json::array();
    Json told = Json::object();
    for (const auto& item : differences.items()) {
        // The library never reads the password of a 3GPP2 profile back.
        if (item.key() == "password" && item.value()["has"].is_null() &&
            place["technology"] == "3GPP2" && document["table_seen"] == false) {
            unknown.push_back(item.key());
        } else if (!item.value()["asked"].is_null()) {
            told[item.key()] = item.value();
            told[item.key()]["compared"] =
                std::count(compared.begin(), compared.end(), item.key()) != 0;
        }
    }
    taken.update({{"unknown", unknown}, {"differs_from_asked", told}, {"profile", profile}});
    return taken;
}

std::string outcomeOf(const Json& document, bool matches, bool hasFailed) {
    const Json& policy = document["policy"];
    if (policy == "match-attach") {
        return matches ? "matches" : "no-match";
    }
    if (policy == "apn-class" || policy == "type-mask") {
        return hasFailed ? "refused" : "done";
    }
    return document["taken"].is_null()                           ? "none"
           : document["taken"]["creation"] == "this_process_now" ? "created"
                                                                 : "found";
}

Json whyNotOf(const Json& document, const std::optional<ProfileRecords>& table) {
    const Json last = lastQuestion(document["steps"]);
    if (document["outcome"] != "no-match" || last.is_null()) {
        return {};
    }
    if (last["kind"] == "read") {
        return last["profile"].is_null() ? "not_readable" : "not_for_attach";
    }
    if (last["answer"] != "success") {
        return last["answer"] == "failure" ? "refresh_awaited" : "unknown";
    }
    const Json& candidates = last["candidates"];
    const bool isAllRead = std::all_of(candidates.begin(), candidates.end(),
                                       [](const Json& one) { return one["readable"] == true; });
    if (last["kind"] == "compare") {
        return isAllRead && !candidates.empty() ? "does_not_fit" : "not_readable";
    }
    // One of those that could not be read may be it.
    if (isAllRead || (table && recordAt(*table, last["asked"]) == nullptr)) {
        return "no_such_profile";
    }
    return table ? "not_readable" : "unknown";
}

Json leftBehindOf(const Json& document, const std::optional<ProfileRecords>& table) {
    if (!table) {
        return {};
    }
    Json list = Json::array();
    for (const Json& step : document["steps"]) {
        const bool isHeld = step["kind"] == "create" && !step["index"].is_null() &&
                            (document["is_released"] == false || step["persistent"] == true);
        if (step["kind"] != "create" || isHeld) {
            continue;
        }
        for (const Json& message : step["messages"]) {
            for (const Json& change : message["changes"]) {
                if (change["change"] == "created" && recordAt(*table, change) != nullptr) {
                    list.push_back(change);
                }
            }
        }
    }
    return list;
}

}  // namespace velactl
