// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "decisions/Decision.h"

#include <utility>

#include "decisions/Facts.h"

namespace velactl {

namespace {

constexpr int kVersion = 1;

void setPlaceOf(Json& step, const vela::IProfileKey* key) {
    step.update({{"technology", Json()}, {"index", Json()}});
    if (key != nullptr) {
        setPlace(step, key->getTechType(), key->getProfileId());
    }
}

/** What is to be written, and what of it is left out. */
void addRequested(Json& step, const vela::ProfileParams& params, vela::TechType tech) {
    step["requested"] = toJson(params, true);
    step["requested"].erase("made_by");  // which no client sets
    step["not_written"] = fieldsNotKept(step["requested"], tech);
}

/** What the response tells. */
void addAnswer(Json& step, const vela::ClientResponse* response) {
    step["answer"] = response == nullptr                              ? "none"
                     : response->getStatus() == vela::Status::Success ? "success"
                                                                      : "failure";
    if (const auto* add = dynamic_cast<const vela::AddResponse*>(response)) {
        if (const auto key = add->getAddProfileKey()) {
            step["index"] = key->getProfileId();
        }
    } else if (const auto* match = dynamic_cast<const vela::MatchResponse*>(response)) {
        step["matches"] = match->getMatchResult();
    } else if (const auto* get = dynamic_cast<const vela::GetResponse*>(response)) {
        const auto params = get->getParams();
        step["profile"] = params ? toJson(*params, true) : Json();
    }
}

/** Why nothing was sent for a request; null when something was. */
Json whyUnsent(const Json& step) {
    if (!step["messages"].empty()) {
        return {};
    }
    if (step["answer"] != "success") {
        return step["answer"] == "none" ? "no_answer" : "refused_by_library";
    }
    if (step["kind"] != "modify") {
        return "unknown";
    }
    return step["known"].is_null() ? "settings_unknown" : "nothing_to_change";
}

}  // namespace

// --- the run

Decision::Decision(Workbench& bench, const std::string& operation)
    : bench(bench), document{{"version", kVersion}, {"operation", operation}} {
    bench.settle();
    bench.takeTraffic();
    table = before = bench.modem().modemProfiles();
    bench.tell(this);
}

void Decision::end() {
    document["steps"] = take();
    document["table_seen"] = before && table;
    document["taken"] = takenOf(document, yielded, table ? *table : bench.libraryProfiles());
    document["outcome"] = outcomeOf(document, matches, !reasons.empty());
    document["why_not"] = whyNotOf(document, table);
    document["changes"] = changesOf(before, table);
    before = table;
    conclude(false, Json::array());
}

void Decision::release() {
    conclude(true, take());
}

void Decision::conclude(bool isReleased, Json releaseSteps) {
    document["is_released"] = isReleased;
    document["release_steps"] = std::move(releaseSteps);
    document["release_changes"] = changesOf(before, table);
    document["left_behind"] = leftBehindOf(document, table);
    document["failures"] = reasons;
    document["done"] = reasons.empty() && refusal().empty();
}

std::string Decision::refusal() const {
    const Json& outcome = document["outcome"];
    const Json& taken = document["taken"];
    return outcome == "no-match" ? "the library says no: " + wordsOf(document["why_not"])
           : outcome == "none"   ? "no profile"
           : taken.is_object() && taken["in_modem"] == false ? "the profile is not in the modem"
                                                             : "";
}

/** Waits until the library rests. The steps since the last call. */
Json Decision::take() {
    bench.settle();
    bench.tell(nullptr);
    bench.takeTraffic();
    noteOthersChanges();
    Json taken = std::exchange(steps, Json::array());
    bench.tell(this);
    return taken;
}

/** What has changed in the modem since it was seen last. */
Json Decision::changesSince() {
    auto now = bench.modem().modemProfiles();
    Json changes = changesOf(table, now);
    table = std::move(now);
    return changes;
}

void Decision::noteOthersChanges() {
    if (Json changes = changesSince(); !changes.empty()) {
        steps.push_back({{"kind", "meanwhile"}, {"changes", std::move(changes)}});
    }
}

/** What was read, or entered on, and then left for something else was not wanted. */
void Decision::passOver(const char* kind) {
    if (!steps.empty() && steps.back()["kind"] == kind) {
        steps.back()["passed_over"] = true;
    }
}

// --- requests

void Decision::onRequest(const vela::ClientRequest& request) {
    if (request.getRequestType() == vela::ReqRespType::Filter) {
        passOver("read");
    }
    noteOthersChanges();
    open[&request] = stepOf(request);
}

/** The profile as the library has told it last: null when it could not read it, nothing where a
 * change of its own has made that obsolete. */
Json Decision::knownOf(const Json& place) const {
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        if (isAt(*step, place) && (*step)["kind"] == "modify" && !(*step)["messages"].empty()) {
            return Json::object();
        }
        if (isAt(*step, place) && step->value("message", "") == "read_profile") {
            return (*step)["read"];
        }
        for (const Json& candidate : step->value("candidates", Json::array())) {
            if (isAt(candidate["profile"], place)) {
                return candidate["profile"];
            }
        }
        if ((*step)["kind"] == "search") {  // of all that the library holds
            break;
        }
    }
    return {};
}

