// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "decisions/Story.h"

#include <algorithm>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

// --- parts of the document in words

std::string valueText(const Json& value) {
    switch (value.type()) {
        case Json::value_t::null:
            return "not set";
        case Json::value_t::string:
            return value.get_ref<const std::string&>().empty()
                       ? "\"\""
                       : printable(value.get_ref<const std::string&>());
        case Json::value_t::boolean:
            return value.get<bool>() ? "yes" : "no";
        case Json::value_t::array:
            return value.empty() ? "none" : join(value.get<std::vector<std::string>>(), ",");
        default:
            return value.dump();
    }
}

/** "apn=internet, home_ip=IPv4 (or wider)"; `loosely` says what is compared how. */
std::string fieldsText(const Json& object, const Json& loosely = Json::object()) {
    std::vector<std::string> parts;
    for (const auto& item : object.items()) {
        if (item.key().find("_hex") != std::string::npos) {
            continue;
        }
        parts.push_back(item.key() + '=' + valueText(item.value()));
        if (loosely.contains(item.key())) {
            const auto ways = loosely[item.key()].get<std::vector<std::string>>();
            parts.back() += " (or " + alternatives(ways) + ')';
        }
    }
    return parts.empty() ? "nothing in particular" : join(parts, ", ");
}

/** "user is you, asked for me"; `other` is the second value's member, `between` stands before it.
 */
std::vector<std::string> differenceTexts(const Json& differences, const char* other,
                                         const std::string& between) {
    std::vector<std::string> texts;
    for (const auto& item : differences.items()) {
        const Json& has = item.value()["has"];
        const Json& wanted = item.value()[other];
        texts.push_back(has == wanted  // both are masked
                            ? "another " + item.key()
                            : item.key() + " is " + valueText(has) + between + valueText(wanted));
    }
    return texts;
}

/** What the modem keeps, where an IP type is why a profile does not fit and one alone does not tell
 * it. */
std::string ipText(const Json& candidate) {
    Json kept = Json::object();
    bool isOne = true;
    for (const char* key : {"pdp_type", "home_override", "lte_roaming", "umts_roaming"}) {
        if (candidate["profile"].contains(key)) {
            kept[key] = candidate["profile"][key];
            isOne = isOne && kept[key] == kept.front();
        }
    }
    const Json& mismatches = candidate["mismatches"];
    const bool matters = mismatches.contains("home_ip") || mismatches.contains("roam_ip");
    return matters && !isOne ? " [" + fieldsText(kept) + ']' : "";
}

std::string makerText(const Json& profile) {
    return profile.contains("made_by") ? "made by " + valueText(profile["made_by"])
                                       : "made by nobody knows whom";
}

std::string passedOver(const Json& step, const char* words) {
    return step["passed_over"] == true ? words : "";
}

// --- the story

/** The lines so far, each indented by the depth of what it tells. */
struct Lines {
    std::vector<std::string> lines;

    void add(std::size_t depth, const std::string& text) {
        lines.push_back(std::string(2 * depth, ' ') + text);
    }
};

void tellChanges(Lines& to, std::size_t depth, const std::string& intro, const Json& changes) {
    if (changes.empty()) {
        to.add(depth, intro + "nothing changed");
    }
    for (const Json& change : changes) {
        to.add(depth, intro + changeLine(change));
    }
}

void tellCandidate(Lines& to, const Json& candidate, bool isMeant) {
    const Json& profile = candidate["profile"];
    const Json& differences = candidate["differs_from_first"];
    if (candidate["readable"] == false) {
        to.add(2, "an entry that the library could not read");
    } else if (candidate["fits"] == false) {
        const auto texts = differenceTexts(candidate["mismatches"], "asked", ", asked for ");
        to.add(2, titleOf(profile, profile) + ": " + join(texts, "; ") + ipText(candidate));
    } else if (isMeant) {
        to.add(2, titleOf(profile, profile) + " fits");
    } else {
        const auto texts = differenceTexts(differences, "first_has", ", there ");
        to.add(2,
               titleOf(profile, profile) + " fits too, " +
                   (texts.empty() ? "and is like the first" : "not taken: " + join(texts, "; ")));
    }
}

