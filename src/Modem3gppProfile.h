// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "ModemProfile.h"

namespace vela {

/**
 * A 3GPP profile. The modem keeps one PDP type: where home and roaming types differ that is V4V6,
 * and the home type is kept beside it as an override.
 */
class Modem3gppProfile : public ModemProfile {
  public:
    /** Names by which the library knows its own profiles; compared whole, case matters. */
    static constexpr const char* kVelaName = "vela_profile";
    static constexpr const char* kVelaIAName = "vela_profile_ia";

    /** Takes every field that `params` has; the profile's name is set apart. */
    explicit Modem3gppProfile(const ProfileParams& params);

    /** Reads what the modem holds at `profileIndex`. */
    Modem3gppProfile(int profileIndex, const wds_get_profile_settings_resp_msg_v01& response);

    /**
     * What the modem should hold to meet the requested home and roaming types; a type that is not
     * requested stays as this profile has it. The results are passed in empty, and are left so
     * where nothing is known or needed; `overrideHome` UNKNOWN means to clear the override.
     */
    void getNewIPTypes(const ProfileParams& params, std::optional<IPType>& home,
                       std::optional<IPType>& roam, std::optional<IPType>& overrideHome) const;

    bool match(const FilterProfileParams& params) const override;
    void apply(std::shared_ptr<ModemProfile> other) override;
    std::shared_ptr<ModemProfile> diff(const ModifyProfileParams& params) const override;
    ProfileParams get() const override;
    wds_create_profile_req_msg_v01 constructAddRequest() const override;
    wds_modify_profile_settings_req_msg_v01 constructModifyRequest() const override;
    std::string dump() const override;

    /** The home IP type where it differs from the roaming type; UNKNOWN stands for no override. */
    bool hasOverrideHomeIPType() const { return overrideHomeIPType.has_value(); }
    IPType getOverrideHomeIPType() const { return overrideHomeIPType.value_or(IPType::UNKNOWN); }
    void setOverrideHomeIPType(IPType value) { overrideHomeIPType = value; }

    bool hasLteRoamIPType() const { return lteRoamIPType.has_value(); }
    IPType getLteRoamIPType() const { return lteRoamIPType.value_or(IPType::UNKNOWN); }
    void setLteRoamIPType(IPType value) { lteRoamIPType = value; }

    bool hasUmtsRoamIPType() const { return umtsRoamIPType.has_value(); }
    IPType getUmtsRoamIPType() const { return umtsRoamIPType.value_or(IPType::UNKNOWN); }
    void setUmtsRoamIPType(IPType value) { umtsRoamIPType = value; }

    /** PDN connections allowed per time block. */
    bool hasMaxPdnsConnPerBlock() const { return maxPdnsConnPerBlock.has_value(); }
    int getMaxPdnsConnPerBlock() const { return maxPdnsConnPerBlock.value_or(0); }
    void setMaxPdnsConnPerBlock(int value) { maxPdnsConnPerBlock = value; }

    /** Length of that time block in seconds. */
    bool hasMaxPdnConnTimer() const { return maxPdnConnTimer.has_value(); }
    int getMaxPdnConnTimer() const { return maxPdnConnTimer.value_or(0); }
    void setMaxPdnConnTimer(int value) { maxPdnConnTimer = value; }

    /** Wait between PDN requests. */
    bool hasPdnReqWaitInterval() const { return pdnReqWaitInterval.has_value(); }
    int getPdnReqWaitInterval() const { return pdnReqWaitInterval.value_or(0); }
    void setPdnReqWaitInterval(int value) { pdnReqWaitInterval = value; }

    bool hasIsApnDisabled() const { return isApnDisabled.has_value(); }
    bool getIsApnDisabled() const { return isApnDisabled.value_or(false); }
    void setIsApnDisabled(bool value) { isApnDisabled = value; }

    /** Says whether the library has made the profile, and for the initial attach. */
    bool hasProfileName() const { return profileName.has_value(); }
    std::string getProfileName() const { return profileName.value_or(std::string()); }
    void setProfileName(std::string value) { profileName = std::move(value); }

    bool hasIsEmergencySupported() const { return isEmergencySupported.has_value(); }
    bool getIsEmergencySupported() const { return isEmergencySupported.value_or(false); }
    void setIsEmergencySupported(bool value) { isEmergencySupported = value; }

  private:
    struct Fields;

    bool isIAProfile() const;
    bool isVelaProfile() const;
    std::optional<IPType> homeIPType() const;
    std::optional<IPType> roamIPType() const;
    bool matchHomeIPType(const FilterProfileParams& params) const;
    bool matchRoamIPType(const FilterProfileParams& params) const;
    void readIPTypes(const wds_profile_settings_type_v01& settings);
    void writeSettings(wds_profile_settings_type_v01& settings) const;
    void writeIPTypes(wds_profile_settings_type_v01& settings) const;

    std::optional<IPType> overrideHomeIPType;
    std::optional<IPType> lteRoamIPType;
    std::optional<IPType> umtsRoamIPType;
    std::optional<int> maxPdnsConnPerBlock;
    std::optional<int> maxPdnConnTimer;
    std::optional<int> pdnReqWaitInterval;
    std::optional<bool> isApnDisabled;
    std::optional<std::string> profileName;
    std::optional<bool> isEmergencySupported;
};

}  // namespace vela
