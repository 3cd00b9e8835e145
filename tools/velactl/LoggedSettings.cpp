// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "LoggedSettings.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "LogMask.h"
#include "ProfileRecord.h"
#include "ToolError.h"
#include "Words.h"

namespace velactl {

namespace {

constexpr std::size_t kLongestLine = 511;

struct Setting {
    std::string_view label;
    void (*take)(LoggedSettings& settings, const std::string& value);
};

int number(const std::string& text) {
    return std::atoi(text.c_str());
}

/** A value without a name stands there as a number. */
template <typename Read>
auto named(Read read, const std::string& text) -> decltype(read("", text)) {
    try {
        return read("", text);
    } catch (const ToolError&) {
        return static_cast<decltype(read("", text))>(number(text));
    }
}

unsigned int types(std::string text) {
    std::replace(text.begin(), text.end(), '|', ',');
    return named(readTypes, text);
}

template <auto Set>
void text(LoggedSettings& settings, const std::string& value) {
    (settings.params.*Set)(value);
}

template <auto Set>
void count(LoggedSettings& settings, const std::string& value) {
    (settings.params.*Set)(number(value));
}

template <auto Set>
void flag(LoggedSettings& settings, const std::string& value) {
    (settings.params.*Set)(value == "true");
}

template <auto Set, auto Read>
void word(LoggedSettings& settings, const std::string& value) {
    (settings.params.*Set)(named(Read, value));
}

// In the order of the library's lines.
using Params = vela::ProfileParams;
constexpr std::array kSettings{
    Setting{"tech", [](auto& all, const auto& value) { all.tech = named(readTech, value); }},
    Setting{"id", [](auto& all, const auto& value) { all.index = number(value); }},
    Setting{"ApnName", text<&Params::setApnName>},
    Setting{"UserName", text<&Params::setUserName>},
    Setting{"Password", text<&Params::setPassword>},
    Setting{"AuthType", word<&Params::setAuthType, readAuthType>},
    Setting{"HomeIPType", word<&Params::setHomeIPType, readIPType>},
    Setting{"RoamIPType", word<&Params::setRoamIPType, readIPType>},
    Setting{"ApnTypesMask",
            [](auto& all, const auto& value) { all.params.setApnTypesMask(types(value)); }},
    Setting{"ApnClass", word<&Params::setApnClass, readApnClass>},
    Setting{"IsClatEnabled", flag<&Params::setIsClatEnabled>},
    Setting{"MaxPdnsConnPerBlock", count<&Params::setMaxPdnsConnPerBlock>},
    Setting{"MaxPdnConnTimer", count<&Params::setMaxPdnConnTimer>},
    Setting{"PdnReqWaitInterval", count<&Params::setPdnReqWaitInterval>},
    Setting{"IsApnDisabled", flag<&Params::setIsApnDisabled>},
    Setting{"IsEmergencySupported", flag<&Params::setIsEmergencySupported>},
    Setting{"IsVelaProfile", [](auto& all, const auto& value) { all.isVela = value == "true"; }},
    Setting{"IsIAProfile", [](auto& all, const auto& value) { all.isForAttach = value == "true"; }},
};

/** Where the value ends that starts at `start`: a name may contain commas, so that only a label of
 * those from `next` on ends it. */
std::size_t endOfValue(const std::string& text, std::size_t start, std::size_t next) {
    std::size_t end = text.size();
    for (; next < kSettings.size(); ++next) {
        const std::string mark = ',' + std::string(kSettings[next].label) + '=';
        end = std::min(end, text.find(mark, start));
    }
    return end;
}

}  // namespace

bool isCutLine(std::string_view line) {
    return line.size() >= kLongestLine;
}

LoggedSettings LoggedSettings::read(std::string_view logged, std::string_view line) {
    LoggedSettings result;
    result.isCut = isCutLine(line);
    std::string text = withoutPassword(logged);
    // The comma at the end, and what of a cut line stands after its last one.
    text.resize(std::min(text.rfind(','), text.size()));
    std::size_t at = 0;
    for (std::size_t i = 0; i < kSettings.size() && at < text.size(); ++i) {
        const std::string start = std::string(kSettings[i].label) + '=';
        if (text.compare(at, start.size(), start) == 0) {
            at += start.size();
            const std::size_t end = endOfValue(text, at, i + 1);
            kSettings[i].take(result, text.substr(at, end - at));
            at = end + 1;
        }
    }
    return result;
}

std::string LoggedSettings::describe() const {
    if (toJson(params, false).empty()) {
        return isCut ? "more than the log line holds" : "";
    }
    return velactl::describe(params, false) + (isCut ? " and more" : "");
}

}  // namespace velactl
