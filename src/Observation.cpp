// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Observation.h"

#include <array>
#include <new>
#include <utility>

#include "Modem3gppProfile.h"
#include "Mutex.h"

namespace vela {

constinit std::atomic<bool> observed{false};

namespace {

struct Installation {
    Mutex mutex;
    std::shared_ptr<Observer> observer VELA_GUARDED_BY(mutex);
};

/** Never destroyed: keys of static objects make requests until the very end. */
Installation& installation() {
    alignas(Installation) static std::array<std::byte, sizeof(Installation)> storage;
    static Installation* const instance = new (storage.data()) Installation;
    return *instance;
}

/** One criterion: whether a filter has it, and how to put it into another one. */
struct Criterion {
    FilterCriterion name;
    bool (*isAsked)(const FilterProfileParams& filter);
    void (*copy)(const FilterProfileParams& from, FilterProfileParams& to);
};

template <auto Has, auto Get, auto Set>
constexpr Criterion criterion(FilterCriterion name) {
    return {
        name, [](const FilterProfileParams& filter) { return (filter.*Has)(); },
        [](const FilterProfileParams& from, FilterProfileParams& to) { (to.*Set)((from.*Get)()); }};
}

using Filter = FilterProfileParams;
using Is = FilterCriterion;
constexpr std::array kCriteria{
    criterion<&Filter::hasFilterByTechType, &Filter::getFilterByTechType,
              &Filter::setFilterByTechType>(Is::TechType),
    criterion<&Filter::hasFilterByProfileId, &Filter::getFilterByProfileId,
              &Filter::setFilterByProfileId>(Is::ProfileId),
    criterion<&Filter::hasApnName, &Filter::getApnName, &Filter::setApnName>(Is::ApnName),
    criterion<&Filter::hasApnTypesMask, &Filter::getApnTypesMask, &Filter::setApnTypesMask>(
        Is::ApnTypesMask),
    criterion<&Filter::hasUserName, &Filter::getUserName, &Filter::setUserName>(Is::UserName),
    criterion<&Filter::hasPassword, &Filter::getPassword, &Filter::setPassword>(Is::Password),
    criterion<&Filter::hasAuthType, &Filter::getAuthType, &Filter::setAuthType>(Is::AuthType),
    criterion<&Filter::hasApnClass, &Filter::getApnClass, &Filter::setApnClass>(Is::ApnClass),
    criterion<&Filter::hasIsClatEnabled, &Filter::getIsClatEnabled, &Filter::setIsClatEnabled>(
        Is::IsClatEnabled),
    criterion<&Filter::hasFilterByIsIAProfile, &Filter::getIsIAProfile,
              &Filter::setFilterByIsIAProfile>(Is::IsIAProfile),
    criterion<&Filter::hasFilterByIsVelaProfile, &Filter::getIsVelaProfile,
              &Filter::setFilterByIsVelaProfile>(Is::IsVelaProfile),
    criterion<&Filter::hasHomeIPType, &Filter::getHomeIPType, &Filter::setHomeIPType>(
        Is::HomeIPType),
    criterion<&Filter::hasRoamIPType, &Filter::getRoamIPType, &Filter::setRoamIPType>(
        Is::RoamIPType),
    criterion<&Filter::hasMaxPdnsConnPerBlock, &Filter::getMaxPdnsConnPerBlock,
              &Filter::setMaxPdnsConnPerBlock>(Is::MaxPdnsConnPerBlock),
    criterion<&Filter::hasMaxPdnConnTimer, &Filter::getMaxPdnConnTimer,
              &Filter::setMaxPdnConnTimer>(Is::MaxPdnConnTimer),
    criterion<&Filter::hasPdnReqWaitInterval, &Filter::getPdnReqWaitInterval,
              &Filter::setPdnReqWaitInterval>(Is::PdnReqWaitInterval),
    criterion<&Filter::hasIsApnDisabled, &Filter::getIsApnDisabled, &Filter::setIsApnDisabled>(
        Is::IsApnDisabled),
    criterion<&Filter::hasIsEmergencySupported, &Filter::getIsEmergencySupported,
              &Filter::setIsEmergencySupported>(Is::IsEmergencySupported),
};

template <typename Value>
std::optional<Value> valueIf(bool has, Value value) {
    return has ? std::optional(value) : std::nullopt;
}

}  // namespace

std::shared_ptr<Observer> currentObserver() {
    Installation& current = installation();
    const MutexLock lock(current.mutex);
    return current.observer;
}

void setObserver(std::shared_ptr<Observer> observer) {
    Installation& current = installation();
    const MutexLock lock(current.mutex);
    current.observer.swap(observer);
    observed.store(current.observer != nullptr, std::memory_order_release);
}

ProfileImage imageOf(const ModemProfile& profile) {
    ProfileImage image;
    image.techType = profile.getTechType();
    image.profileId = profile.getProfileId();
    image.params = profile.get();
    image.isPersistent = profile.getIsPersistent();
    image.isVelaCreated = profile.getIsVelaCreated();
    image.pdpType = valueIf(profile.hasCommonIPType(), profile.getCommonIPType());
    if (const auto* own = dynamic_cast<const Modem3gppProfile*>(&profile)) {
        image.overrideHomeIPType =
            valueIf(own->hasOverrideHomeIPType(), own->getOverrideHomeIPType());
        image.lteRoamIPType = valueIf(own->hasLteRoamIPType(), own->getLteRoamIPType());
        image.umtsRoamIPType = valueIf(own->hasUmtsRoamIPType(), own->getUmtsRoamIPType());
    }
    return image;
}

ProfileCandidate candidateOf(unsigned long token, const std::shared_ptr<ModemProfile>& profile,
                             const FilterProfileParams& filter) {
    ProfileCandidate candidate;
    candidate.token = token;
    if (!profile) {
        return candidate;
    }
    candidate.profile = imageOf(*profile);
    for (const Criterion& criterion : kCriteria) {
        if (criterion.isAsked(filter)) {
            FilterProfileParams alone;
            alone.addFilterMatchCriteria(filter.getFilterMatchCriteria());
            criterion.copy(filter, alone);
            if (!profile->match(alone)) {
                candidate.mismatches.push_back(criterion.name);
            }
        }
    }
    return candidate;
}

PolicyScope::PolicyScope(const PolicyCall& call) : call(call) {
    tellObserver([this](Observer& observer) { observer.onPolicyBegin(this->call); });
}

PolicyScope::~PolicyScope() {
    tellObserver([this](Observer& observer) { observer.onPolicyEnd(call, result); });
}

const std::shared_ptr<IProfileKey>& PolicyScope::end(const std::shared_ptr<IProfileKey>& key) {
    result.key = key.get();
    return key;
}

bool PolicyScope::end(bool matches) {
    result.matches = matches;
    return matches;
}

// Defined here so that the class's table of functions is in the library, once.
Observer::~Observer() = default;
void Observer::onRequest(const ClientRequest& /*request*/) {}
void Observer::onResponse(const ClientRequest& /*request*/, const ClientResponse* /*response*/,
                          std::chrono::nanoseconds /*duration*/) {}
void Observer::onSearch(const ClientRequest& /*request*/,
                        const std::vector<ProfileCandidate>& /*candidates*/) {}
void Observer::onMessage(const ModemMessage& /*message*/) {}
void Observer::onIndication(const ModemIndication& /*indication*/) {}
void Observer::onService(ServiceState /*state*/) {}
void Observer::onPolicyBegin(const PolicyCall& /*call*/) {}
void Observer::onPolicyEnd(const PolicyCall& /*call*/, const PolicyResult& /*result*/) {}

}  // namespace vela
