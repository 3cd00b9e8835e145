// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// APN classes and APN type masks.

#include <list>
#include <unordered_set>

#include "LogWrapper.h"
#include "ModemConversions.h"
#include "Observation.h"
#include "vela/Manager.h"
#include "vela/Util.h"

namespace vela {

// --- APN classes

void Util::updateModemProfileByApnClass(const std::list<ProfileParams>& profiles3gpp,
                                        const std::list<ProfileParams>& profiles3gpp2) {
    const PolicyScope scope({Policy::ApnClasses, profileUpdateAllowed, nullptr, TechType::TECH_3GPP,
                             -1, &profiles3gpp, &profiles3gpp2});
    log(LogLevel::Notice, "vela updateModemProfileByApnClass > ");
    log(LogLevel::Notice, "  3gpp:");
    for (const ProfileParams& params : profiles3gpp) {
        log(LogLevel::Notice, "    %s", params.dump().c_str());
    }
    log(LogLevel::Notice, "  3gpp2:");
    for (const ProfileParams& params : profiles3gpp2) {
        log(LogLevel::Notice, "    %s", params.dump().c_str());
    }
    for (const ProfileParams& params : profiles3gpp) {
        log(LogLevel::Debug, "vela update 3gpp modem profile by APN class for %s",
            params.dump().c_str());
        updateModemProfileByApnClassAndTechType(params, TechType::TECH_3GPP);
    }
    for (const ProfileParams& params : profiles3gpp2) {
        log(LogLevel::Debug, "vela update 3gpp2 modem profile by APN class for %s",
            params.dump().c_str());
        updateModemProfileByApnClassAndTechType(params, TechType::TECH_3GPP2);
    }
    log(LogLevel::Notice, "vela updateModemProfileByApnClass < OK");
}

void Util::updateModemProfileByApnClassAndTechType(const ProfileParams& params, TechType techType) {
    const PolicyScope scope({Policy::ApnClassAndTechType, profileUpdateAllowed, &params, techType});
    if (!params.hasApnClass()) {
        log(LogLevel::Debug, "vela either tech type or apn class is missing");
        return;
    }
    FilterProfileParams filter;
    filter.setFilterByTechType(techType);
    filter.setApnClass(params.getApnClass());
    const std::list<std::shared_ptr<IProfileKey>> keys = manager.filter(filter);
    if (keys.empty()) {
        log(LogLevel::Debug,
            "Did not find a match for APN class and tech type, create a persistent profile");
        if (!manager.addProfile(AddProfileParams(params, true, techType, false))) {
            log(LogLevel::Error, "Could not add profile by APN class");
        }
        return;
    }
    log(LogLevel::Debug, "Found a match for APN class and tech type, modify the profile");
    const ModifyProfileParams update(params);
    for (const std::shared_ptr<IProfileKey>& key : keys) {
        if (!manager.modifyProfile(update, key)) {
            log(LogLevel::Error, "Error while modifying profile by APN class");
        }
    }
}

// --- APN type masks

namespace {

/** Lower-cases the name and fills in what is missing. */
void normalize(ProfileParams& params) {
    log(LogLevel::Notice, "vela update APN type bitmask on modem profile for %s",
        params.dump().c_str());
    if (params.hasApnName()) {
        params.setApnName(convertToLower(params.getApnName()));
    }
    if (!params.hasApnTypesMask()) {
        params.setApnTypesMask(0);
        log(LogLevel::Error, "vela APN type mask not present, setting to 0");
    }
    if (!params.hasHomeIPType()) {
        params.setHomeIPType(IPType::V4V6);
        log(LogLevel::Error, "vela Home IP type not present, setting to v4v6");
    }
}

/** The APN types of all entries of one name, by home IP type. */
struct TypeMasks {
    unsigned int v4 = 0;
    unsigned int v6 = 0;
    unsigned int v4v6 = 0;

    TypeMasks(const std::list<ProfileParams>& profiles, const std::string& apnName) {
        for (const ProfileParams& params : profiles) {
            if (params.hasApnName() && params.getApnName() == apnName) {
                of(params.getHomeIPType()) |= params.getApnTypesMask();
            }
        }
    }

    unsigned int all() const { return v4 | v6 | v4v6; }

