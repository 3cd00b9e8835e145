// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "PolicyStory.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <string_view>

#include "LogMask.h"
#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

struct Sentence {
    std::string_view line;  // how the log line starts
    const char* words;
};

constexpr std::array kSentences{
    Sentence{"vela NULL apn scenario", "no APN name was asked for: the network decides"},
    Sentence{"vela Found an exact match",
             "exact match: APN name and IP types are the same, and the profile is the modem's own "
             "or an attach profile of the library"},
    Sentence{"vela Found a loose match",
             "loose match: the APN name is the same, the IP types fit or may be rewritten"},
    Sentence{"vela Found a VELA IA profile that matches",
             "an attach profile of the library has this APN name"},
    Sentence{"vela Found any VELA IA profile",
             "an attach profile of the library for another APN is taken over"},
    Sentence{"vela Modifying profile identified for IA",
             "the profile found gets the settings asked for"},
    Sentence{"vela VELA IA profile created", "nothing fits: a new attach profile is created"},
    Sentence{"vela matchLteAttachList <", "the profile can serve the attach"},
    Sentence{"vela matchLteAttachProfileId < did not match",
             "the profile cannot serve the attach with these settings"},
    Sentence{"found existing setupDataCall profile", "a profile for the call exists"},
    Sentence{"Modifying profile with input parameters",
             "updates are allowed: the profile found gets the settings asked for"},
    Sentence{"setupDataCall profile added",
             "nothing fits: a temporary profile is created for the call"},
    Sentence{"found an emergency profile by name",
             "a profile of this APN name supports emergency calls"},
    Sentence{"found a profile that supports emergency calls",
             "some other profile supports emergency calls"},
    Sentence{"emergency profile created",
             "no profile supports emergency calls: a new one is created, for them alone"},
    Sentence{"vela either tech type or apn class is missing",
             "an entry without an APN class is passed over"},
    Sentence{"Found a match for APN class",
             "profiles of this APN class exist: all are brought in line"},
    Sentence{"Did not find a match for APN class", "no profile has this APN class: one is created"},
    Sentence{"Error while modifying profile by APN class",
             "a profile could not be brought in line"},
    Sentence{"Could not add profile by APN class", "the profile could not be created"},
    Sentence{"vela APN type mask not present", "an entry names no APN types: none are taken"},
    Sentence{"vela Home IP type not present", "an entry names no IP type: dual-stack is taken"},
    Sentence{"ProfileCache: profile is unchanged",
             "it has these settings already: nothing is sent"},
    Sentence{"ProfileCache: failed to modify", "the modem refuses the change"},
    Sentence{"Unable send RLINK_WDS_CREATE", "the modem refuses to create it"},
};

bool startsWith(std::string_view line, std::string_view start) {
    return line.substr(0, start.size()) == start;
}

std::size_t countOf(std::string_view text, std::string_view word) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + word.size())) {
        ++count;
    }
    return count;
}

std::string searchText(std::string_view request) {
    for (const std::string_view heading : {"Filter params: ", "None: "}) {
        request.remove_prefix(startsWith(request, heading) ? heading.size() : 0);
    }
    std::string text = withoutPassword(request);
    if (!text.empty() && text.back() == ',') {
        text.pop_back();
    }
    return "searched for " + (text.empty() ? "any profile" : printable(text));
}

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

/** "vela updating profile id:1, tech type:0, with mask0x1:", or "with combined mask0x1:" */
std::string updateText(const std::string& line) {
    int index = 0;
    int tech = 0;
    unsigned int mask = 0;
    std::sscanf(line.c_str(), "vela updating profile id:%d, tech type:%d", &index, &tech);
    const std::size_t at = std::min(line.rfind("mask0x"), line.size());
    std::sscanf(line.c_str() + at, "mask0x%x", &mask);
    return word(static_cast<vela::TechType>(tech)) + " profile " + std::to_string(index) +
           " gets the types " + typesText(mask);
}

std::optional<std::string> wordsFor(const std::string& line) {
    for (const Sentence& sentence : kSentences) {
        if (startsWith(line, sentence.line)) {
            return sentence.words;
        }
    }
    if (startsWith(line, "vela processing APN name ")) {
        return groupText(line);
    }
    if (startsWith(line, "vela updating profile id:")) {
        return updateText(line);
    }
    if (startsWith(line, "Profile id ")) {
        return printable(line);
    }
    return std::nullopt;
}

}  // namespace

std::vector<std::string> storyOf(const std::vector<std::string>& log) {
    constexpr std::string_view kAsked = "Manager::filter > ";
    constexpr std::string_view kAnswered = "Manager::filter < ";
    std::vector<std::string> story;
    for (const std::string& line : log) {
        if (startsWith(line, kAsked)) {
            story.push_back(searchText(std::string_view(line).substr(kAsked.size())));
        } else if (startsWith(line, kAnswered) && !story.empty()) {
            const std::size_t found = countOf(line, "token=");
            story.back() += found == 0 ? ": none" : ": " + counted(found, "profile");
        } else if (auto words = wordsFor(line)) {
            story.push_back(*std::move(words));
        }
    }
    return story;
}

}  // namespace velactl
