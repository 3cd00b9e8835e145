// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "SettingsView.h"

#include <array>
#include <cstdint>
#include <optional>

#include "Text.h"

namespace velactl {

namespace {

using velasim::Settings;

constexpr std::uint64_t kUnsetIPType = 255;

/** Gives what `read` found under `field` to `set`. */
template <typename Read, typename Set>
void take(const Settings& settings, const char* field, Read read, Set set) {
    if (const auto value = read(settings, field)) {
        set(*value);
    }
}

// Bit n of the library's mask is this bit of the modem's.
constexpr std::array<unsigned, 12> kModemBits{0, 2, 4, 3, 5, 6, 1, 7, 8, 9, 11, 10};

unsigned int typesOf(std::uint64_t modemMask) {
    unsigned int mask = 0;
    for (unsigned bit = 0; bit < kModemBits.size(); ++bit) {
        mask |= ((modemMask >> kModemBits[bit]) & 1U) != 0 ? 1U << bit : 0U;
    }
    return mask;
}

vela::IPType ipType(std::uint64_t number, std::array<std::uint64_t, 3> numbers) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i] == number) {
            return static_cast<vela::IPType>(i + 1);
        }
    }
    return vela::IPType::UNKNOWN;
}

vela::IPType pdpType(std::uint64_t number) {
    return ipType(number, {0, 2, 3});
}

vela::IPType commonType(std::uint64_t number) {
    return ipType(number, {0, 1, 2});
}

void viewIPTypes(const Settings& settings, vela::ProfileParams& params) {
    const auto number = [&](const char* field) { return velasim::numberOf(settings, field); };
    const auto override = number("override_home_pdp_type");
    if (override && commonType(*override) != vela::IPType::UNKNOWN) {
        params.setHomeIPType(commonType(*override));
    } else if (const auto common = number("pdp_type")) {
        params.setHomeIPType(pdpType(*common));
    }
    const auto lte = number("lte_roaming_pdp_type");
    if (lte && lte != kUnsetIPType && lte == number("umts_roaming_pdp_type")) {
        params.setRoamIPType(commonType(*lte));
    }
}

void viewShared(const Settings& settings, vela::ProfileParams& params) {
    take(settings, "apn_type_mask", velasim::numberOf,
         [&](auto value) { params.setApnTypesMask(typesOf(value)); });
    take(settings, "clat_enabled", velasim::numberOf,
         [&](auto value) { params.setIsClatEnabled(value != 0); });
}

void view3gpp(const Settings& settings, vela::FilterProfileParams& params) {
    const auto text = [&](const char* field, auto set) {
        take(settings, field, velasim::textOf, set);
    };
    const auto number = [&](const char* field, auto set) {
        take(settings, field, velasim::numberOf, set);
    };
    const std::string name = velasim::textOf(settings, "profile_name").value_or("");
    params.setFilterByIsIAProfile(name == "vela_profile_ia");
    params.setFilterByIsVelaProfile(name == "vela_profile" || name == "vela_profile_ia");
    text("apn_name", [&](const auto& value) { params.setApnName(value); });
    text("user_name", [&](const auto& value) { params.setUserName(value); });
    text("password", [&](const auto& value) { params.setPassword(value); });
    viewIPTypes(settings, params);
    number("authentication_preference",
           [&](auto value) { params.setAuthType(static_cast<vela::AuthType>(value & 3U)); });
    number("apn_class",
           [&](auto value) { params.setApnClass(static_cast<vela::ApnClass>(value)); });
    number("emergency_calls_support",
           [&](auto value) { params.setIsEmergencySupported(value != 0); });
    number("apn_disabled_flag", [&](auto value) { params.setIsApnDisabled(value != 0); });
    number("max_pdn_connections_per_block",
           [&](auto value) { params.setMaxPdnsConnPerBlock(static_cast<int>(value)); });
    number("max_pdn_connection_timer",
           [&](auto value) { params.setMaxPdnConnTimer(static_cast<int>(value)); });
    number("pdn_request_wait_interval",
           [&](auto value) { params.setPdnReqWaitInterval(static_cast<int>(value)); });
}

void view3gpp2(const Settings& settings, vela::ProfileParams& params) {
    take(settings, "apn_string_3gpp2", velasim::textOf,
         [&](const auto& value) { params.setApnName(value); });
    take(settings, "user_id", velasim::textOf,
         [&](const auto& value) { params.setUserName(value); });
    take(settings, "authentication_password", velasim::textOf,
         [&](const auto& value) { params.setPassword(value); });
    take(settings, "pdn_type_3gpp2", velasim::numberOf,
         [&](auto value) { params.setHomeIPType(commonType(value)); });
    take(settings, "authentication_protocol", velasim::numberOf, [&](auto value) {
        params.setAuthType(value > 3 ? vela::AuthType::NONE : static_cast<vela::AuthType>(value));
    });
    take(settings, "apn_class_3gpp2", velasim::numberOf,
         [&](auto value) { params.setApnClass(static_cast<vela::ApnClass>(value)); });
}

}  // namespace

ProfileRecord viewOf(velasim::Technology technology, const velasim::StoredProfile& profile) {
    vela::FilterProfileParams params;
    viewShared(profile.settings, params);
    const bool is3gpp2 = technology == velasim::Technology::ThreeGpp2;
    if (is3gpp2) {
        view3gpp2(profile.settings, params);
    } else {
        view3gpp(profile.settings, params);
    }
    return {is3gpp2 ? vela::TechType::TECH_3GPP2 : vela::TechType::TECH_3GPP, profile.index,
            vela::ProfileParams(params), profile.isPersistent()};
}

}  // namespace velactl
