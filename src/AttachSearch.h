// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "vela/IProfileKey.h"
#include "vela/Manager.h"
#include "vela/ProfileParams.h"

namespace vela {

/**
 * The search for the LTE attach profile: its tries, in their order, and the update that each try
 * leaves for the profile that it finds. Each try gives back all keys but the one it returns.
 */
class AttachSearch {
  public:
    /** `params` must outlive the search. */
    AttachSearch(Manager& manager, const ProfileParams& params, bool profileUpdateAllowed);

    /** The key of the first try that finds a profile; empty when none does. */
    std::shared_ptr<IProfileKey> run();

    /** What to change in the found profile. */
    const ModifyProfileParams& getUpdate() const { return update; }

  private:
    std::shared_ptr<IProfileKey> tryExactMatch();
    std::shared_ptr<IProfileKey> tryLooseMatch();
    std::shared_ptr<IProfileKey> tryVelaIAProfileWithApn();
    std::shared_ptr<IProfileKey> tryAnyVelaIAProfile();

    std::shared_ptr<IProfileKey> findFirst(const FilterProfileParams& filter);

    Manager& manager;
    const ProfileParams& params;
    const bool profileUpdateAllowed;
    ModifyProfileParams update;
};

/** Whether the library made the profile for something else than the initial attach. */
bool isVelaProfileNotForAttach(const ProfileParams& profile);

}  // namespace vela
