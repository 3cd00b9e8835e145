// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "LogMask.h"

#include <algorithm>
#include <array>

namespace velactl {

namespace {

// What may follow the password in a dump; none of it is free text, or else it is masked too.
constexpr std::array<std::string_view, 18> kLabels{
    "AuthType",           "HomeIPType",    "RoamIPType",           "CommonIPType",
    "ApnTypesMask",       "ApnClass",      "IsClatEnabled",        "OverrideHomeIPType",
    "LteRoamIP",          "UmtsRoamIP",    "MaxPdnsConnPerBlock",  "MaxPdnConnTimer",
    "PdnReqWaitInterval", "IsApnDisabled", "IsEmergencySupported", "IsVelaProfile",
    "IsIAProfile",        "ProfileName"};

bool isPlain(char letter) {
    return (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= 'a' && letter <= 'z') || letter == '_' || letter == '|' || letter == '-';
}

bool isLabel(std::string_view text) {
    return std::find(kLabels.begin(), kLabels.end(), text) != kLabels.end();
}

/** Whether the text is nothing but "label=value," over and over. */
bool isFields(std::string_view text) {
    while (!text.empty()) {
        const std::size_t equals = text.find('=');
        const std::size_t comma = text.find(',');
        if (equals == std::string_view::npos || comma == std::string_view::npos || equals > comma ||
            !isLabel(text.substr(0, equals))) {
            return false;
        }
        const std::string_view value = text.substr(equals + 1, comma - equals - 1);
        if (!std::all_of(value.begin(), value.end(), isPlain)) {
            return false;
        }
        text.remove_prefix(comma + 1);
    }
    return true;
}

}  // namespace

std::string withoutPassword(std::string_view line) {
    constexpr std::string_view kLabel = "Password=";
    const std::size_t found = line.find(kLabel);
    if (found == std::string_view::npos) {
        return std::string(line);
    }
    const std::size_t start = found + kLabel.size();
    std::string masked = std::string(line.substr(0, start)) + "***";
    for (std::size_t comma = line.find(',', start); comma != std::string_view::npos;
         comma = line.find(',', comma + 1)) {
        if (isFields(line.substr(comma + 1))) {
            return masked.append(line.substr(comma));
        }
    }
    return masked;
}

}  // namespace velactl
