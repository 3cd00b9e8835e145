// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Test data as text: tables, parameters, settings of the modem; and messages as bytes.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "vela/ProfileParams.h"
#include "velasim/Settings.h"

namespace vela {

/** The parts of `text` between separators, without the blanks around them. */
inline std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream rest(text);
    for (std::string part; std::getline(rest, part, separator);) {
        const std::size_t start = part.find_first_not_of(" \n");
        parts.push_back(start == std::string::npos
                            ? ""
                            : part.substr(start, part.find_last_not_of(" \n") - start + 1));
    }
    return parts;
}

/** A table: rows end in ";;", cells in "|". */
inline std::vector<std::vector<std::string>> rowsOf(const std::string& table) {
    std::vector<std::vector<std::string>> rows;
    for (std::size_t at = 0, end = 0; (end = table.find(";;", at)) != std::string::npos;
         at = end + 2) {
        rows.push_back(split(table.substr(at, end - at), '|'));
    }
    return rows;
}

/** The pairs of a line such as "apn=net home=3". */
inline std::vector<std::pair<std::string, std::string>> pairsOf(const std::string& line) {
    std::vector<std::pair<std::string, std::string>> pairs;
    std::istringstream words(line);
    for (std::string word; words >> word;) {
        const std::size_t equals = word.find('=');
        pairs.emplace_back(word.substr(0, equals), word.substr(equals + 1));
    }
    return pairs;
}

/** The modem's name of a setting, which tables may shorten. */
inline std::string settingName(const std::string& name) {
    static const auto pairs = pairsOf(
        "apn=apn_name user=user_name pdp=pdp_type lte=lte_roaming_pdp_type name=profile_name "
        "umts=umts_roaming_pdp_type types=apn_type_mask class=apn_class stays=persistence_flag "
        "sos=emergency_calls_support home=override_home_pdp_type");
    static const std::map<std::string, std::string> names(pairs.begin(), pairs.end());
    const auto found = names.find(name);
    return found == names.end() ? name : found->second;
}

/** Settings of the modem: "apn=net pdp=3 clat_enabled=1". */
inline velasim::Settings settingsOf(const std::string& line) {
    velasim::Settings settings{};
    for (const auto& [name, value] : pairsOf(line)) {
        const std::string field = settingName(name);
        EXPECT_TRUE(velasim::isTextField(field)
                        ? velasim::setText(settings, field, value)
                        : velasim::setNumber(settings, field, std::stoull(value)))
            << line;
    }
    return settings;
}

inline velasim::Technology technologyOf(const std::string& settings) {
    const bool is3gpp2 = settings.find("3gpp2") != std::string::npos;
    return is3gpp2 ? velasim::Technology::ThreeGpp2 : velasim::Technology::ThreeGpp;
}

/** `line` with the values that `settings` has; "-" for what is absent. */
inline std::string valuesOf(const velasim::Settings& settings, const std::string& line) {
    std::string values;
    for (const auto& [name, value] : pairsOf(line)) {
        const auto number = velasim::numberOf(settings, settingName(name));
        const auto text = velasim::textOf(settings, settingName(name)).value_or("-");
        values +=
            (values.empty() ? "" : " ") + name + "=" + (number ? std::to_string(*number) : text);
    }
    return values;
}

template <typename Params, typename Value>
auto setterOf(void (Params::*set)(Value)) {
    return [set](FilterProfileParams& filter, const std::string& text) {
        if constexpr (std::is_same_v<Value, std::string>) {
            (filter.*set)(text);
        } else {
            (filter.*set)(static_cast<Value>(std::stoi(text)));
        }
    };
}

/** A filter by short names: "tech=1 apn=net home=3 criteria=4"; numbers are the enumerators'. */
inline FilterProfileParams filterOf(const std::string& line) {
    using Filter = FilterProfileParams;
    static const std::map<std::string, std::function<void(Filter&, const std::string&)>> setters{
        {"criteria", setterOf(&Filter::addFilterMatchCriteria)},
        {"tech", setterOf(&Filter::setFilterByTechType)},
        {"id", setterOf(&Filter::setFilterByProfileId)},
        {"ia", setterOf(&Filter::setFilterByIsIAProfile)},
        {"vela", setterOf(&Filter::setFilterByIsVelaProfile)},
        {"apn", setterOf(&Filter::setApnName)},
        {"user", setterOf(&Filter::setUserName)},
        {"pw", setterOf(&Filter::setPassword)},
        {"auth", setterOf(&Filter::setAuthType)},
        {"home", setterOf(&Filter::setHomeIPType)},
        {"roam", setterOf(&Filter::setRoamIPType)},
        {"mask", setterOf(&Filter::setApnTypesMask)},
        {"class", setterOf(&Filter::setApnClass)},
        {"clat", setterOf(&Filter::setIsClatEnabled)},
        {"emergency", setterOf(&Filter::setIsEmergencySupported)},
        {"disabled", setterOf(&Filter::setIsApnDisabled)},
        {"block", setterOf(&Filter::setMaxPdnsConnPerBlock)},
        {"timer", setterOf(&Filter::setMaxPdnConnTimer)},
        {"wait", setterOf(&Filter::setPdnReqWaitInterval)}};
    FilterProfileParams filter;
    for (const auto& [name, value] : pairsOf(line)) {
        setters.at(name)(filter, value);
    }
    return filter;
}

/** The same as parameters of a profile. */
inline ProfileParams paramsOf(const std::string& line) {
    return filterOf(line);
}

inline std::list<ProfileParams> listOf(const std::string& entries) {
    std::list<ProfileParams> list;
    for (const std::string& entry : split(entries, ',')) {
        list.push_back(paramsOf(entry));
    }
    return list;
}

/** A message as it crosses to the modem, padding included. */
template <typename Message>
std::string_view bytesOf(const Message& message) {
    return {reinterpret_cast<const char*>(&message), sizeof(message)};
}

}  // namespace vela
