// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Modem3gpp2Profile.h"

#include <utility>

#include "MessagePart.h"
#include "ModemConversions.h"

namespace vela {
namespace {

bool asksFor3gppOnly(const FilterProfileParams& params) {
    return params.hasFilterByIsIAProfile() || params.hasFilterByIsVelaProfile() ||
           params.hasRoamIPType() || params.hasMaxPdnsConnPerBlock() ||
           params.hasMaxPdnConnTimer() || params.hasPdnReqWaitInterval() ||
           params.hasIsApnDisabled() || params.hasIsEmergencySupported();
}

}  // namespace

Modem3gpp2Profile::Modem3gpp2Profile(const ProfileParams& params)
    : ModemProfile(TechType::TECH_3GPP2, params) {
    if (params.hasHomeIPType()) {
        commonIPType = params.getHomeIPType();
    }
}

Modem3gpp2Profile::Modem3gpp2Profile(int profileIndex,
                                     const wds_get_profile_settings_resp_msg_v01& response)
    : ModemProfile(TechType::TECH_3GPP2, profileIndex, response) {
    const wds_profile_settings_type_v01& from = response.settings;
    readPart(from.pdn_type_3gpp2_valid, from.pdn_type_3gpp2, commonIPType, convertPdnType);
    if (from.apn_string_3gpp2_valid != 0) {
        apnName = convertToLower(textFrom(from.apn_string_3gpp2));
    }
    readPart(from.apn_class_3gpp2_valid, from.apn_class_3gpp2, apnClass, enumFromByte<ApnClass>);
    readPart(from.authentication_protocol_valid, from.authentication_protocol, authType,
             convertToAuthType);
    readText(from.user_id_valid, from.user_id, userName);
}

bool Modem3gpp2Profile::match(const FilterProfileParams& params) const {
    if (!ModemProfile::match(params) || asksFor3gppOnly(params)) {
        return false;
    }
    return !params.hasHomeIPType() ||
           matchIPType(params, params.getHomeIPType(), getCommonIPType(),
                       FilterMatchCriteria::HomeIPSubset, FilterMatchCriteria::HomeIPSuperset);
}

std::shared_ptr<ModemProfile> Modem3gpp2Profile::diff(const ModifyProfileParams& params) const {
    ProfileParams changes;
    bool changed = false;
    updateDiffParameters(params, changes, changed);
    if (params.hasHomeIPType() && commonIPType != params.getHomeIPType()) {
        changes.setHomeIPType(params.getHomeIPType());
        changed = true;
    }
    return changed ? std::make_shared<Modem3gpp2Profile>(changes) : nullptr;
}

ProfileParams Modem3gpp2Profile::get() const {
    FilterProfileParams params;
    updateGetParameters(params);
    if (commonIPType) {
        params.setHomeIPType(*commonIPType);
    }
    return ProfileParams(std::move(params));
}

wds_create_profile_req_msg_v01 Modem3gpp2Profile::constructAddRequest() const {
    wds_create_profile_req_msg_v01 request;
    updateAddParameters(request);
    request.profile_type = WDS_PROFILE_TYPE_3GPP2_V01;
    writeSettings(request.settings);
    return request;
}

wds_modify_profile_settings_req_msg_v01 Modem3gpp2Profile::constructModifyRequest() const {
    wds_modify_profile_settings_req_msg_v01 request;
    updateModifyParameters(request);
    writeSettings(request.settings);
    return request;
}

void Modem3gpp2Profile::writeSettings(wds_profile_settings_type_v01& to) const {
    writeText(apnName, to.apn_string_3gpp2_valid, to.apn_string_3gpp2);
    writePart(commonIPType, to.pdn_type_3gpp2_valid, to.pdn_type_3gpp2,
              convertToRlinkProfilePdnType);
    writePart(authType, to.authentication_protocol_valid, to.authentication_protocol,
              convertToRlinkAuthProtocol);
    writePart(authType, to.pdn_level_authentication_protocol_valid,
              to.pdn_level_authentication_protocol, convertToRlinkPdnLevelAuthProtocol);
    writePart(apnClass, to.apn_class_3gpp2_valid, to.apn_class_3gpp2, enumToByte<ApnClass>);
    writeText(userName, to.user_id_valid, to.user_id);
    writeText(userName, to.pdn_level_user_id_valid, to.pdn_level_user_id);
    writeText(password, to.authentication_password_valid, to.authentication_password);
    writeText(password, to.pdn_level_authentication_password_valid,
              to.pdn_level_authentication_password);
}

}  // namespace vela
