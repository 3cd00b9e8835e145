// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "ExpirationListener.h"
#include "RefCount.h"
#include "vela/ProfileParams.h"
#include "wds_service_v01.h"

namespace vela {

/**
 * The library's image of one profile stored in the modem, or about to be: what both technologies
 * share. A getter of an absent field returns the zero value of its type.
 *
 * Worker thread only. The cache owns profiles by `std::shared_ptr`, and when the last owner goes
 * the listeners whose keys still live are called, in the order in which they were registered.
 */
class ModemProfile {
  public:
    ModemProfile(const ModemProfile&) = delete;
    ModemProfile& operator=(const ModemProfile&) = delete;
    virtual ~ModemProfile();

    /** True when the profile has everything that the filter asks for. */
    virtual bool match(const FilterProfileParams& params) const;

    /** Takes over the fields that `other` has; what is not a setting stays. Empty is ignored. */
    virtual void apply(std::shared_ptr<ModemProfile> other);

    /** A profile of what `params` would change, without an index; empty when that is nothing. */
    virtual std::shared_ptr<ModemProfile> diff(const ModifyProfileParams& params) const = 0;

    /** The profile as client parameters. */
    virtual ProfileParams get() const = 0;

    /** The message that creates this profile. */
    virtual wds_create_profile_req_msg_v01 constructAddRequest() const = 0;

    /** The message that writes this profile's fields over those at its index. */
    virtual wds_modify_profile_settings_req_msg_v01 constructModifyRequest() const = 0;

    /** One line: label, value and "," for each present field, the password in clear text. */
    virtual std::string dump() const;

    TechType getTechType() const { return techType; }

    /** The modem's profile index; -1 until known. */
    int getProfileId() const { return profileId; }
    void setProfileId(int value) { profileId = value; }

    /** The profile survives a modem power cycle. */
    bool getIsPersistent() const { return isPersistent; }
    void setIsPersistent(bool value) { isPersistent = value; }

    /** This process's library has created the profile. */
    bool getIsVelaCreated() const { return isVelaCreated; }
    void setIsVelaCreated(bool value) { isVelaCreated = value; }

    /** How many keys hold this profile. Nothing clamps the count; overflow aborts the process. */
    int getRefCount() const { return refCount.get(); }
    void incRefCount() { refCount.increment(); }
    void decRefCount() { refCount.decrement(); }

    /** APN name in lower case, at most 150 bytes; the setter stores its argument as it stands. */
    bool hasApnName() const { return apnName.has_value(); }
    std::string getApnName() const { return apnName.value_or(std::string()); }
    void setApnName(std::string value) { apnName = std::move(value); }

    /** User name for authentication. */
    bool hasUserName() const { return userName.has_value(); }
    std::string getUserName() const { return userName.value_or(std::string()); }
    void setUserName(std::string value) { userName = std::move(value); }

    /** Password for authentication. */
    bool hasPassword() const { return password.has_value(); }
    std::string getPassword() const { return password.value_or(std::string()); }
    void setPassword(std::string value) { password = std::move(value); }

    bool hasAuthType() const { return authType.has_value(); }
    AuthType getAuthType() const { return authType.value_or(AuthType::NONE); }
    void setAuthType(AuthType value) { authType = value; }

    /** APN types in the modem's bit layout, not in that of `ApnTypes`. */
    bool hasApnTypesMask() const { return apnTypesMask.has_value(); }
    std::uint64_t getApnTypesMask() const { return apnTypesMask.value_or(0); }
    void setApnTypesMask(std::uint64_t value) { apnTypesMask = value; }

    bool hasApnClass() const { return apnClass.has_value(); }
    ApnClass getApnClass() const { return apnClass.value_or(static_cast<ApnClass>(0)); }
    void setApnClass(ApnClass value) { apnClass = value; }

    /** The PDP or PDN type; V4V6 also where home and roaming types differ. */
    bool hasCommonIPType() const { return commonIPType.has_value(); }
    IPType getCommonIPType() const { return commonIPType.value_or(IPType::UNKNOWN); }
    void setCommonIPType(IPType value) { commonIPType = value; }

    /** CLAT (464XLAT) enabled. */
    bool hasIsClatEnabled() const { return isClatEnabled.has_value(); }
    bool getIsClatEnabled() const { return isClatEnabled.value_or(false); }
    void setIsClatEnabled(bool value) { isClatEnabled = value; }

    /** How the modem names this profile. */
    wds_profile_identifier_type_v01 constructProfileIdentifier() const;

    /** True when the profile has all of these `ApnTypes` bits; others may be set as well. */
    bool matchSubsetApnTypesMask(unsigned int apnTypes) const;

    /** True when the profile has these `ApnTypes` bits and no others, not even the modem's own. */
    bool matchExactApnTypesMask(unsigned int apnTypes) const;

    /** Has `callback` called when this object dies, if the key still lives then. */
    void registerExpirationListener(std::function<void()> callback, std::weak_ptr<IProfileKey> key);

    /** Forgets the listeners whose keys have gone. */
    void clearExpiredListeners();

  protected:
    ModemProfile(TechType techType, const ProfileParams& params);

    /** Reads only what both technologies keep in the same parts of the response. */
    ModemProfile(TechType techType, int profileId,
                 const wds_get_profile_settings_resp_msg_v01& response);

    /** Zeroes the message, then fills the parts that both technologies share. */
    void updateAddParameters(wds_create_profile_req_msg_v01& request) const;
    void updateModifyParameters(wds_modify_profile_settings_req_msg_v01& request) const;

    /** Gives the shared fields, apart from the IP type. */
    void updateGetParameters(FilterProfileParams& params) const;

    /** Puts the shared fields that `params` would change, apart from the IP type, into `diff`. */
    void updateDiffParameters(const ModifyProfileParams& params, ProfileParams& diff,
                              bool& changed) const;

    /** Equal, or in one of the relations of `subset` and `superset` that the criteria ask for. */
    static bool matchIPType(const FilterProfileParams& params, IPType wanted, IPType actual,
                            FilterMatchCriteria subset, FilterMatchCriteria superset);

    // The derived classes read and write messages straight from the fields.
    std::optional<std::string> apnName;
    std::optional<std::uint64_t> apnTypesMask;
    std::optional<IPType> commonIPType;
    std::optional<std::string> userName;
    std::optional<std::string> password;
    std::optional<AuthType> authType;
    std::optional<ApnClass> apnClass;
    std::optional<bool> isClatEnabled;

  private:
    struct Fields;

    bool matchApnName(const FilterProfileParams& params) const;
    bool matchApnTypesMask(const FilterProfileParams& params) const;
    void writeShared(wds_profile_settings_type_v01& settings) const;

    const TechType techType;
    int profileId = -1;
    bool isPersistent = false;
    bool isVelaCreated = false;
    RefCount refCount;
    std::list<ExpirationListener> listeners;
};

}  // namespace vela
