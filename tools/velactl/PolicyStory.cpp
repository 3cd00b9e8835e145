// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "PolicyStory.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "LoggedSettings.h"
#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

bool startsWith(std::string_view line, std::string_view start) {
    return line.substr(0, start.size()) == start;
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::size_t countOf(std::string_view text, std::string_view word) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + word.size())) {
        ++count;
    }
    return count;
}

/** "3GPP:1 token=5" as "3GPP profile 1". */
std::string keyName(std::string_view key) {
    const std::size_t colon = key.find(':');
    if (colon == std::string_view::npos) {
        return "no profile";
    }
    const int index = std::atoi(std::string(key.substr(colon + 1)).c_str());
    return std::string(key.substr(0, colon)) + " profile " + std::to_string(index);
}

/** What follows a key. */
std::string_view afterKey(std::string_view request) {
    const std::size_t token = request.find(" token=");
    const std::size_t end = request.find(' ', std::min(token, request.size() - 1) + 1);
    return end == std::string_view::npos ? std::string_view() : request.substr(end + 1);
}

/** A search without its criteria. */
std::string_view afterCriteria(std::string_view request) {
    const std::size_t end = request.find(": ");
    return end == std::string_view::npos ? std::string_view() : request.substr(end + 2);
}

/** What a search looks through. */
std::string subject(const LoggedSettings& search) {
    if (search.isForAttach.value_or(false)) {
        return "attach profiles of the library";
    }
    const std::string makers = !search.isVela   ? ""
                               : *search.isVela ? " of the library"
                                                : " that others made";
    return (search.tech ? word(*search.tech) + ' ' : "") + "profiles" + makers;
}

/** Turns log lines into steps. A step is told when its end is known. */
class Story {
  public:
    void read(const std::string& line);
    std::vector<std::string> take() { return std::move(steps); }

  private:
    struct Handler;
    static const std::array<Handler, 18> kHandlers;

    void tell(std::string step) { steps.push_back(std::move(step)); }

    void startSearch(std::string_view request);
    void endSearch(std::string_view answer);
    void look(std::string_view request);
    void endLook(std::string_view answer);
    void takeExactMatch(std::string_view);
    void takeLooseMatch(std::string_view);
    void takeNamedProfile(std::string_view);
    void refuseOwnProfile(std::string_view);
    void missMatch(std::string_view);
    void compare(std::string_view request);
    void endComparing(std::string_view answer);
    void startChange(std::string_view request);
    void endChange(std::string_view);
    void keepUnchanged(std::string_view);
    void refuseChange(std::string_view);
    void startCreation(std::string_view request);
    void endCreation(std::string_view profile);
    void refuseCreation(std::string_view);

    std::vector<std::string> steps;
    std::string line;
    LoggedSettings search;
    std::size_t found = 0;
    /** The profile that was looked at and not taken yet, and why it may be passed over. */
    std::string lookedAt;
    std::string flaw;
    /** What a request that is under way names and asks for. */
    std::string name;
    LoggedSettings asked;
};

struct Story::Handler {
    std::string_view start;  // of the log line; what follows goes to the function
    void (Story::*tell)(std::string_view rest);
};

constexpr std::array<Story::Handler, 18> Story::kHandlers{{
    {"Manager::filter > Filter params: ", &Story::startSearch},
    {"Manager::filter < ", &Story::endSearch},
    {"Manager::getProfile > Get ", &Story::look},
    {"Manager::getProfile < ", &Story::endLook},
    {"vela Found an exact match", &Story::takeExactMatch},
    {"vela Found a loose match", &Story::takeLooseMatch},
    {"vela Found a VELA IA profile that matches", &Story::takeNamedProfile},
    {"Profile id ", &Story::refuseOwnProfile},
    {"vela matchLteAttachProfileId < did not match", &Story::missMatch},
    {"Manager::match > Match ", &Story::compare},
    {"Manager::match < ", &Story::endComparing},
    {"Manager::modifyProfile > Modify ", &Story::startChange},
    {"Diff: ", &Story::endChange},
    {"ProfileCache: profile is unchanged", &Story::keepUnchanged},
    {"ProfileCache: failed to modify", &Story::refuseChange},
    {"Manager::addProfile > Add ", &Story::startCreation},
    {"Added: ", &Story::endCreation},
    {"Unable send RLINK_WDS_CREATE", &Story::refuseCreation},
}};

struct Sentence {
    std::string_view line;  // how the log line starts
    const char* words;
};

constexpr std::array kSentences{
    Sentence{"vela NULL apn scenario", "no APN name was asked for: the network decides"},
    Sentence{"vela Found any VELA IA profile",
             "an attach profile of the library for another APN is taken over"},
    Sentence{"vela matchLteAttachList <", "the profile can serve the attach"},
    Sentence{"found existing setupDataCall profile", "a profile for the call exists"},
    Sentence{"Modifying profile with input parameters",
             "updates are allowed: the profile found is to be what is asked for"},
    Sentence{"found an emergency profile by name",
             "a profile of this APN name supports emergency calls"},
    Sentence{"found a profile that supports emergency calls",
             "some other profile supports emergency calls"},
    Sentence{"vela either tech type or apn class is missing",
             "an entry without an APN class is passed over"},
    Sentence{"Found a match for APN class",
             "profiles of this APN class exist: all are brought in line"},
    Sentence{"Did not find a match for APN class", "no profile has this APN class"},
    Sentence{"vela APN type mask not present", "an entry names no APN types: none are taken"},
    Sentence{"vela Home IP type not present", "an entry names no IP type: dual-stack is taken"},
};

