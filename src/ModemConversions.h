// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Between the library's values and those of the modem's data service. Nothing here fails: values
// from the modem that mean nothing become a fallback, most of them with a debug line.
#pragma once

#include <cstdint>
#include <string>

#include "vela/ProfileTypes.h"
#include "wds_service_v01.h"

namespace vela {

// From the modem.

/** Unknown types become 3GPP. */
TechType convertProfileType(wds_profile_type_enum_v01 type);

/** Unspecified and unknown types become UNKNOWN; only the latter are logged. */
IPType convertPdnType(wds_profile_pdn_type_enum_v01 type);

/** PPP and unknown types become UNKNOWN. */
IPType convertPdpType(wds_pdp_type_enum_v01 type);

/** Unknown types, the unset value included, become UNKNOWN. */
IPType convertPdpType(wds_common_pdp_type_enum_v01 type);

/** From an authentication preference, of which only the PAP and CHAP bits count. */
AuthType convertToAuthType(unsigned char preference);

/** Unknown protocols become NONE. */
AuthType convertToAuthType(wds_profile_auth_protocol_enum_v01 protocol);

/** The `ApnTypes` bit of one bit of the modem's; 0 for anything that is not one such bit. */
ApnTypes convertToSingleCommonApnType(std::uint64_t modemBit);

/** `ApnTypes` bits of a mask in the modem's layout; bits unknown to the library are dropped. */
unsigned int convertToCommonApnTypeMask(std::uint64_t modemMask);

// To the modem.

/** The index keeps its low 8 bits, all that the modem has room for. */
wds_profile_identifier_type_v01 convertToProfileIdentifier(TechType techType, int profileId);

/** Anything but V4 and V6 goes out as dual stack. */
wds_profile_pdn_type_enum_v01 convertToRlinkProfilePdnType(IPType type);

/** Anything but V4 and V6 goes out as dual stack. */
wds_pdp_type_enum_v01 convertToRlinkPdpType(IPType type);

/** UNKNOWN goes out as the unset value, unlike in the other two; other types as dual stack. */
wds_common_pdp_type_enum_v01 convertToRlinkCommonPdpType(IPType type);

/** An authentication preference: bit 0 PAP, bit 1 CHAP. */
std::uint8_t convertToRlinkAuthPref(AuthType type);

/** Unknown types go out as no authentication. */
wds_profile_auth_protocol_enum_v01 convertToRlinkAuthProtocol(AuthType type);

/** Unknown types go out as no authentication. */
wds_profile_pdn_level_auth_protocol_enum_v01 convertToRlinkPdnLevelAuthProtocol(AuthType type);

/** The modem's bit for one `ApnTypes` bit; 0 for anything that is not one such bit. */
std::uint64_t convertToSingleRlinkApnType(ApnTypes type);

/** A mask in the modem's layout; bits that `ApnTypes` does not define are dropped. */
std::uint64_t convertToRlinkApnTypeMask(unsigned int apnTypes);

/** Lowers an ASCII letter and leaves every other byte alone, in any locale. */
constexpr char convertToLower(char letter) {
    const bool isUpper = static_cast<unsigned char>(letter - 'A') < 26;
    return static_cast<char>(letter + (isUpper ? 'a' - 'A' : 0));
}
std::string convertToLower(const std::string& text);

}  // namespace vela
