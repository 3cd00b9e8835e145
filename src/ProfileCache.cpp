// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ProfileCache.h"

#include <algorithm>
#include <utility>

#include "LogWrapper.h"
#include "Modem3gpp2Profile.h"
#include "Modem3gppProfile.h"
#include "Observation.h"
#include "TokenGenerator.h"

namespace vela {

namespace {

constinit TokenGenerator tokenGenerator;

std::shared_ptr<ModemProfile> makeProfile(AddProfileParams& params) {
    switch (params.getTechType()) {
        case TechType::TECH_3GPP2:
            return std::make_shared<Modem3gpp2Profile>(params);
        case TechType::TECH_3GPP: {
            auto profile = std::make_shared<Modem3gppProfile>(params);
            profile->setProfileName(params.getIsIAProfile() ? Modem3gppProfile::kVelaIAName
                                                            : Modem3gppProfile::kVelaName);
            return profile;
        }
    }
    return nullptr;
}

bool isSame(const std::shared_ptr<ModemProfile>& profile, const ProfileChangedInd& ind) {
    return profile && profile->getTechType() == ind.techType &&
           profile->getProfileId() == ind.profileId;
}

std::string profileText(const std::shared_ptr<ModemProfile>& profile) {
    return profile ? profile->dump() : "null";
}

}  // namespace

ProfileCache::ProfileCache(EventManager& eventManager, int instance, RequestFn requestFn)
    : requestFn(std::move(requestFn)), proxy(eventManager, instance) {
    proxy.registerProfileChangedInd([this](ProfileChangedInd ind) { onIndication(ind); });
}

void ProfileCache::assumeWorker() {
    worker.assume();
    proxy.assumeWorker();
}

unsigned long ProfileCache::generateToken() {
    return tokenGenerator.next();
}

void ProfileCache::serve(const ClientRequest* request) {
    worker.check();
    served = request;
    proxy.serve(request);
}

/** Tells a search for the request at hand; `candidates` is called if somebody watches. */
template <typename Candidates>
void ProfileCache::tellSearch(Candidates candidates) const {
    if (const ClientRequest* request = served) {
        tellObserver([&](Observer& observer) { observer.onSearch(*request, candidates()); });
    }
}

// --- Client operations

std::shared_ptr<ProfileKey> ProfileCache::add(AddProfileParams& params) {
    worker.check();
    const unsigned long token = generateToken();
    const std::shared_ptr<ModemProfile> profile = makeProfile(params);
    if (!profile) {
        log(LogLevel::Error, "ProfileCache: failed to create profile");
        return nullptr;
    }
    profile->setIsPersistent(params.getIsPersistent());
    profile->setIsVelaCreated(true);
    if (!proxy.add(*profile)) {
        return nullptr;
    }
    profile->incRefCount();
    profiles.emplace(token, profile);
    // The modem announces a created profile with both.
    expect(*profile, ProfileChangedEvent::Create);
    expect(*profile, ProfileChangedEvent::Modify);
    log(LogLevel::Notice, "Added: %s", profile->dump().c_str());
    return makeKey(*profile, token);
}

bool ProfileCache::modify(ModifyProfileParams& params, std::shared_ptr<ProfileKey> key) {
    worker.check();
    if (!key) {
        return false;
    }
    const auto entry = findLogged(key->getToken(), LogLevel::Notice);
    if (entry == profiles.end()) {
        return false;
    }
    const std::shared_ptr<ModemProfile> profile = entry->second;
    if (!profile) {
        return true;
    }
    const std::shared_ptr<ModemProfile> changes = profile->diff(params);
    if (!changes) {
        log(LogLevel::Notice, "ProfileCache: profile is unchanged");
        return true;
    }
    if (!proxy.modify(*changes, profile->getTechType(), profile->getProfileId())) {
        // Intended: the caller is told success all the same.
        log(LogLevel::Error, "ProfileCache: failed to modify modem profile");
        return true;
    }
    profile->apply(changes);
    log(LogLevel::Notice, "Diff: %s", changes->dump().c_str());
    expect(*profile, ProfileChangedEvent::Modify);
    return true;
}

bool ProfileCache::remove(std::shared_ptr<ProfileKey> key) {
    worker.check();
    if (!key) {
        return false;
    }
    const auto entry = findLogged(key->getToken(), LogLevel::Error);
    if (entry == profiles.end()) {
        return false;
    }
    if (!proxy.remove(key->getTechType(), key->getProfileId())) {
        log(LogLevel::Error, "ProfileCache: Failed to remove profile");
        return false;
    }
    std::list<ProfileChangedInd> expected;
    if (const auto& profile = entry->second) {
        expected.push_back(
            {profile->getTechType(), profile->getProfileId(), ProfileChangedEvent::Delete});
    }
    profiles.extract(entry);
    pending.splice(pending.end(), expected);
    return true;
}

std::optional<ProfileParams> ProfileCache::get(std::shared_ptr<ProfileKey> key) {
    worker.check();
    const std::shared_ptr<ModemProfile> profile = findProfile(key);
    return profile ? std::optional<ProfileParams>(profile->get()) : std::nullopt;
}

std::list<std::shared_ptr<ProfileKey>> ProfileCache::filter(FilterProfileParams& params) {
    worker.check();
    std::list<std::shared_ptr<ProfileKey>> keys;
    tellSearch([&] {
        worker.check();
        std::vector<ProfileCandidate> candidates;
        for (const auto& [token, profile] : profiles) {
            candidates.push_back(candidateOf(token, profile, params));
        }
        return candidates;
    });
    for (const auto& [token, profile] : profiles) {
        if (!profile) {
            log(LogLevel::Error, "ProfileCache: null profile");
        } else if (profile->match(params)) {
            profile->incRefCount();
            keys.push_back(makeKey(*profile, token));
        }
    }
    return keys;
}

bool ProfileCache::match(FilterProfileParams& params, std::shared_ptr<ProfileKey> key) {
    worker.check();
    const std::shared_ptr<ModemProfile> profile = findProfile(key);
    tellSearch([&] {
        return profile ? std::vector{candidateOf(key->getToken(), profile, params)}
                       : std::vector<ProfileCandidate>();
    });
    return profile && profile->match(params);
}

bool ProfileCache::releaseProfile(unsigned long token) {
    worker.check();
    log(LogLevel::Notice, "ProfileCache: releaseProfile token=%lu", token);
    const auto entry = findLogged(token, LogLevel::Error);
    if (entry == profiles.end() || !entry->second) {
        return false;
    }
    ModemProfile& profile = *entry->second;
    profile.clearExpiredListeners();
    if (profile.getRefCount() >= 2) {
        profile.decRefCount();
        return true;
    }
    if (profile.getIsPersistent() || !profile.getIsVelaCreated()) {
        // Intended: the count stays, and the text names the opposite case.
        log(LogLevel::Notice, "ProfileCache: ignoring non-persistent or non-vela created");
        return true;
    }
    if (!proxy.remove(profile.getTechType(), profile.getProfileId())) {
        log(LogLevel::Error, "ProfileCache: failed to release profile");
        return false;
    }
    profile.decRefCount();
    log(LogLevel::Notice, "Released profile %d", profile.getProfileId());
    expect(profile, ProfileChangedEvent::Delete);
    profiles.extract(entry);
    return true;
}

void ProfileCache::registerExpirationListener(std::function<void()> callback,
                                              std::weak_ptr<IProfileKey> key, unsigned long token) {
    worker.check();
    log(LogLevel::Verbose, "ProfileCache: registerExpirationListener %lu", token);
    const auto entry = findLogged(token, LogLevel::Error);
    if (entry != profiles.end() && entry->second) {
        entry->second->registerExpirationListener(std::move(callback), std::move(key));
    }
}

// --- The modem's side

void ProfileCache::onIndication(ProfileChangedInd ind) {
    worker.check();
    log(LogLevel::Notice, "ProfileCache: onIndication < %s", ind.dump().c_str());
    const bool isConfirmation = confirm(ind);
    if (isConfirmation) {
        log(LogLevel::Notice, "ProfileCache: pending transaction confirmed");
    } else {
        log(LogLevel::Notice, "ProfileCache: updating cache due to indication!");
        follow(ind);
    }
    tellObserver([&](Observer& observer) {
        observer.onIndication(
            {ind, isConfirmation ? IndicationOutcome::Confirmed : IndicationOutcome::Followed});
    });
}

bool ProfileCache::confirm(const ProfileChangedInd& ind) {
    const auto expected = std::find(pending.begin(), pending.end(), ind);
    if (expected == pending.end()) {
        return false;
    }
    pending.erase(expected);
    return true;
}

void ProfileCache::follow(const ProfileChangedInd& ind) {
    switch (ind.event) {
        case ProfileChangedEvent::Create: {
            const unsigned long token = generateToken();
            profiles.emplace(token, proxy.get(ind.techType, ind.profileId));
            return;
        }
        case ProfileChangedEvent::Delete:
            return erase(ind);
        case ProfileChangedEvent::Modify:
            return replace(ind);
        case ProfileChangedEvent::SubscriptionChange:
        case ProfileChangedEvent::ProfileReady:
            refresh();
            return;
    }
    log(LogLevel::Error, "Invalid ProfileChangedEvent");
}

void ProfileCache::erase(const ProfileChangedInd& ind) {
    for (auto entry = profiles.begin(); entry != profiles.end();) {
        const auto current = entry++;
        if (isSame(current->second, ind)) {
            profiles.extract(current);
        }
    }
}

void ProfileCache::replace(const ProfileChangedInd& ind) {
    for (auto& [token, profile] : profiles) {
        if (isSame(profile, ind)) {
            const auto old = std::exchange(profile, proxy.get(ind.techType, ind.profileId));
        }
    }
}

bool ProfileCache::refresh() {
    worker.check();
    // The old profiles die after the map is empty: their listeners never see half of it.
    Profiles().swap(profiles);
    for (const std::shared_ptr<ModemProfile>& profile : proxy.getAllProfiles()) {
        profiles.emplace(generateToken(), profile);
    }
    log(LogLevel::Notice, "Refreshed Profiles:");
    for (const auto& [token, profile] : profiles) {
        logText(LogLevel::Notice, profileText(profile));
    }
    return true;
}

std::vector<std::string> ProfileCache::dump() const {
    worker.standIn();
    std::vector<std::string> lines{"Cache:"};
    for (const auto& [token, profile] : profiles) {
        lines.push_back("  " + std::to_string(token) + ": " + profileText(profile));
    }
    lines.emplace_back("Pending:");
    for (const ProfileChangedInd& ind : pending) {
        lines.push_back("  " + ind.dump());
    }
    return lines;
}

// --- Shared steps

/** The entry of a token; a miss is logged. */
ProfileCache::Profiles::iterator ProfileCache::findLogged(unsigned long token, LogLevel missLevel) {
    const auto entry = profiles.find(token);
    if (entry == profiles.end()) {
        log(missLevel, "ProfileCache: token is not present or expired");
    }
    return entry;
}

std::shared_ptr<ModemProfile> ProfileCache::findProfile(const std::shared_ptr<ProfileKey>& key) {
    if (!key) {
        return nullptr;
    }
    const auto entry = findLogged(key->getToken(), LogLevel::Error);
    return entry == profiles.end() ? nullptr : entry->second;
}

std::shared_ptr<ProfileKey> ProfileCache::makeKey(const ModemProfile& profile,
                                                  unsigned long token) const {
    return std::make_shared<ProfileKey>(profile.getTechType(), profile.getProfileId(), token,
                                        requestFn);
}

void ProfileCache::expect(const ModemProfile& profile, ProfileChangedEvent event) {
    pending.push_back({profile.getTechType(), profile.getProfileId(), event});
}

}  // namespace vela
