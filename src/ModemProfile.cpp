// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ModemProfile.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>
#include <tuple>

#include "DumpText.h"
#include "LogWrapper.h"
#include "MessagePart.h"
#include "ModemConversions.h"
#include "SharedField.h"

namespace vela {
namespace {

std::string normalApnName(const std::string& name) {
    return convertToLower(name.substr(0, WDS_APN_NAME_MAX_V01));
}

bool has(const FilterProfileParams& params, FilterMatchCriteria bit) {
    return (params.getFilterMatchCriteria() & toMask(bit)) != 0;
}

template <typename Value>
void copyIfPresent(const std::optional<Value>& from, std::optional<Value>& to) {
    if (from) {
        to = from;
    }
}

}  // namespace

struct ModemProfile::Fields {
    static constexpr auto kSame =
        std::tuple(SharedField{&ProfileParams::hasUserName, &ProfileParams::getUserName,
                               &ProfileParams::setUserName, &ModemProfile::userName},
                   SharedField{&ProfileParams::hasPassword, &ProfileParams::getPassword,
                               &ProfileParams::setPassword, &ModemProfile::password},
                   SharedField{&ProfileParams::hasAuthType, &ProfileParams::getAuthType,
                               &ProfileParams::setAuthType, &ModemProfile::authType},
                   SharedField{&ProfileParams::hasApnClass, &ProfileParams::getApnClass,
                               &ProfileParams::setApnClass, &ModemProfile::apnClass},
                   SharedField{&ProfileParams::hasIsClatEnabled, &ProfileParams::getIsClatEnabled,
                               &ProfileParams::setIsClatEnabled, &ModemProfile::isClatEnabled});
};

ModemProfile::ModemProfile(TechType tech, const ProfileParams& params) : techType(tech) {
    if (params.hasApnName()) {
        apnName = normalApnName(params.getApnName());
    }
    if (params.hasApnTypesMask()) {
        apnTypesMask = convertToRlinkApnTypeMask(params.getApnTypesMask());
    }
    forEachField(Fields::kSame, [&](const auto& field) { field.read(params, *this); });
}

ModemProfile::ModemProfile(TechType tech, int index,
                           const wds_get_profile_settings_resp_msg_v01& response)
    : techType(tech), profileId(index) {
    const wds_profile_settings_type_v01& settings = response.settings;
    if (settings.apn_type_mask_valid != 0) {
        apnTypesMask = settings.apn_type_mask;
    }
    readPart(settings.clat_enabled_valid, settings.clat_enabled, isClatEnabled, flagFromByte);
    isPersistent = settings.persistence_flag_valid != 0 && settings.persistence_flag != 0;
}

ModemProfile::~ModemProfile() {
    LogWrapper::getInstance().log(LogLevel::Debug, kLogTag, "~ModemProfile()");
    // The list is emptied before the first callback runs: one that drops a key comes back to this
    // object, and must not find listeners that are about to be called.
    const std::list<ExpirationListener> last = std::exchange(listeners, {});
    for (const ExpirationListener& listener : last) {
        if (!expired(listener)) {
            LogWrapper::getInstance().log(LogLevel::Debug, kLogTag, "invoke callback");
            listener.first();
        }
    }
}

bool ModemProfile::match(const FilterProfileParams& params) const {
    if (params.hasFilterByTechType() && params.getFilterByTechType() != techType) {
        return false;
    }
    if (params.hasFilterByProfileId() && params.getFilterByProfileId() != profileId) {
        return false;
    }
    return matchApnName(params) && matchApnTypesMask(params) &&
           allMatch(Fields::kSame, params, *this);
}

bool ModemProfile::matchApnName(const FilterProfileParams& params) const {
    if (!params.hasApnName()) {
        return true;
    }
    if (!apnName) {
        return false;
    }
    const std::string_view wanted =
        std::string_view(*params.apnName).substr(0, WDS_APN_NAME_MAX_V01);
    const auto isSame = [](char own, char asked) { return own == convertToLower(asked); };
    if (has(params, FilterMatchCriteria::ApnNameSubset)) {
        return wanted.empty() || std::search(apnName->begin(), apnName->end(), wanted.begin(),
                                             wanted.end(), isSame) != apnName->end();
    }
    return std::equal(apnName->begin(), apnName->end(), wanted.begin(), wanted.end(), isSame);
}

bool ModemProfile::matchApnTypesMask(const FilterProfileParams& params) const {
    if (!params.hasApnTypesMask()) {
        return true;
    }
    if (!apnTypesMask) {
        return false;
    }
    return has(params, FilterMatchCriteria::ApnTypeBitmaskSubset)
               ? matchSubsetApnTypesMask(params.getApnTypesMask())
               : matchExactApnTypesMask(params.getApnTypesMask());
}

bool ModemProfile::matchSubsetApnTypesMask(unsigned int apnTypes) const {
    const std::uint64_t wanted = convertToRlinkApnTypeMask(apnTypes);
    return (getApnTypesMask() & wanted) == wanted;
}

bool ModemProfile::matchExactApnTypesMask(unsigned int apnTypes) const {
    return getApnTypesMask() == convertToRlinkApnTypeMask(apnTypes);
}

bool ModemProfile::matchIPType(const FilterProfileParams& params, IPType wanted, IPType actual,
                               FilterMatchCriteria subset, FilterMatchCriteria superset) {
    const auto wantedBits = static_cast<std::uint32_t>(wanted);
    const auto actualBits = static_cast<std::uint32_t>(actual);
    const std::uint32_t common = wantedBits & actualBits;
    return wanted == actual || (has(params, subset) && common == wantedBits) ||
           (has(params, superset) && common == actualBits);
}

void ModemProfile::apply(std::shared_ptr<ModemProfile> other) {
    if (!other) {
        return;
    }
    if (other->apnName) {
        apnName = normalApnName(*other->apnName);
    }
    copyIfPresent(other->commonIPType, commonIPType);
    copyIfPresent(other->apnTypesMask, apnTypesMask);
    forEachField(Fields::kSame, [&](const auto& field) { field.copy(*other, *this); });
}

std::string ModemProfile::dump() const {
    return DumpText(DumpText::Booleans::Digits, DumpText::kProfile)
        .field("TechType", std::optional(techType))
        .field("ProfileId", std::optional(profileId))
        .field("ApnName", apnName)
        .field("UserName", userName)
        .field("Password", password)
        .field("AuthType", authType)
        .field("CommonIPType", commonIPType)
        .field("ApnTypesMask", apnTypesMask)
        .field("ApnClass", apnClass)
        .field("IsClatEnabled", isClatEnabled)
        .take();
}

wds_profile_identifier_type_v01 ModemProfile::constructProfileIdentifier() const {
    return convertToProfileIdentifier(techType, profileId);
}

void ModemProfile::registerExpirationListener(std::function<void()> callback,
                                              std::weak_ptr<IProfileKey> key) {
    listeners.emplace_back(std::move(callback), std::move(key));
}

void ModemProfile::clearExpiredListeners() {
    // Destroying a callback may run code of the client's, which may come back here. So they are
    // destroyed after the list is complete again.
    std::list<ExpirationListener> gone;
    for (auto entry = listeners.begin(); entry != listeners.end();) {
        const auto next = std::next(entry);
        if (expired(*entry)) {
            gone.splice(gone.end(), listeners, entry);
        }
        entry = next;
    }
}

void ModemProfile::writeShared(wds_profile_settings_type_v01& settings) const {
    if (apnTypesMask) {
        settings.apn_type_mask_valid = 1;
        settings.apn_type_mask = *apnTypesMask;
    }
    writePart(isClatEnabled, settings.clat_enabled_valid, settings.clat_enabled, flagToByte);
}

void ModemProfile::updateAddParameters(wds_create_profile_req_msg_v01& request) const {
    std::memset(&request, 0, sizeof(request));
    writeShared(request.settings);
    request.settings.persistence_flag_valid = 1;
    request.settings.persistence_flag = flagToByte(isPersistent);
}

void ModemProfile::updateModifyParameters(wds_modify_profile_settings_req_msg_v01& request) const {
    std::memset(&request, 0, sizeof(request));
    // Field by field: the padding stays zero.
    const wds_profile_identifier_type_v01 identifier = constructProfileIdentifier();
    request.profile.profile_type = identifier.profile_type;
    request.profile.profile_index = identifier.profile_index;
    writeShared(request.settings);
}

void ModemProfile::updateGetParameters(FilterProfileParams& params) const {
    if (apnName) {
        params.setApnName(*apnName);
    }
    if (apnTypesMask) {
        params.setApnTypesMask(convertToCommonApnTypeMask(*apnTypesMask));
    }
    forEachField(Fields::kSame, [&](const auto& field) { field.write(*this, params); });
}

void ModemProfile::updateDiffParameters(const ModifyProfileParams& params, ProfileParams& diff,
                                        bool& changed) const {
    const std::string name = normalApnName(params.getApnName());
    if (params.hasApnName() && apnName != name) {
        diff.setApnName(name);
        changed = true;
    }
    const unsigned int apnTypes = params.getApnTypesMask();
    if (params.hasApnTypesMask() &&
        (!apnTypesMask || convertToCommonApnTypeMask(*apnTypesMask) != apnTypes)) {
        diff.setApnTypesMask(apnTypes);
        changed = true;
    }
    forEachField(Fields::kSame,
                 [&](const auto& field) { field.compare(params, *this, diff, changed); });
}

}  // namespace vela
