// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "vela/Export.h"
#include "vela/ProfileTypes.h"

namespace vela {

/**
 * Describes a data (APN) profile, or a pattern of profiles. Every field is optional: a setter
 * stores the value and makes the field present, `has...` tells whether it is present, and the
 * getter of an absent field returns the zero value of its type. A present field cannot be made
 * absent again (assign another record instead).
 *
 * A plain value: copyable, without locks; share one between threads only unchanged.
 */
class VELA_API ProfileParams {
  public:
    ProfileParams() = default;
    ProfileParams(const ProfileParams&) = default;
    ProfileParams(ProfileParams&&) = default;
    ProfileParams& operator=(const ProfileParams&) = default;
    ProfileParams& operator=(ProfileParams&&) = default;
    virtual ~ProfileParams();

    /** APN name; the modem keeps at most 150 bytes, in lower case. May be empty. */
    std::string getApnName() const { return apnName.value_or(std::string()); }
    void setApnName(std::string value) { apnName = std::move(value); }
    bool hasApnName() const { return apnName.has_value(); }

    /** User name for authentication; case matters; the modem keeps at most 127 bytes. */
    std::string getUserName() const { return userName.value_or(std::string()); }
    void setUserName(std::string value) { userName = std::move(value); }
    bool hasUserName() const { return userName.has_value(); }

    /** Password for authentication; case matters; the modem keeps at most 127 bytes. */
    std::string getPassword() const { return password.value_or(std::string()); }
    void setPassword(std::string value) { password = std::move(value); }
    bool hasPassword() const { return password.has_value(); }

    AuthType getAuthType() const { return authType.value_or(AuthType::NONE); }
    void setAuthType(AuthType value) { authType = value; }
    bool hasAuthType() const { return authType.has_value(); }

    /** IP type in the home network. */
    IPType getHomeIPType() const { return homeIPType.value_or(IPType::UNKNOWN); }
    void setHomeIPType(IPType value) { homeIPType = value; }
    bool hasHomeIPType() const { return homeIPType.has_value(); }

    /** IP type when roaming (3GPP only). */
    IPType getRoamIPType() const { return roamIPType.value_or(IPType::UNKNOWN); }
    void setRoamIPType(IPType value) { roamIPType = value; }
    bool hasRoamIPType() const { return roamIPType.has_value(); }

    /** `ApnTypes` bits; bits above 2048 mean nothing and never reach the modem. */
    unsigned int getApnTypesMask() const { return apnTypesMask.value_or(0U); }
    void setApnTypesMask(unsigned int value) { apnTypesMask = value; }
    bool hasApnTypesMask() const { return apnTypesMask.has_value(); }

    ApnClass getApnClass() const { return apnClass.value_or(static_cast<ApnClass>(0)); }
    void setApnClass(ApnClass value) { apnClass = value; }
    bool hasApnClass() const { return apnClass.has_value(); }

    /** CLAT (464XLAT) enabled. */
    bool getIsClatEnabled() const { return isClatEnabled.value_or(false); }
    void setIsClatEnabled(bool value) { isClatEnabled = value; }
    bool hasIsClatEnabled() const { return isClatEnabled.has_value(); }

    /** The profile may carry emergency calls (3GPP only). */
    bool getIsEmergencySupported() const { return isEmergencySupported.value_or(false); }
    void setIsEmergencySupported(bool value) { isEmergencySupported = value; }
    bool hasIsEmergencySupported() const { return isEmergencySupported.has_value(); }

    /** The APN is disabled (3GPP only). */
    bool getIsApnDisabled() const { return isApnDisabled.value_or(false); }
    void setIsApnDisabled(bool value) { isApnDisabled = value; }
    bool hasIsApnDisabled() const { return isApnDisabled.has_value(); }

    /** PDN connections allowed per time block; 0 to 65535 reach the modem (3GPP only). */
    int getMaxPdnsConnPerBlock() const { return maxPdnsConnPerBlock.value_or(0); }
    void setMaxPdnsConnPerBlock(int value) { maxPdnsConnPerBlock = value; }
    bool hasMaxPdnsConnPerBlock() const { return maxPdnsConnPerBlock.has_value(); }

    /** Length of that time block in seconds; 0 to 65535 reach the modem (3GPP only). */
    int getMaxPdnConnTimer() const { return maxPdnConnTimer.value_or(0); }
    void setMaxPdnConnTimer(int value) { maxPdnConnTimer = value; }
    bool hasMaxPdnConnTimer() const { return maxPdnConnTimer.has_value(); }

