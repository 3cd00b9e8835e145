// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Words.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <sstream>

#include "Text.h"
#include "ToolError.h"

namespace velactl {

namespace {

using vela::ApnClass;
using vela::ApnTypes;
using vela::AuthType;
using vela::IPType;
using vela::TechType;

template <typename Value>
struct Word {
    Value value;
    const char* name;
    bool isAlias = false;
};

constexpr std::array<Word<TechType>, 2> kTechs{
    {{TechType::TECH_3GPP, "3GPP"}, {TechType::TECH_3GPP2, "3GPP2"}}};
constexpr std::array<Word<IPType>, 7> kIPTypes{{{IPType::V4, "IPv4"},
                                                {IPType::V6, "IPv6"},
                                                {IPType::V4V6, "IPv4v6"},
                                                {IPType::V4, "IP", true},
                                                {IPType::V4, "v4", true},
                                                {IPType::V6, "v6", true},
                                                {IPType::V4V6, "v4v6", true}}};
constexpr std::array<Word<AuthType>, 4> kAuthTypes{{{AuthType::NONE, "none"},
                                                    {AuthType::PAP, "PAP"},
                                                    {AuthType::CHAP, "CHAP"},
                                                    {AuthType::PAP_CHAP, "PAP_CHAP"}}};
constexpr std::array<Word<ApnClass>, 4> kApnClasses{{{ApnClass::IMS, "IMS"},
                                                     {ApnClass::ADMN, "ADMN"},
                                                     {ApnClass::INET, "INET"},
                                                     {ApnClass::APP, "APP"}}};
constexpr std::array<Word<ApnTypes>, 12> kApnTypes{{{ApnTypes::DEFAULT, "default"},
                                                    {ApnTypes::MMS, "mms"},
                                                    {ApnTypes::SUPL, "supl"},
                                                    {ApnTypes::DUN, "dun"},
                                                    {ApnTypes::HIPRI, "hipri"},
                                                    {ApnTypes::FOTA, "fota"},
                                                    {ApnTypes::IMS, "ims"},
                                                    {ApnTypes::CBS, "cbs"},
                                                    {ApnTypes::IA, "ia"},
                                                    {ApnTypes::EMERGENCY, "emergency"},
                                                    {ApnTypes::MCX, "mcx"},
                                                    {ApnTypes::XCAP, "xcap"}}};

template <typename Words, typename Value>
std::string nameOf(const Words& words, Value value) {
    const auto* found = std::find_if(words.begin(), words.end(),
                                     [value](const auto& entry) { return entry.value == value; });
    return found == words.end() ? std::to_string(static_cast<int>(value)) : found->name;
}

template <typename Words>
auto find(const Words& words, std::string_view text) {
    return std::find_if(words.begin(), words.end(),
                        [text](const auto& entry) { return sameLetters(entry.name, text); });
}

template <typename Words>
std::string rightWords(const Words& words) {
    std::vector<std::string> names;
    for (const auto& entry : words) {
        if (!entry.isAlias) {
            names.emplace_back(entry.name);
        }
    }
    return alternatives(names);
}

template <typename Words>
auto read(const Words& words, std::string_view option, std::string_view text, const char* what,
          const char* orElse = "") {
    const auto* found = find(words, text);
    if (found == words.end()) {
        throw badUsage(std::string(option) + ": " + inQuotes(text) + " is no " + what + "; use " +
                       rightWords(words) + orElse);
    }
    return found->value;
}

}  // namespace

std::string word(TechType value) {
    return nameOf(kTechs, value);
}

std::string word(IPType value) {
    return value == IPType::UNKNOWN ? "unknown" : nameOf(kIPTypes, value);
}

std::string word(AuthType value) {
    return nameOf(kAuthTypes, value);
}

std::string word(ApnClass value) {
    return nameOf(kApnClasses, value);
}

std::vector<std::string> typeWords(unsigned int mask) {
    std::vector<std::string> names;
    for (const auto& entry : kApnTypes) {
        if ((mask & toMask(entry.value)) != 0) {
            names.emplace_back(entry.name);
            mask &= ~toMask(entry.value);
        }
    }
    if (mask != 0) {
        std::ostringstream rest;
        rest << "0x" << std::hex << mask;
        names.push_back(rest.str());
    }
    return names;
}

std::string typesText(unsigned int mask) {
    return mask == 0 ? "none" : join(typeWords(mask), ",");
}

std::optional<ApnTypes> typeNamed(std::string_view name) {
    const auto* found = find(kApnTypes, name);
    return found == kApnTypes.end() ? std::nullopt : std::optional(found->value);
}

TechType readTech(std::string_view option, std::string_view text) {
    return read(kTechs, option, text, "technology");
}

IPType readIPType(std::string_view option, std::string_view text) {
    return read(kIPTypes, option, text, "IP type");
}

AuthType readAuthType(std::string_view option, std::string_view text) {
    return read(kAuthTypes, option, text, "authentication type");
}

ApnClass readApnClass(std::string_view option, std::string_view text) {
    return read(kApnClasses, option, text, "APN class");
}

unsigned int readTypes(std::string_view option, std::string_view text) {
    constexpr const char* kOrNone = "; or none alone";
    unsigned int mask = 0;
    if (sameLetters(text, "none")) {
        return mask;
    }
    for (const std::string& name : split(text, ',')) {
        mask |= toMask(read(kApnTypes, option, name, "APN type", kOrNone));
    }
    if (mask == 0) {
        throw badUsage(std::string(option) + ": no APN type given; use " + rightWords(kApnTypes) +
                       kOrNone);
    }
    return mask;
}

}  // namespace velactl
