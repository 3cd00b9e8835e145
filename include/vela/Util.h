// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <list>
#include <memory>
#include <string>

#include "vela/Export.h"
#include "vela/IProfileKey.h"
#include "vela/ProfileParams.h"

namespace vela {

class Manager;

/**
 * Policies that find, repair or create the right profile for a purpose, through the process-wide
 * `Manager`. Each call runs on the caller's thread and is made of several `Manager` calls; it takes
 * no lock, so that other callers may come in between. Two calls at once may both find nothing and
 * both create a profile, persistent ones too: make one call after the other, on one thread or under
 * a lock of yours. Initialise the `Manager` first.
 */
class VELA_API Util {
  public:
    Util();
    Util(const Util&) = delete;
    Util& operator=(const Util&) = delete;
    ~Util();

    /**
     * Whether the policies may change the IP types of profiles that the library did not create, and
     * rewrite a profile found for a data call. False at first.
     */
    void setProfileUpdateAllowed(bool allowed);

    /**
     * The profile for the LTE initial attach: an exact match, a loose match, an IA profile of the
     * library with the same APN, any IA profile of the library, or a new persistent one, in this
     * order. A found profile gets the requested secondary settings.
     * @return empty when nothing was found and the creation failed
     */
    std::shared_ptr<IProfileKey> findOrCreateProfileForLteAttach(const ProfileParams& params);

    /** @return whether the modem's 3GPP profile `profileId` can serve the attach with `params` */
    bool matchLteAttachProfileId(int profileId, const ProfileParams& params);

    /**
     * The profile for a data call. A created one is temporary: the modem forgets it with the last
     * key.
     * @return empty when nothing was found and the creation failed
     */
    std::shared_ptr<IProfileKey> findOrCreateProfileForSetupDataCall(TechType techType,
                                                                     const ProfileParams& params);

    /**
     * The profile for an emergency call: one that supports emergency calls, by name first, or a new
     * persistent one of APN type EMERGENCY. A found profile is taken as it is.
     * @return empty when nothing was found and the creation failed
     */
    std::shared_ptr<IProfileKey> findOrCreateProfileForEmergencyDataCall(
        const ProfileParams& params);

    /**
     * Brings the modem's profiles of each given APN class in line with the entries, creating a
     * persistent profile for a class that has none. Failures are logged only.
     */
    void updateModemProfileByApnClass(const std::list<ProfileParams>& profiles3gpp,
                                      const std::list<ProfileParams>& profiles3gpp2);

    /** The same for one entry; an entry without an APN class is skipped. */
    void updateModemProfileByApnClassAndTechType(const ProfileParams& params, TechType techType);

    /**
     * Distributes the APN type masks of the entries over the modem's profiles of the same APN name,
     * by IP type. Entries without an APN name are left out. Failures are logged only.
     */
    void updateAPNTypeBitmaskOnModemProfile(const std::list<ProfileParams>& profiles);

    /** Gives `mask` (`ApnTypes` bits) to every profile with the APN name. */
    void handleCombinedProfileUpdate(unsigned int mask, std::string apnName);

    /**
     * Gives each mask to the profiles of its IP type; what finds no single-stack profile goes to
     * the dual-stack one, and the other way round.
     */
    void handleProfileUpdateByTechType(TechType techType, unsigned int v4Mask, unsigned int v6Mask,
                                       unsigned int v4v6Mask, std::string apnName);

    /** @return whether a profile of that technology, home IP type and APN name was found */
    bool updateByIpType(TechType techType, IPType ipType, unsigned int mask, std::string apnName);

  private:
    Manager& manager;
    bool profileUpdateAllowed = false;
};

}  // namespace vela
