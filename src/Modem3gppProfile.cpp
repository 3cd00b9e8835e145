// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Modem3gppProfile.h"

#include <array>
#include <tuple>
#include <utility>

#include "DumpText.h"
#include "MessagePart.h"
#include "ModemConversions.h"
#include "SharedField.h"

namespace vela {
namespace {

void readRoamIPType(std::uint8_t valid, const wds_common_pdp_type_enum_v01& type,
                    std::optional<IPType>& field) {
    // The unset value means that no roaming type was configured: the field stays absent. For the
    // home override it means UNKNOWN, so that one is read by the plain conversion.
    if (type != WDS_COMMON_PDP_TYPE_UNSET_V01) {
        readPart(valid, type, field, convertPdpType);
    }
}

}  // namespace

struct Modem3gppProfile::Fields {
    static constexpr auto kOwn = std::tuple(
        SharedField{&ProfileParams::hasMaxPdnsConnPerBlock, &ProfileParams::getMaxPdnsConnPerBlock,
                    &ProfileParams::setMaxPdnsConnPerBlock, &Modem3gppProfile::maxPdnsConnPerBlock},
        SharedField{&ProfileParams::hasMaxPdnConnTimer, &ProfileParams::getMaxPdnConnTimer,
                    &ProfileParams::setMaxPdnConnTimer, &Modem3gppProfile::maxPdnConnTimer},
        SharedField{&ProfileParams::hasPdnReqWaitInterval, &ProfileParams::getPdnReqWaitInterval,
                    &ProfileParams::setPdnReqWaitInterval, &Modem3gppProfile::pdnReqWaitInterval},
        SharedField{&ProfileParams::hasIsApnDisabled, &ProfileParams::getIsApnDisabled,
                    &ProfileParams::setIsApnDisabled, &Modem3gppProfile::isApnDisabled},
        SharedField{
            &ProfileParams::hasIsEmergencySupported, &ProfileParams::getIsEmergencySupported,
            &ProfileParams::setIsEmergencySupported, &Modem3gppProfile::isEmergencySupported});
    static constexpr auto kIPTypes =
        std::array{&Modem3gppProfile::overrideHomeIPType, &Modem3gppProfile::lteRoamIPType,
                   &Modem3gppProfile::umtsRoamIPType};
};

Modem3gppProfile::Modem3gppProfile(const ProfileParams& params)
    : ModemProfile(TechType::TECH_3GPP, params) {
    forEachField(Fields::kOwn, [&](const auto& field) { field.read(params, *this); });
    std::optional<IPType> home;
    std::optional<IPType> roam;
    std::optional<IPType> overrideHome;
    getNewIPTypes(params, home, roam, overrideHome);
    commonIPType = home;
    lteRoamIPType = roam;
    umtsRoamIPType = roam;
    overrideHomeIPType = overrideHome;
}

Modem3gppProfile::Modem3gppProfile(int profileIndex,
                                   const wds_get_profile_settings_resp_msg_v01& response)
    : ModemProfile(TechType::TECH_3GPP, profileIndex, response) {
    const wds_profile_settings_type_v01& from = response.settings;
    readText(from.profile_name_valid, from.profile_name, profileName);
    readIPTypes(from);
    if (from.apn_name_valid != 0) {
        apnName = convertToLower(textFrom(from.apn_name));
    }
    readPart(from.apn_class_valid, from.apn_class, apnClass, enumFromByte<ApnClass>);
    readPart(from.emergency_calls_support_valid, from.emergency_calls_support, isEmergencySupported,
             flagFromByte);
    readPart(from.authentication_preference_valid, from.authentication_preference, authType,
             convertToAuthType);
    readPart(from.max_pdn_connections_per_block_valid, from.max_pdn_connections_per_block,
             maxPdnsConnPerBlock, numberFromShort);
    readPart(from.max_pdn_connection_timer_valid, from.max_pdn_connection_timer, maxPdnConnTimer,
             numberFromShort);
    readPart(from.pdn_request_wait_interval_valid, from.pdn_request_wait_interval,
             pdnReqWaitInterval, numberFromShort);
    readPart(from.apn_disabled_flag_valid, from.apn_disabled_flag, isApnDisabled, flagFromByte);
    readText(from.user_name_valid, from.user_name, userName);
    readText(from.password_valid, from.password, password);
}

void Modem3gppProfile::readIPTypes(const wds_profile_settings_type_v01& from) {
    readPart(from.pdp_type_valid, from.pdp_type, commonIPType, convertPdpType);
    readPart(from.override_home_pdp_type_valid, from.override_home_pdp_type, overrideHomeIPType,
             convertPdpType);
    readRoamIPType(from.lte_roaming_pdp_type_valid, from.lte_roaming_pdp_type, lteRoamIPType);
    readRoamIPType(from.umts_roaming_pdp_type_valid, from.umts_roaming_pdp_type, umtsRoamIPType);
}

void Modem3gppProfile::getNewIPTypes(const ProfileParams& params, std::optional<IPType>& home,
                                     std::optional<IPType>& roam,
                                     std::optional<IPType>& overrideHome) const {
    home = params.hasHomeIPType() ? params.getHomeIPType() : homeIPType();
    if (params.hasRoamIPType()) {
        roam = params.getRoamIPType();
    } else if (lteRoamIPType == umtsRoamIPType) {
        roam = lteRoamIPType;
    }
    if (!home || !roam) {
        return;
    }
    if (home != roam) {
        overrideHome = home;
        home = IPType::V4V6;
    } else if (overrideHomeIPType) {
        overrideHome = IPType::UNKNOWN;
    }
}

// Without the override, what the modem calls the PDP type.
std::optional<IPType> Modem3gppProfile::homeIPType() const {
    return getOverrideHomeIPType() != IPType::UNKNOWN ? overrideHomeIPType : commonIPType;
}

// What a filter may ask for: without roaming types a profile roams as it does everything else.
std::optional<IPType> Modem3gppProfile::roamIPType() const {
    if (!lteRoamIPType && !umtsRoamIPType) {
        return commonIPType;
    }
    return getLteRoamIPType() == getUmtsRoamIPType() ? lteRoamIPType : std::nullopt;
}

bool Modem3gppProfile::isIAProfile() const {
    return profileName == kVelaIAName;
}

bool Modem3gppProfile::isVelaProfile() const {
    return isIAProfile() || profileName == kVelaName;
}

bool Modem3gppProfile::match(const FilterProfileParams& params) const {
    if (!ModemProfile::match(params)) {
        return false;
    }
    if (params.hasFilterByIsIAProfile() && params.getIsIAProfile() != isIAProfile()) {
        return false;
    }
    if (params.hasFilterByIsVelaProfile() && params.getIsVelaProfile() != isVelaProfile()) {
        return false;
    }
    return matchHomeIPType(params) && matchRoamIPType(params) &&
           allMatch(Fields::kOwn, params, *this);
}

bool Modem3gppProfile::matchHomeIPType(const FilterProfileParams& params) const {
    if (!params.hasHomeIPType()) {
        return true;
    }
    const std::optional<IPType> actual = homeIPType();
    return actual &&
           matchIPType(params, params.getHomeIPType(), *actual, FilterMatchCriteria::HomeIPSubset,
                       FilterMatchCriteria::HomeIPSuperset);
}

bool Modem3gppProfile::matchRoamIPType(const FilterProfileParams& params) const {
    if (!params.hasRoamIPType()) {
        return true;
    }
    const std::optional<IPType> actual = roamIPType();
    return actual &&
           matchIPType(params, params.getRoamIPType(), *actual, FilterMatchCriteria::RoamIPSubset,
                       FilterMatchCriteria::RoamIPSuperset);
}

void Modem3gppProfile::apply(std::shared_ptr<ModemProfile> other) {
    ModemProfile::apply(other);
    const auto from = std::dynamic_pointer_cast<Modem3gppProfile>(other);
    if (!from) {
        return;
    }
    for (const auto field : Fields::kIPTypes) {
        if ((*from).*field) {
            this->*field = (*from).*field;
        }
    }
    forEachField(Fields::kOwn, [&](const auto& field) { field.copy(*from, *this); });
}

std::shared_ptr<ModemProfile> Modem3gppProfile::diff(const ModifyProfileParams& params) const {
    ProfileParams differences;
    bool changed = false;
    updateDiffParameters(params, differences, changed);
    forEachField(Fields::kOwn,
                 [&](const auto& field) { field.compare(params, *this, differences, changed); });
    auto result = std::make_shared<Modem3gppProfile>(differences);

    std::optional<IPType> home;
    std::optional<IPType> roam;
    std::optional<IPType> overrideHome;
    getNewIPTypes(params, home, roam, overrideHome);
    const auto update = [&](const std::optional<IPType>& wanted, auto field) {
        if (wanted && wanted != this->*field) {
            (*result).*field = wanted;
            changed = true;
        }
    };
    update(home, &Modem3gppProfile::commonIPType);
    update(roam, &Modem3gppProfile::lteRoamIPType);
    update(roam, &Modem3gppProfile::umtsRoamIPType);
    update(overrideHome, &Modem3gppProfile::overrideHomeIPType);
    return changed ? result : nullptr;
}

ProfileParams Modem3gppProfile::get() const {
    FilterProfileParams params;
    updateGetParameters(params);
    params.setFilterByIsIAProfile(isIAProfile());
    params.setFilterByIsVelaProfile(isVelaProfile());
    if (const std::optional<IPType> home = homeIPType()) {
        params.setHomeIPType(*home);
    }
    if (lteRoamIPType && lteRoamIPType == umtsRoamIPType) {
        params.setRoamIPType(*lteRoamIPType);
    }
    forEachField(Fields::kOwn, [&](const auto& field) { field.write(*this, params); });
    return ProfileParams(std::move(params));
}

wds_create_profile_req_msg_v01 Modem3gppProfile::constructAddRequest() const {
    wds_create_profile_req_msg_v01 request;
    updateAddParameters(request);
    request.profile_type = WDS_PROFILE_TYPE_3GPP_V01;
    writeSettings(request.settings);
    return request;
}

wds_modify_profile_settings_req_msg_v01 Modem3gppProfile::constructModifyRequest() const {
    wds_modify_profile_settings_req_msg_v01 request;
    updateModifyParameters(request);
    writeSettings(request.settings);
    return request;
}

void Modem3gppProfile::writeSettings(wds_profile_settings_type_v01& to) const {
    writeText(profileName, to.profile_name_valid, to.profile_name);
    writeText(apnName, to.apn_name_valid, to.apn_name);
    writeIPTypes(to);
    writePart(isEmergencySupported, to.emergency_calls_support_valid, to.emergency_calls_support,
              flagToByte);
    writePart(maxPdnsConnPerBlock, to.max_pdn_connections_per_block_valid,
              to.max_pdn_connections_per_block, numberToShort);
    writePart(maxPdnConnTimer, to.max_pdn_connection_timer_valid, to.max_pdn_connection_timer,
              numberToShort);
    writePart(pdnReqWaitInterval, to.pdn_request_wait_interval_valid, to.pdn_request_wait_interval,
              numberToShort);
    writePart(isApnDisabled, to.apn_disabled_flag_valid, to.apn_disabled_flag, flagToByte);
    writePart(authType, to.authentication_preference_valid, to.authentication_preference,
              convertToRlinkAuthPref);
    writePart(apnClass, to.apn_class_valid, to.apn_class, enumToByte<ApnClass>);
    writeText(userName, to.user_name_valid, to.user_name);
    writeText(password, to.password_valid, to.password);
}

void Modem3gppProfile::writeIPTypes(wds_profile_settings_type_v01& to) const {
    writePart(commonIPType, to.pdp_type_valid, to.pdp_type, convertToRlinkPdpType);
    writePart(overrideHomeIPType, to.override_home_pdp_type_valid, to.override_home_pdp_type,
              convertToRlinkCommonPdpType);
    writePart(lteRoamIPType, to.lte_roaming_pdp_type_valid, to.lte_roaming_pdp_type,
              convertToRlinkCommonPdpType);
    writePart(umtsRoamIPType, to.umts_roaming_pdp_type_valid, to.umts_roaming_pdp_type,
              convertToRlinkCommonPdpType);
}

std::string Modem3gppProfile::dump() const {
    DumpText text(DumpText::Booleans::Digits, 2 * DumpText::kProfile);
    text << ModemProfile::dump();
    return text.field("OverrideHomeIPType", overrideHomeIPType)
        .field("LteRoamIP", lteRoamIPType)
        .field("UmtsRoamIP", umtsRoamIPType)
        .field("MaxPdnsConnPerBlock", maxPdnsConnPerBlock)
        .field("MaxPdnConnTimer", maxPdnConnTimer)
        .field("PdnReqWaitInterval", pdnReqWaitInterval)
        .field("IsApnDisabled", isApnDisabled)
        .field("IsEmergencySupported", isEmergencySupported)
        .field("ProfileName", profileName)
        .take();
}

}  // namespace vela