/** "vela processing APN name NAME, V4 mask:0x1, v6 mask0x0:, v4v6 mask:0x0" */
std::string groupText(const std::string& line) {
    constexpr std::string_view kStart = "vela processing APN name ";
    const std::size_t end = std::min(line.rfind(", V4 mask:"), line.size());
    unsigned int v4 = 0;
    unsigned int v6 = 0;
    unsigned int v4v6 = 0;
    std::sscanf(line.c_str() + end, ", V4 mask:0x%x, v6 mask0x%x:, v4v6 mask:0x%x", &v4, &v6,
                &v4v6);
    return "APN " + inQuotes(line.substr(kStart.size(), end - kStart.size())) +
           ": types of its IPv4 entries " + typesText(v4) + ", of IPv6 " + typesText(v6) +
           ", of IPv4v6 " + typesText(v4v6);
}

void Story::read(const std::string& logLine) {
    line = logLine;
    for (const Handler& handler : kHandlers) {
        if (startsWith(line, handler.start)) {
            return (this->*handler.tell)(std::string_view(line).substr(handler.start.size()));
        }
    }
    for (const Sentence& sentence : kSentences) {
        if (startsWith(line, sentence.line)) {
            return tell(sentence.words);
        }
    }
    if (startsWith(line, "vela processing APN name ")) {
        tell(groupText(line));
    }
}

// --- searches

void Story::startSearch(std::string_view request) {
    if (!lookedAt.empty()) {
        tell(std::exchange(lookedAt, "") + " is passed over: " + flaw);
    }
    search = LoggedSettings::read(afterCriteria(request), line);
    const std::string wanted = search.describe();
    tell("searched for " + subject(search) +
         (search.index ? " of index " + std::to_string(*search.index) : "") +
         (wanted.empty() ? "" : " with " + wanted) +
         (contains(request, "IPSubset") ? ", where one IP type may contain the other" : ""));
}

void Story::endSearch(std::string_view answer) {
    found = countOf(answer, "token=");
    if (!steps.empty()) {
        steps.back() += found == 0
                            ? ": none"
                            : (isCutLine(line) ? ": at least " : ": ") + counted(found, "profile");
    }
}

void Story::look(std::string_view request) {
    lookedAt = keyName(request);
}

void Story::endLook(std::string_view answer) {
    flaw = startsWith(answer, "Get Success") ? "the library made it, and not for the attach"
                                             : "it cannot be read";
}

void Story::takeExactMatch(std::string_view /*rest*/) {
    tell("exact match: " + std::exchange(lookedAt, "") +
         " has the APN name and IP types asked for, and the library did not make it for another "
         "purpose");
}

void Story::takeLooseMatch(std::string_view /*rest*/) {
    const std::string words =
        search.params.hasApnName() ? "the APN name is the same" : "any APN name will do";
    tell("loose match: " + words +
         (search.isVela ? ", and the IP types fit"
                        : ", and updates are allowed: the IP types may be rewritten"));
}

void Story::takeNamedProfile(std::string_view /*rest*/) {
    tell(search.params.hasApnName() ? "an attach profile of the library has this APN name"
                                    : "an attach profile of the library will do, whatever its APN");
}

// --- one given profile

void Story::refuseOwnProfile(std::string_view /*rest*/) {
    tell(std::exchange(lookedAt, "") +
         " cannot serve the attach: the library made it, and not for "
         "the attach");
}

void Story::missMatch(std::string_view /*rest*/) {
    tell(found == 0 && search.index ? "there is no 3GPP profile " + std::to_string(*search.index)
                                    : "the profile cannot serve the attach with these settings");
}

void Story::compare(std::string_view request) {
    const std::string wanted =
        LoggedSettings::read(afterCriteria(afterKey(request)), line).describe();
    tell(keyName(request) + " is compared with " + (wanted.empty() ? "nothing" : wanted) +
         (contains(request, "IPSubset") ? ", where one IP type may contain the other" : ""));
}

void Story::endComparing(std::string_view answer) {
    if (!steps.empty()) {
        steps.back() += contains(answer, "true") ? ": it fits" : ": it differs";
    }
}

// --- requests to the modem

void Story::startChange(std::string_view request) {
    name = keyName(request);
    asked = LoggedSettings::read(afterKey(request), line);
}

void Story::endChange(std::string_view /*rest*/) {
    tell(name + " gets " + asked.describe());
}

void Story::keepUnchanged(std::string_view /*rest*/) {
    const std::string wanted = asked.describe();
    tell(wanted.empty() ? "nothing is to be changed in " + name
                        : name + " has " + wanted + " already: nothing is sent");
}

void Story::refuseChange(std::string_view /*rest*/) {
    tell("the modem refuses to give " + name + ' ' + asked.describe());
}

void Story::startCreation(std::string_view request) {
    asked = LoggedSettings::read(afterCriteria(request), line);
    name = !contains(request.substr(0, request.find(": ")), "persist=true") ? "a temporary profile"
           : asked.isForAttach.value_or(false)                              ? "an attach profile"
                                                                            : "a profile";
}

void Story::endCreation(std::string_view profile) {
    constexpr std::string_view kIndex = "ProfileId=";
    const std::size_t at = std::min(profile.find(kIndex), profile.size());
    const std::string_view index = profile.substr(std::min(at + kIndex.size(), profile.size()));
    tell("nothing fits: " + name + " is created, index " +
         std::string(index.substr(0, index.find(','))));
}

void Story::refuseCreation(std::string_view /*rest*/) {
    tell("nothing fits, and the modem refuses to create " + name);
}

}  // namespace

std::vector<std::string> storyOf(const std::vector<std::string>& log) {
    Story story;
    for (const std::string& line : log) {
        story.read(line);
    }
    return story.take();
}

}  // namespace velactl
