// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "ModemProfile.h"

namespace vela {

/**
 * A 3GPP2 (CDMA) profile: the shared fields alone, with one IP type. It carries no name, so nothing
 * tells whose profile it is, and the modem never gives its password back.
 */
class Modem3gpp2Profile : public ModemProfile {
  public:
    /** Takes the shared fields and, as the one IP type, the home type. */
    explicit Modem3gpp2Profile(const ProfileParams& params);

    /** Reads what the modem holds at `profileIndex`. */
    Modem3gpp2Profile(int profileIndex, const wds_get_profile_settings_resp_msg_v01& response);

    /** Never true for a filter that asks for a 3GPP-only property, whatever its value. */
    bool match(const FilterProfileParams& params) const override;
    std::shared_ptr<ModemProfile> diff(const ModifyProfileParams& params) const override;
    ProfileParams get() const override;
    wds_create_profile_req_msg_v01 constructAddRequest() const override;
    wds_modify_profile_settings_req_msg_v01 constructModifyRequest() const override;

  private:
    void writeSettings(wds_profile_settings_type_v01& settings) const;
};

}  // namespace vela
