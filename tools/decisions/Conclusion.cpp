// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "decisions/Conclusion.h"

#include <algorithm>

#include "decisions/Facts.h"
#include "profiles/Words.h"

namespace velactl {

namespace {

const ProfileRecord* recordAt(const ProfileRecords& records, const Json& place) {
    return findRecord(records, readTech("", place["technology"].get<std::string>()),
                      place["index"].get<int>());
}

/** The latest request that says whether a profile is the one that is wanted. */
Json lastQuestion(const Json& steps) {
    Json last;
    for (const Json& step : steps) {
        if (step["kind"] == "search" || step["kind"] == "read" || step["kind"] == "compare") {
            last = step;
        }
    }
    return last;
}

/** Its `creation`, and by which criteria it was found or compared. */
Json originOf(const Json& place, const Json& steps) {
    Json origin{{"creation", "before"}, {"compared", Json::array()}};
    for (const Json& step : steps) {
        if (step["kind"] == "create" && isAt(step, place)) {
            return {{"creation", "this_process_now"}, {"compared", Json::array()}};
        }
        for (const Json& candidate : step.value("candidates", Json::array())) {
            const Json& profile = candidate["profile"];
            if (isAt(profile, place) && (candidate["first"] == true || step["kind"] == "compare")) {
                origin["compared"] = Json::array();
                for (const auto& item : step["asked"].items()) {
                    origin["compared"].push_back(item.key());
                }
                origin["creation"] =
                    profile["made_by_this_process"] == true ? "this_process_before" : "before";
            }
        }
    }
    return origin;
}

}  // namespace

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

Json takenOf(const Json& document, const Json& yielded, const ProfileRecords& profiles) {
    const Json last = lastQuestion(document["steps"]);
    const bool isCompared = last.is_object() && last["kind"] == "compare";
    if (yielded.is_null() && !isCompared) {
        return {};
    }
    const Json& place = isCompared ? last : yielded;
    const ProfileRecord* record = recordAt(profiles, place);
    Json taken{{"technology", place["technology"]}, {"index", place["index"]}};
    taken.update(originOf(taken, document["steps"]));
    const Json profile = record == nullptr ? Json() : toJson(*record, true);
    Json differences = record == nullptr
                           ? Json::object()
                           : differencesOf(profile, document["asked"].front(), "asked", false);
    // The library never reads the password of a 3GPP2 profile back.
    const bool isUnread = taken["technology"] == "3GPP2" && document["table_seen"] == false &&
                          profile.is_object() && !profile.contains("password");
    taken["unknown"] =
        isUnread && differences.erase("password") != 0 ? Json::array({"password"}) : Json::array();
    const Json& compared = taken["compared"];
    for (auto& item : differences.items()) {
        item.value()["compared"] = std::count(compared.begin(), compared.end(), item.key()) != 0;
    }
    taken["differs_from_asked"] = std::move(differences);
    taken["profile"] = profile;
    return taken;
}

Json leftBehindOf(const Json& document, const std::optional<ProfileRecords>& table) {
    if (!table) {
        return {};
    }
    Json list = Json::array();
    for (const Json& step : document["steps"]) {
        if (step["kind"] != "create") {
            continue;
        }
        const bool isHeld = !step["index"].is_null() &&
                            (document["is_released"] == false || step["persistent"] == true);
        for (const Json& message : step["messages"]) {
            for (const Json& change : message["changes"]) {
                if (!isHeld && change["change"] == "created" &&
                    recordAt(*table, change) != nullptr) {
                    list.push_back(change);
                }
            }
        }
    }
    return list;
}

}  // namespace velactl
