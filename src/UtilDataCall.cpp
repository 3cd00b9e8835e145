// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// Data calls and emergency data calls.

#include <list>

#include "KeyText.h"
#include "LogWrapper.h"
#include "Observation.h"
#include "ParamsFields.h"
#include "vela/Manager.h"
#include "vela/Util.h"

namespace vela {

namespace {

using Keys = std::list<std::shared_ptr<IProfileKey>>;

std::shared_ptr<IProfileKey> first(const Keys& keys) {
    return keys.empty() ? nullptr : keys.front();
}

FilterProfileParams makeDataCallFilter(TechType techType, const ProfileParams& params) {
    FilterProfileParams filter;
    filter.setFilterByTechType(techType);
    copyApnName(params, filter);
    if (techType == TechType::TECH_3GPP2) {
        copyUserName(params, filter);
    }
    return filter;
}

/** A profile that is taken as it is: the home IP type must fit, at least loosely. */
std::shared_ptr<IProfileKey> findUnchanged(Manager& manager, FilterProfileParams filter,
                                           const ProfileParams& params) {
    copyHomeIPType(params, filter);
    if (auto key = first(manager.filter(filter))) {
        return key;
    }
    filter.addFilterMatchCriteria(FilterMatchCriteria::HomeIPSubset |
                                  FilterMatchCriteria::HomeIPSuperset);
    return first(manager.filter(filter));
}

FilterProfileParams makeEmergencyFilter() {
    FilterProfileParams filter;
    filter.setFilterByTechType(TechType::TECH_3GPP);
    filter.setIsEmergencySupported(true);
    return filter;
}

std::shared_ptr<IProfileKey> findEmergencyProfile(Manager& manager, const ProfileParams& params) {
    if (params.hasApnName()) {
        FilterProfileParams byName = makeEmergencyFilter();
        copyApnName(params, byName);
        if (auto key = first(manager.filter(byName))) {
            log(LogLevel::Notice, "found an emergency profile by name");
            return key;
        }
    }
    auto key = first(manager.filter(makeEmergencyFilter()));
    if (key) {
        log(LogLevel::Notice, "found a profile that supports emergency calls");
    }
    return key;
}

std::shared_ptr<IProfileKey> createEmergencyProfile(Manager& manager, const ProfileParams& params) {
    AddProfileParams profile(params, true, TechType::TECH_3GPP, false);
    profile.setIsEmergencySupported(true);
    profile.setApnTypesMask(toMask(ApnTypes::EMERGENCY));
    auto key = manager.addProfile(profile);
    log(LogLevel::Notice, "emergency profile created");
    return key;
}

}  // namespace

std::shared_ptr<IProfileKey> Util::findOrCreateProfileForSetupDataCall(
    TechType techType, const ProfileParams& params) {
    PolicyScope scope({Policy::SetupDataCall, profileUpdateAllowed, &params, techType});
    log(LogLevel::Notice, "vela findOrCreateProfileForSetupDataCall > %s", params.dump().c_str());
    const FilterProfileParams filter = makeDataCallFilter(techType, params);
    std::shared_ptr<IProfileKey> key = profileUpdateAllowed
                                           ? first(manager.filter(filter))
                                           : findUnchanged(manager, filter, params);
    if (key) {
        log(LogLevel::Notice, "found existing setupDataCall profile");
        if (profileUpdateAllowed) {
            log(LogLevel::Notice, "Modifying profile with input parameters");
            manager.modifyProfile(ModifyProfileParams(params), key);
        }
    } else {
        key = manager.addProfile(AddProfileParams(params, false, techType, false));
        log(LogLevel::Notice, "setupDataCall profile added");
    }
    log(LogLevel::Notice, "vela findOrCreateProfileForSetupDataCall < %s",
        keyText(key, "").c_str());
    return scope.end(key);
}

std::shared_ptr<IProfileKey> Util::findOrCreateProfileForEmergencyDataCall(
    const ProfileParams& params) {
    PolicyScope scope({Policy::EmergencyDataCall, profileUpdateAllowed, &params});
    log(LogLevel::Notice, "vela findOrCreateProfileForEmergencyDataCall > %s",
        params.dump().c_str());
    std::shared_ptr<IProfileKey> key = findEmergencyProfile(manager, params);
    if (!key) {
        key = createEmergencyProfile(manager, params);
    }
    log(LogLevel::Notice, "vela findOrCreateProfileForEmergencyDataCall < %s",
        keyText(key, "").c_str());
    return scope.end(key);
}

}  // namespace vela
