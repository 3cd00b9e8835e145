// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "EventManager.h"
#include "LogWriter.h"
#include "ModemProfile.h"
#include "ProfileKey.h"
#include "RlinkWdsProxy.h"
#include "WorkerRole.h"
#include "vela/ProfileChangedInd.h"
#include "vela/ProfileParams.h"

namespace vela {

/**
 * The in-memory image of the modem's profiles, and the only place where client operations become
 * modem operations. Worker thread only.
 *
 * Expiration listeners run inside the operation that drops a profile. The cache is consistent
 * whenever that happens: a profile leaves the map before it dies.
 */
class ProfileCache {
  public:
    /** @param requestFn given to every key; must stay callable for as long as any key lives */
    ProfileCache(EventManager& eventManager, int instance, RequestFn requestFn);
    ProfileCache(const ProfileCache&) = delete;
    ProfileCache& operator=(const ProfileCache&) = delete;

    /** The calling thread is the worker from here on: the only one that may use the cache. */
    void assumeWorker();

    /** Names the request that the following operations serve, to observers; null: none. */
    void serve(const ClientRequest* request);

    /** Creates a profile in the modem and caches it; an empty key on failure. */
    std::shared_ptr<ProfileKey> add(AddProfileParams& params);

    /**
     * Writes what `params` changes. False when the key names no profile; a write that the modem
     * refuses is logged, and true is returned.
     */
    bool modify(ModifyProfileParams& params, std::shared_ptr<ProfileKey> key);

    /** Deletes the profile from the modem and the cache. False on failure. */
    bool remove(std::shared_ptr<ProfileKey> key);

    /** Empty when the key names no profile. */
    std::optional<ProfileParams> get(std::shared_ptr<ProfileKey> key);

    /** A new key, counted, for each profile that matches. */
    std::list<std::shared_ptr<ProfileKey>> filter(FilterProfileParams& params);

    /** False also when the key names no profile. */
    bool match(FilterProfileParams& params, std::shared_ptr<ProfileKey> key);

    /** Drops everything and reads all profiles from the modem; true. */
    bool refresh();

    /** Confirms a change of the library's own, or follows a change made by someone else. */
    void onIndication(ProfileChangedInd ind);

    /**
     * Gives back one key's share in a profile; with the last one a temporary profile that the
     * library created is deleted from the modem.
     */
    bool releaseProfile(unsigned long token);

    /** Has `callback` called when the profile dies, if `key` is alive then. */
    void registerExpirationListener(std::function<void()> callback, std::weak_ptr<IProfileKey> key,
                                    unsigned long token);

    /** The cached profiles and the expected indications, one per line. */
    std::vector<std::string> dump() const;

    /** The number of the message to the modem that is under way; 0: none. Any thread. */
    std::uint32_t messageUnderWay() const { return proxy.messageUnderWay(); }

    /** A process-wide number that was never handed out before. */
    static unsigned long generateToken();

  private:
    using Profiles = std::unordered_map<unsigned long, std::shared_ptr<ModemProfile>>;

    template <typename Candidates>
    void tellSearch(Candidates candidates) const VELA_REQUIRES(worker);

    Profiles::iterator findLogged(unsigned long token, LogLevel missLevel) VELA_REQUIRES(worker);
    std::shared_ptr<ModemProfile> findProfile(const std::shared_ptr<ProfileKey>& key)
        VELA_REQUIRES(worker);
    std::shared_ptr<ProfileKey> makeKey(const ModemProfile& profile, unsigned long token) const;
    void expect(const ModemProfile& profile, ProfileChangedEvent event) VELA_REQUIRES(worker);
    bool confirm(const ProfileChangedInd& ind) VELA_REQUIRES(worker);
    void follow(const ProfileChangedInd& ind) VELA_REQUIRES(worker);
    void erase(const ProfileChangedInd& ind) VELA_REQUIRES(worker);
    void replace(const ProfileChangedInd& ind) VELA_REQUIRES(worker);

    const RequestFn requestFn;
    WorkerRole worker;
    const ClientRequest* served VELA_GUARDED_BY(worker) = nullptr;
    RlinkWdsProxy proxy;
    Profiles profiles VELA_GUARDED_BY(worker);
    // Indications that own changes will cause, oldest first.
    std::list<ProfileChangedInd> pending VELA_GUARDED_BY(worker);
};

}  // namespace vela
