// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "AttachSearch.h"

#include <list>
#include <optional>

#include "LogWrapper.h"
#include "ParamsFields.h"

namespace vela {

namespace {

FilterProfileParams make3gppFilter() {
    FilterProfileParams filter;
    filter.setFilterByTechType(TechType::TECH_3GPP);
    return filter;
}

FilterProfileParams makeVelaIAFilter() {
    FilterProfileParams filter = make3gppFilter();
    filter.setFilterByIsVelaProfile(true);
    filter.setFilterByIsIAProfile(true);
    return filter;
}

/** Asks for the IP types of `params`, matched both ways. */
void addLooseIPTypes(const ProfileParams& params, FilterProfileParams& filter) {
    copyIPTypes(params, filter);
    if (params.hasHomeIPType()) {
        filter.addFilterMatchCriteria(FilterMatchCriteria::HomeIPSubset |
                                      FilterMatchCriteria::HomeIPSuperset);
    }
    if (params.hasRoamIPType()) {
        filter.addFilterMatchCriteria(FilterMatchCriteria::RoamIPSubset |
                                      FilterMatchCriteria::RoamIPSuperset);
    }
}

}  // namespace

bool isVelaProfileNotForAttach(const ProfileParams& profile) {
    return profile.getIsVelaProfile() && !profile.getIsIAProfile();
}

AttachSearch::AttachSearch(Manager& manager, const ProfileParams& params, bool profileUpdateAllowed)
    : manager(manager), params(params), profileUpdateAllowed(profileUpdateAllowed) {
    copyCredentials(params, update);
    copyApnTypesMask(params, update);
    copyPdnThrottling(params, update);
}

std::shared_ptr<IProfileKey> AttachSearch::run() {
    using Try = std::shared_ptr<IProfileKey> (AttachSearch::*)();
    constexpr Try kTries[] = {
        &AttachSearch::tryExactMatch,
        &AttachSearch::tryLooseMatch,
        &AttachSearch::tryVelaIAProfileWithApn,
        &AttachSearch::tryAnyVelaIAProfile,
    };
    for (const Try nextTry : kTries) {
        if (auto key = (this->*nextTry)()) {
            return key;
        }
    }
    return nullptr;
}

std::shared_ptr<IProfileKey> AttachSearch::findFirst(const FilterProfileParams& filter) {
    const std::list<std::shared_ptr<IProfileKey>> keys = manager.filter(filter);
    return keys.empty() ? nullptr : keys.front();
}

std::shared_ptr<IProfileKey> AttachSearch::tryExactMatch() {
    FilterProfileParams filter = make3gppFilter();
    if (!params.hasApnName()) {
        log(LogLevel::Notice, "vela NULL apn scenario");
    }
    copyApnName(params, filter);
    copyIPTypes(params, filter);
    auto key = findFirst(filter);
    if (!key) {
        return nullptr;
    }
    const std::optional<ProfileParams> profile = manager.getProfile(key);
    if (!profile || isVelaProfileNotForAttach(*profile)) {
        return nullptr;
    }
    log(LogLevel::Notice, "vela Found an exact match modem or VELA IA profile for attach");
    return key;
}

std::shared_ptr<IProfileKey> AttachSearch::tryLooseMatch() {
    FilterProfileParams filter = make3gppFilter();
    copyApnName(params, filter);
    if (profileUpdateAllowed) {
        copyIPTypes(params, update);
    } else {
        filter.setFilterByIsVelaProfile(false);
        addLooseIPTypes(params, filter);
    }
    auto key = findFirst(filter);
    if (key) {
        log(LogLevel::Notice, "vela Found a loose match profile for attach");
    }
    return key;
}

std::shared_ptr<IProfileKey> AttachSearch::tryVelaIAProfileWithApn() {
    copyIPTypes(params, update);
    FilterProfileParams filter = makeVelaIAFilter();
    copyApnName(params, filter);
    auto key = findFirst(filter);
    if (key) {
        log(LogLevel::Notice, "vela Found a VELA IA profile that matches APN name for attach");
    }
    return key;
}

std::shared_ptr<IProfileKey> AttachSearch::tryAnyVelaIAProfile() {
    auto key = findFirst(makeVelaIAFilter());
    if (key) {
        copyApnName(params, update);
        log(LogLevel::Notice, "vela Found any VELA IA profile for attach");
    }
    return key;
}

}  // namespace vela
