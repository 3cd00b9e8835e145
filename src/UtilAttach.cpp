// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The LTE initial attach.

#include <list>
#include <optional>

#include "AttachSearch.h"
#include "DumpText.h"
#include "KeyText.h"
#include "LogWrapper.h"
#include "Observation.h"
#include "ParamsFields.h"
#include "vela/Manager.h"
#include "vela/Util.h"

namespace vela {

std::shared_ptr<IProfileKey> Util::findOrCreateProfileForLteAttach(const ProfileParams& params) {
    PolicyScope scope({Policy::LteAttach, profileUpdateAllowed, &params});
    log(LogLevel::Notice, "vela findOrCreateProfileForLteAttach > %s", params.dump().c_str());
    AttachSearch search(manager, params, profileUpdateAllowed);
    std::shared_ptr<IProfileKey> key = search.run();
    if (key) {
        manager.modifyProfile(search.getUpdate(), key);
        log(LogLevel::Notice, "vela Modifying profile identified for IA");
    } else {
        key = manager.addProfile(AddProfileParams(params, true, TechType::TECH_3GPP, true));
        log(LogLevel::Notice, "vela VELA IA profile created for attach");
    }
    log(LogLevel::Notice, "vela findOrCreateProfileForLteAttach < %s", keyText(key, "").c_str());
    return scope.end(key);
}

namespace {

std::shared_ptr<IProfileKey> findById(Manager& manager, int profileId) {
    FilterProfileParams filter;
    filter.setFilterByTechType(TechType::TECH_3GPP);
    filter.setFilterByProfileId(profileId);
    const std::list<std::shared_ptr<IProfileKey>> keys = manager.filter(filter);
    return keys.empty() ? nullptr : keys.front();
}

FilterProfileParams makeAttachCheck(const ProfileParams& params, bool matchIPTypesBothWays) {
    FilterProfileParams filter;
    copyApnName(params, filter);
    copyIPTypes(params, filter);
    copyCredentials(params, filter);
    if (matchIPTypesBothWays) {
        filter.addFilterMatchCriteria(
            FilterMatchCriteria::HomeIPSubset | FilterMatchCriteria::RoamIPSubset |
            FilterMatchCriteria::HomeIPSuperset | FilterMatchCriteria::RoamIPSuperset);
    }
    return filter;
}

bool reportMismatch() {
    log(LogLevel::Notice, "vela matchLteAttachProfileId < did not match input params");
    return false;
}

}  // namespace

bool Util::matchLteAttachProfileId(int profileId, const ProfileParams& params) {
    PolicyScope scope(
        {Policy::LteAttachMatch, profileUpdateAllowed, &params, TechType::TECH_3GPP, profileId});
    DumpText request;
    request << "Profile id = " << profileId << " Input Params = " << params.dump();
    log(LogLevel::Notice, "vela matchLteAttachProfileId > %s", request.take().c_str());

    const std::shared_ptr<IProfileKey> key = findById(manager, profileId);
    if (!key) {
        return reportMismatch();
    }
    const std::optional<ProfileParams> profile = manager.getProfile(key);
    if (!profile) {
        return reportMismatch();
    }
    if (isVelaProfileNotForAttach(*profile)) {
        log(LogLevel::Error,
            "Profile id %d is a VELA profile which is not an IA profile, cannot be used for attach",
            profileId);
        return false;
    }
    const bool matchIPTypesBothWays = !profileUpdateAllowed && !profile->getIsVelaProfile();
    if (!manager.match(makeAttachCheck(params, matchIPTypesBothWays), key)) {
        return reportMismatch();
    }
    log(LogLevel::Notice, "vela matchLteAttachList < %d", profileId);
    return scope.end(true);
}

}  // namespace vela