Json Decision::stepOf(const vela::ClientRequest& request) const {
    Json step{{"kind", nameOf(request.getRequestType())}};
    const auto search = [&](const vela::FilterProfileParams& filter) {
        const Json policy = document.value("policy", Json());
        const bool isAll = policy == "apn-class" || policy == "type-mask";
        step.update(searchOf(filter));
        step.update({{"meant", isAll ? "all" : "first"}, {"candidates", Json::array()}});
    };
    if (const auto* filter = dynamic_cast<const vela::FilterRequest*>(&request)) {
        search(filter->getFilterParams());
    } else if (const auto* match = dynamic_cast<const vela::MatchRequest*>(&request)) {
        setPlaceOf(step, match->getMatchKey().get());
        search(match->getMatchParams());
    } else if (const auto* get = dynamic_cast<const vela::GetRequest*>(&request)) {
        setPlaceOf(step, get->getProfileKey().get());
        step.update({{"profile", Json()}, {"passed_over", false}});
    } else {
        if (const auto* add = dynamic_cast<const vela::AddRequest*>(&request)) {
            const vela::AddProfileParams params = add->getAddProfileParams();
            setPlace(step, params.getTechType(), -1);
            step["persistent"] = params.getIsPersistent();
            step["for_attach"] = params.getIsIAProfile();
            addRequested(step, params, params.getTechType());
        } else if (const auto* modify = dynamic_cast<const vela::ModifyRequest*>(&request)) {
            const auto place = modify->getModifyProfileKey();
            setPlaceOf(step, place.get());
            addRequested(step, modify->getModifyProfileParams(), place->getTechType());
            step["known"] = knownOf(step);
        } else {
            setPlaceOf(step, nullptr);
        }
        step["messages"] = Json::array();
    }
    return step;
}

void Decision::onSearch(const vela::ClientRequest& request,
                        const std::vector<vela::ProfileCandidate>& candidates) {
    const auto searching = open.find(&request);
    if (searching != open.end()) {
        Json& step = searching->second;
        step["candidates"] = candidatesOf(candidates, step["asked"]);
    }
}

void Decision::onResponse(const vela::ClientRequest& request, const vela::ClientResponse* response,
                          std::chrono::nanoseconds /*duration*/) {
    auto entry = open.extract(&request);
    if (entry.empty()) {
        return;
    }
    Json& step = entry.mapped();
    addAnswer(step, response);
    if (step.contains("messages")) {
        step["why_unsent"] = whyUnsent(step);
    }
    if (step.contains("known") && step["known"].empty()) {
        step["known"] = Json();
    }
    const Json why = step.value("why_unsent", Json());
    if (step["kind"] == "search" && step["answer"] != "success") {
        reasons.emplace_back("the library did not search, as it awaits the end of a refresh");
    } else if (why == "settings_unknown" || why == "refused_by_library" || why == "no_answer") {
        reasons.push_back(titleOf(step) + ": nothing is sent: " + wordsOf(why));
    }
    // A key that is let go without a consequence.
    const bool isIdle =
        step["kind"] == "release" && step["messages"].empty() && step["answer"] == "success";
    if (!isIdle) {
        steps.push_back(std::move(step));
    }
}

// --- what crosses over

void Decision::onMessage(const vela::ModemMessage& message) {
    Json told = messageOf(message, bench.modem());
    told["changes"] = isWrite(message) ? changesSince() : Json::array();
    told["table_seen"] = isWrite(message) ? Json(table.has_value()) : Json();
    if (!told["reason"].is_null()) {
        reasons.push_back(told["reason"]);
    }
    const auto served = open.find(message.request);
    if (served == open.end()) {
        steps.push_back({{"kind", "message"}});
        steps.back().update(told);
        return;
    }
    Json& step = served->second;
    if (step["kind"] == "release") {
        setPlace(step, message.techType, message.profileId);
    }
    step["messages"].push_back(std::move(told));
}

void Decision::onIndication(const vela::ModemIndication& indication) {
    if (indication.outcome != vela::IndicationOutcome::Confirmed) {
        steps.push_back(indicationOf(indication));
    }
}

void Decision::onService(vela::ServiceState state) {
    steps.push_back({{"kind", "service"}, {"state", nameOf(state)}});
}

// --- policies

void Decision::onPolicyBegin(const vela::PolicyCall& policy) {
    const Json asked = entriesOf(policy);
    if (depth++ == 0) {
        document["policy"] = nameOf(policy.policy);
        document["update_allowed"] = policy.isProfileUpdateAllowed;
        document["asked"] = asked;
    } else {
        steps.push_back({{"kind", "entry"}, {"asked", asked.front()}, {"passed_over", false}});
    }
}

void Decision::onPolicyEnd(const vela::PolicyCall& /*policy*/, const vela::PolicyResult& result) {
    passOver("entry");
    passOver("read");
    if (--depth == 0) {
        matches = result.matches;
        if (result.key != nullptr) {
            setPlaceOf(yielded, result.key);
        }
    }
}

}  // namespace velactl