void tellCandidates(Lines& to, const Json& step) {
    for (const Json& candidate : step["candidates"]) {
        tellCandidate(to, candidate, candidate["first"] == true || step["meant"] == "all");
    }
}

void tellSearch(Lines& to, const Json& step) {
    const Json& candidates = step["candidates"];
    const auto fitting = std::count_if(candidates.begin(), candidates.end(),
                                       [](const Json& entry) { return entry["fits"] == true; });
    const std::string result = step["answer"] != "success"
                                   ? "the library did not search"
                                   : (fitting == 0 ? "none" : std::to_string(fitting)) + " of " +
                                         counted(candidates.size(), "profile");
    to.add(1, "searched for " + fieldsText(step["asked"], step["loosely"]) + ": " + result);
    if (fitting > 1 && step["meant"] == "first") {
        to.add(2, "the first of the library's list counts; the order of the list is arbitrary");
    }
    tellCandidates(to, step);
}

void tellCompare(Lines& to, const Json& step) {
    to.add(1, titleOf(step) + " is compared with " + fieldsText(step["asked"], step["loosely"]) +
                  (step["matches"] == true ? ": it fits" : ": it does not fit"));
    tellCandidates(to, step);
}

void tellRead(Lines& to, const Json& step) {
    const Json& profile = step["profile"];
    to.add(1, titleOf(step, profile) +
                  (profile.is_null() ? " cannot be read" : " is looked at: " + makerText(profile)) +
                  passedOver(step, ", and so passed over"));
}

/** What became of a message; `known` is what the library knew before. */
void tellSent(Lines& to, const Json& message, const Json& known) {
    if (message["sent"].is_object()) {
        to.add(2, "sent: " + fieldsText(message["sent"]));
    }
    if (!message["reason"].is_null()) {
        to.add(2, message["reason"].get<std::string>());
    }
    if (message["table_seen"] == true) {
        tellChanges(to, 2, "in the modem: ", message["changes"]);
    } else if (message["table_seen"] == false) {
        to.add(2, message["reason"].is_null()
                      ? "the modem has carried it out; its table is not seen"
                      : "the modem's table is not seen");
        if (known.is_object()) {
            to.add(2, "before, the library knew " + fieldsText(known));
        }
    }
}

void tellMessage(Lines& to, const Json& message) {
    tellSent(to, message, {});
}

/** How a request to write went, behind what it was to do. */
void tellWrite(Lines& to, const Json& step, const std::string& aim) {
    to.add(1, aim);
    if (const Json left = step.value("not_written", Json::array()); !left.empty()) {
        to.add(2, "not written, as a " + step["technology"].get<std::string>() +
                      " profile does not hold it: " + valueText(left));
    }
    for (const Json& message : step["messages"]) {
        tellSent(to, message, step.value("known", Json()));
    }
    if (!step["why_unsent"].is_null()) {
        to.add(2, "nothing is sent: " + wordsOf(step["why_unsent"]));
    }
}

void tellCreate(Lines& to, const Json& step) {
    tellWrite(to, step,
              (step["persistent"] == true ? "a persistent " : "a temporary ") +
                  step["technology"].get<std::string>() + " profile" +
                  (step["for_attach"] == true ? " for the attach" : "") +
                  " is to be created: " + fieldsText(step["requested"]));
}

void tellModify(Lines& to, const Json& step) {
    tellWrite(to, step,
              titleOf(step, step["known"]) + " is to get " + fieldsText(step["requested"]));
}

void tellRelease(Lines& to, const Json& step) {
    tellWrite(to, step, "a key of " + titleOf(step) + " is let go");
}

void tellMeanwhile(Lines& to, const Json& step) {
    tellChanges(to, 1, "meanwhile, by no write that the library knows of: ", step["changes"]);
}

void tellIndication(Lines& to, const Json& step) {
    to.add(1, "the library takes a report of the modem for a change by others: " +
                  wordsOf(step["change"]) + ", " + titleOf(step));
}

void tellService(Lines& to, const Json& step) {
    to.add(1, "the modem's service: " + wordsOf(step["state"]));
}

void tellEntry(Lines& to, const Json& step) {
    to.add(1, "entry " + fieldsText(step["asked"]) + passedOver(step, ": it is passed over"));
}