  private:
    unsigned int& of(IPType ipType) {
        switch (ipType) {
            case IPType::V4:
                return v4;
            case IPType::V6:
                return v6;
            default:
                return v4v6;
        }
    }
};

ModifyProfileParams makeMaskUpdate(unsigned int mask) {
    ModifyProfileParams update;
    update.setApnTypesMask(mask);
    return update;
}

}  // namespace

void Util::updateAPNTypeBitmaskOnModemProfile(const std::list<ProfileParams>& profiles) {
    const PolicyScope scope(
        {Policy::ApnTypesMasks, profileUpdateAllowed, nullptr, TechType::TECH_3GPP, -1, &profiles});
    log(LogLevel::Notice, "vela updateAPNTypeBitmaskOnModemProfile > ");
    std::list<ProfileParams> entries = profiles;
    std::unordered_set<std::string> names;
    for (ProfileParams& entry : entries) {
        normalize(entry);
        if (entry.hasApnName()) {
            names.insert(entry.getApnName());
        }
    }
    for (const std::string& name : names) {
        const TypeMasks masks(entries, name);
        log(LogLevel::Debug,
            "vela processing APN name %s, V4 mask:0x%x, v6 mask0x%x:, v4v6 mask:0x%x", name.c_str(),
            masks.v4, masks.v6, masks.v4v6);
        if (profileUpdateAllowed) {
            handleCombinedProfileUpdate(masks.all(), name);
        } else {
            for (const TechType techType : {TechType::TECH_3GPP, TechType::TECH_3GPP2}) {
                handleProfileUpdateByTechType(techType, masks.v4, masks.v6, masks.v4v6, name);
            }
        }
    }
    log(LogLevel::Notice, "vela updateAPNTypeBitmaskOnModemProfile < OK");
}

void Util::handleCombinedProfileUpdate(unsigned int mask, std::string apnName) {
    FilterProfileParams filter;
    filter.setApnName(std::move(apnName));
    const ModifyProfileParams update = makeMaskUpdate(mask);
    for (const std::shared_ptr<IProfileKey>& key : manager.filter(filter)) {
        log(LogLevel::Debug, "vela updating profile id:%d, tech type:%d, with combined mask0x%x:",
            key->getProfileId(), static_cast<int>(key->getTechType()), mask);
        manager.modifyProfile(update, key);
    }
}

void Util::handleProfileUpdateByTechType(TechType techType, unsigned int v4Mask,
                                         unsigned int v6Mask, unsigned int v4v6Mask,
                                         std::string apnName) {
    unsigned int combined = v4v6Mask;
    if (v4Mask != 0 && !updateByIpType(techType, IPType::V4, v4Mask, apnName)) {
        combined |= v4Mask;
    }
    if (v6Mask != 0 && !updateByIpType(techType, IPType::V6, v6Mask, apnName)) {
        combined |= v6Mask;
    }
    if (combined == 0 || updateByIpType(techType, IPType::V4V6, combined, apnName)) {
        return;
    }
    // No dual-stack profile: both single-stack ones take its types.
    updateByIpType(techType, IPType::V4, combined | v4Mask, apnName);
    updateByIpType(techType, IPType::V6, combined | v6Mask, apnName);
}

bool Util::updateByIpType(TechType techType, IPType ipType, unsigned int mask,
                          std::string apnName) {
    FilterProfileParams filter;
    filter.setFilterByTechType(techType);
    filter.setApnName(apnName);
    filter.setHomeIPType(ipType);
    const std::list<std::shared_ptr<IProfileKey>> keys = manager.filter(filter);
    if (keys.empty()) {
        log(LogLevel::Debug, "vela no match found for apn name:%s, ip type:%d, tech type:%d",
            apnName.c_str(), static_cast<int>(ipType), static_cast<int>(techType));
    }
    const ModifyProfileParams update = makeMaskUpdate(mask);
    for (const std::shared_ptr<IProfileKey>& key : keys) {
        log(LogLevel::Debug,
            "vela updating profile id:%d, tech type:%d, with mask0x%x:", key->getProfileId(),
            static_cast<int>(key->getTechType()), mask);
        manager.modifyProfile(update, key);
    }
    return !keys.empty();
}

}  // namespace vela