    /** Wait between PDN requests; 0 to 65535 reach the modem (3GPP only). */
    int getPdnReqWaitInterval() const { return pdnReqWaitInterval.value_or(0); }
    void setPdnReqWaitInterval(int value) { pdnReqWaitInterval = value; }
    bool hasPdnReqWaitInterval() const { return pdnReqWaitInterval.has_value(); }

    /** The profile was made by this library; false when unknown (3GPP only). */
    bool getIsVelaProfile() const { return isVelaProfile.value_or(false); }

    /** The profile is for the LTE initial attach (IA); false when unknown (3GPP only). */
    bool getIsIAProfile() const { return isIAProfile.value_or(false); }

    /**
     * One line: label, value and "," for each present field. The password is shown in clear text,
     * on purpose: whoever reads these logs is debugging exactly that.
     */
    virtual std::string dump() const;

  protected:
    // Set only by the library, and by filters that ask for it.
    std::optional<bool> isVelaProfile;
    std::optional<bool> isIAProfile;

  private:
    friend class ModemProfile;  // compares the APN name where it stands

    std::optional<std::int32_t> reserved;  // carried along for future use
    std::optional<std::string> apnName;
    std::optional<std::string> userName;
    std::optional<std::string> password;
    std::optional<AuthType> authType;
    std::optional<IPType> homeIPType;
    std::optional<IPType> roamIPType;
    std::optional<unsigned int> apnTypesMask;
    std::optional<ApnClass> apnClass;
    std::optional<bool> isClatEnabled;
    std::optional<bool> isEmergencySupported;
    std::optional<bool> isApnDisabled;
    std::optional<int> maxPdnsConnPerBlock;
    std::optional<int> maxPdnConnTimer;
    std::optional<int> pdnReqWaitInterval;
};

/** What to create. */
class VELA_API AddProfileParams : public ProfileParams {
  public:
    /**
     * @param isPersistent the profile survives a modem power cycle and the release of its keys;
     *        otherwise it is deleted from the modem when its last key is dropped
     * @param isIAProfile the profile is for the LTE initial attach
     */
    AddProfileParams(bool isPersistent, TechType techType, bool isIAProfile);

    /** The same, with the fields of `params`, whose IA flag is overridden. */
    AddProfileParams(const ProfileParams& params, bool isPersistent, TechType techType,
                     bool isIAProfile);

    bool getIsPersistent() const { return isPersistent; }
    TechType getTechType() const { return techType; }

    std::string dump() const override;

  private:
    bool isPersistent;
    TechType techType;
};

/** What to change: the present fields; absent ones stay as they are. */
class VELA_API ModifyProfileParams : public ProfileParams {
  public:
    ModifyProfileParams() = default;

    /** Changes every field that `params` has. */
    explicit ModifyProfileParams(const ProfileParams& params) : ProfileParams(params) {}
};

/** What to look for: profiles that have all present fields, compared as the criteria say. */
class VELA_API FilterProfileParams : public ProfileParams {
  public:
    /** Matches every profile. */
    FilterProfileParams() = default;

    /** Asks for every field of `params`; no criteria, no profile id, any technology. */
    FilterProfileParams(const ProfileParams& params) : ProfileParams(params) {}

    /** The modem's profile index. */
    int getFilterByProfileId() const { return filterByProfileId.value_or(0); }
    void setFilterByProfileId(int value) { filterByProfileId = value; }
    bool hasFilterByProfileId() const { return filterByProfileId.has_value(); }

    TechType getFilterByTechType() const { return filterByTechType.value_or(TechType::TECH_3GPP); }
    void setFilterByTechType(TechType value) { filterByTechType = value; }
    bool hasFilterByTechType() const { return filterByTechType.has_value(); }

    /** Only profiles (not) made by this library; read with getIsVelaProfile(). */
    void setFilterByIsVelaProfile(bool value) { isVelaProfile = value; }
    bool hasFilterByIsVelaProfile() const { return isVelaProfile.has_value(); }

    /** Only profiles (not) for the initial attach; read with getIsIAProfile(). */
    void setFilterByIsIAProfile(bool value) { isIAProfile = value; }
    bool hasFilterByIsIAProfile() const { return isIAProfile.has_value(); }

    /** `FilterMatchCriteria` bits, initially 0. */
    unsigned int getFilterMatchCriteria() const { return filterMatchCriteria; }
    void addFilterMatchCriteria(unsigned int bits) { filterMatchCriteria |= bits; }
    void removeFilterMatchCriteria(unsigned int bits) { filterMatchCriteria &= ~bits; }

    std::string dump() const override;

  private:
    unsigned int filterMatchCriteria = 0;
    std::optional<int> filterByProfileId;
    std::optional<TechType> filterByTechType;
};

}  // namespace vela