void tellSteps(Lines& to, const Json& steps) {
    constexpr std::pair<const char*, void (*)(Lines&, const Json&)> kKinds[]{
        {"search", tellSearch},         {"compare", tellCompare}, {"read", tellRead},
        {"create", tellCreate},         {"modify", tellModify},   {"release", tellRelease},
        {"message", tellMessage},       {"service", tellService}, {"meanwhile", tellMeanwhile},
        {"indication", tellIndication}, {"entry", tellEntry}};
    for (const Json& step : steps) {
        for (const auto& [kind, tell] : kKinds) {
            if (step["kind"] == kind) {
                tell(to, step);
            }
        }
    }
}

void tellAsked(Lines& to, const Json& document) {
    to.add(0, document["operation"].get<std::string>() + ", asked for:");
    for (const Json& entry : document["asked"]) {
        to.add(1, fieldsText(entry));
    }
    if (document["update_allowed"] == true) {
        to.add(1, "profiles that are found may be rewritten");
    }
}

std::string originText(const Json& creation, const Json& profile) {
    const std::string maker = creation == "this_process_now"      ? "made just now"
                              : creation == "this_process_before" ? "made by this process earlier"
                                                                  : makerText(profile);
    return maker +
           (!profile.contains("persistent") ? ", unknown whether persistent"
            : profile["persistent"] == true ? ", persistent"
                                            : ", temporary") +
           (!profile.contains("disabled") ? ""
            : profile["disabled"] == true ? ", disabled"
                                          : ", not disabled");
}

void tellTaken(Lines& to, const Json& taken) {
    const Json& profile = taken["profile"];
    to.add(1,
           profile.is_null() ? "what it holds is unknown" : originText(taken["creation"], profile));
    const Json& differences = taken["differs_from_asked"];
    const auto texts = differenceTexts(differences, "asked", ", asked was ");
    auto text = texts.begin();
    for (const Json& difference : differences) {
        to.add(1, *text++ + (difference["compared"] == true ? " (compared)" : " (not compared)"));
    }
    for (const Json& field : taken["unknown"]) {
        to.add(1, "whether its " + field.get<std::string>() + " is what was asked for is unknown");
    }
    if (!taken["compared"].empty()) {
        to.add(1, "compared were " + valueText(taken["compared"]));
    }
}

void tellResult(Lines& to, const Json& document) {
    const Json& taken = document["taken"];
    const Json& why = document["why_not"];
    to.add(0, "Result: " + document["outcome"].get<std::string>() +
                  (why.is_null() ? "" : ", " + wordsOf(why)) +
                  (taken.is_null() ? "" : ": " + titleOf(taken, taken["profile"])));
    if (!taken.is_null()) {
        tellTaken(to, taken);
    }
    if (document["table_seen"] == false) {
        to.add(0, "The modem's own table was not seen.");
    } else if (document["changes"].empty()) {
        to.add(0, "The modem's table is what it was, byte for byte.");
    }
}

}  // namespace

std::string wordsOf(const Json& name) {
    auto text = name.get<std::string>();
    std::replace(text.begin(), text.end(), '_', ' ');
    return text;
}

std::string titleOf(const Json& place, const Json& profile) {
    if (place["index"].is_null()) {
        return "a profile";
    }
    std::string number =
        place["technology"].get<std::string>() + " profile " + place["index"].dump();
    if (!profile.is_object()) {
        return number;
    }
    const std::string name = profile.value("apn", "");
    return number + " (" + (name.empty() ? "no APN name" : printable(name)) + ')';
}

std::vector<std::string> storyOf(const Json& document) {
    Lines story;
    tellAsked(story, document);
    tellSteps(story, document["steps"]);
    tellResult(story, document);
    tellSteps(story, document["release_steps"]);
    if (const Json& left = document["left_behind"]; !left.is_null()) {
        for (const Json& profile : left) {
            story.add(0, "Left behind: " + titleOf(profile, profile) + " is in the modem, " +
                             (profile["persistent"] == true ? "persistent" : "temporary") +
                             "; this policy made it, and nobody holds it");
        }
    }
    return std::move(story.lines);
}

}  // namespace velactl
