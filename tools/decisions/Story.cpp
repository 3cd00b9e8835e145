// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "decisions/Decision.h"

#include <algorithm>
#include <utility>

#include "profiles/Text.h"

namespace velactl {

namespace {

// --- parts of the document in words

std::string fieldText(const std::string& key, const Json& value) {
    const ProfileField* field = value.is_boolean() ? nullptr : fieldNamed(key);
    const std::string text = field == nullptr ? valueText(value) : valueText(*field, value);
    return orAbsent(value.is_null() ? Json() : Json(text), "not set");
}

/** "apn=internet, home_ip=IPv4 (or wider)"; `loosely` says what is compared how. */
std::string fieldsText(const Json& object, const Json& loosely = Json::object()) {
    Names parts;
    for (const auto& item : object.items()) {
        if (item.key().find("_hex") != std::string::npos) {
            continue;
        }
        parts.push_back(item.key() + '=' + fieldText(item.key(), item.value()));
        if (loosely.contains(item.key())) {
            const auto ways = loosely[item.key()].get<Names>();
            parts.back() += " (or " + alternatives(ways) + ')';
        }
    }
    return parts.empty() ? "nothing in particular" : join(parts, ", ");
}

/** "user is you, asked for me"; `other` is the second value's member, after `between`. */
Names differenceTexts(const Json& differences, const char* other, const std::string& between) {
    Names texts;
    for (const auto& item : differences.items()) {
        const Json& has = item.value()["has"];
        const Json& wanted = item.value()[other];
        texts.push_back(has == wanted  // both are masked
                            ? "another " + item.key()
                            : item.key() + " is " + fieldText(item.key(), has) + between +
                                  fieldText(item.key(), wanted));
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
    return profile.contains("made_by") ? "made by " + fieldText("made_by", profile["made_by"])
                                       : "maker unknown";
}

std::string passedOver(const Json& step, const char* words) {
    return step["passed_over"] == true ? words : "";
}

// --- the story

/** The lines so far, each indented by the depth of what it tells. */
struct Lines {
    Names lines;

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

/** Of a search, or of one profile that is compared. */
void tellQuestion(Lines& to, const Json& step) {
    const Json& candidates = step["candidates"];
    const std::string asked = fieldsText(step["asked"], step["loosely"]);
    const auto fitting = std::count_if(candidates.begin(), candidates.end(),
                                       [](const Json& entry) { return entry["fits"] == true; });
    if (step["kind"] == "compare") {
        to.add(1, titleOf(step) + " is compared with " + asked +
                      (step["matches"] == true ? ": it fits" : ": it does not fit"));
    } else {
        to.add(1, "searched for " + asked + ": " +
                      (step["answer"] != "success"
                           ? "the library did not search"
                           : (fitting == 0 ? "none" : std::to_string(fitting)) + " of " +
                                 counted(candidates.size(), "profile")));
    }
    if (fitting > 1 && step["meant"] == "first") {
        to.add(2, "the first of the library's list counts; the order of the list is arbitrary");
    }
    for (const Json& candidate : candidates) {
        tellCandidate(to, candidate, candidate["first"] == true || step["meant"] == "all");
    }
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

/** What a request to write was to do. */
std::string aimOf(const Json& step) {
    if (step["kind"] == "release") {
        return "a key of " + titleOf(step) + " is let go";
    }
    const std::string fields = fieldsText(step["requested"]);
    return step["kind"] == "modify"
               ? titleOf(step, step["known"]) + " is to get " + fields
               : (step["persistent"] == true ? "a persistent " : "a temporary ") +
                     step["technology"].get<std::string>() + " profile" +
                     (step["for_attach"] == true ? " for the attach" : "") +
                     " is to be created: " + fields;
}

void tellWrite(Lines& to, const Json& step) {
    to.add(1, aimOf(step));
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

void tellStep(Lines& to, const Json& step) {
    const Json& kind = step["kind"];
    if (kind == "search" || kind == "compare") {
        tellQuestion(to, step);
    } else if (kind == "read") {
        const Json& profile = step["profile"];
        to.add(1, titleOf(step, profile) +
                      (profile.is_null() ? " cannot be read"
                                         : " is looked at: " + makerText(profile)) +
                      passedOver(step, ", and so passed over"));
    } else if (kind == "message") {
        tellSent(to, step, {});
    } else if (kind == "meanwhile") {
        tellChanges(to, 1, "meanwhile, by no write that the library knows of: ", step["changes"]);
    } else if (kind == "indication") {
        to.add(1, "the library takes a report of the modem for a change by others: " +
                      wordsOf(step["change"]) + ", " + titleOf(step));
    } else if (kind == "service") {
        to.add(1, "the modem's service: " + wordsOf(step["state"]));
    } else if (kind == "entry") {
        to.add(1, "entry " + fieldsText(step["asked"]) + passedOver(step, ": it is passed over"));
    } else if (kind == "create" || kind == "modify" || kind == "release") {
        tellWrite(to, step);
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
    to.add(1, taken["in_modem"] == false ? "it is not in the modem"
              : profile.is_null()        ? "what it holds is unknown"
                                         : originText(taken["creation"], profile));
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
    return replaced(name.get<std::string>(), '_', ' ');
}

Names storyOf(const Json& document) {
    Lines story;
    story.add(0, document["operation"].get<std::string>() + ", asked for:");
    for (const Json& entry : document["asked"]) {
        story.add(1, fieldsText(entry));
    }
    if (document["update_allowed"] == true) {
        story.add(1, "profiles that are found may be rewritten");
    }
    for (const Json& step : document["steps"]) {
        tellStep(story, step);
    }
    tellResult(story, document);
    for (const Json& step : document["release_steps"]) {
        tellStep(story, step);
    }
    if (const Json& left = document["left_behind"]; !left.is_null()) {
        for (const Json& profile : left) {
            story.add(0, "Left behind: " + titleOf(profile, profile) + " is in the modem, " +
                             (profile["persistent"] == true ? "persistent" : "temporary") +
                             "; this policy made it, and no key to it is held");
        }
    }
    return std::move(story.lines);
}

}  // namespace velactl
