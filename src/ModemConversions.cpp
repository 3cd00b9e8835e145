// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ModemConversions.h"

#include "LogWrapper.h"

namespace vela {
namespace {

struct ApnTypeBits {
    ApnTypes common;
    std::uint64_t modem;
};

// The two layouts number some of the types differently.
constexpr ApnTypeBits kApnTypeBits[] = {
    {ApnTypes::DEFAULT, 1},     {ApnTypes::MMS, 4},    {ApnTypes::SUPL, 16},
    {ApnTypes::DUN, 8},         {ApnTypes::HIPRI, 32}, {ApnTypes::FOTA, 64},
    {ApnTypes::IMS, 2},         {ApnTypes::CBS, 128},  {ApnTypes::IA, 256},
    {ApnTypes::EMERGENCY, 512}, {ApnTypes::MCX, 2048}, {ApnTypes::XCAP, 1024},
};

void logUnknown(const char* what, int value) {
    LogWrapper::getInstance().log(LogLevel::Debug, kLogTag, "Unknown %s %d", what, value);
}

}  // namespace

TechType convertProfileType(wds_profile_type_enum_v01 type) {
    switch (type) {
        case WDS_PROFILE_TYPE_3GPP_V01:
            return TechType::TECH_3GPP;
        case WDS_PROFILE_TYPE_3GPP2_V01:
            return TechType::TECH_3GPP2;
        default:
            logUnknown("tech type", type);
            return TechType::TECH_3GPP;
    }
}

IPType convertPdnType(wds_profile_pdn_type_enum_v01 type) {
    switch (type) {
        case WDS_PROFILE_PDN_TYPE_IPV4_V01:
            return IPType::V4;
        case WDS_PROFILE_PDN_TYPE_IPV6_V01:
            return IPType::V6;
        case WDS_PROFILE_PDN_TYPE_IPV4V6_V01:
            return IPType::V4V6;
        case WDS_PROFILE_PDN_TYPE_UNSPECIFIED_V01:
            return IPType::UNKNOWN;
        default:
            logUnknown("profile_pdn_type_enum", type);
            return IPType::UNKNOWN;
    }
}

IPType convertPdpType(wds_pdp_type_enum_v01 type) {
    switch (type) {
        case WDS_PDP_TYPE_IPV4_V01:
            return IPType::V4;
        case WDS_PDP_TYPE_IPV6_V01:
            return IPType::V6;
        case WDS_PDP_TYPE_IPV4V6_V01:
            return IPType::V4V6;
        default:
            logUnknown("pdp_type_enum", type);
            return IPType::UNKNOWN;
    }
}

IPType convertPdpType(wds_common_pdp_type_enum_v01 type) {
    switch (type) {
        case WDS_COMMON_PDP_TYPE_IPV4_V01:
            return IPType::V4;
        case WDS_COMMON_PDP_TYPE_IPV6_V01:
            return IPType::V6;
        case WDS_COMMON_PDP_TYPE_IPV4V6_V01:
            return IPType::V4V6;
        default:
            logUnknown("pdp_type_enum", type);
            return IPType::UNKNOWN;
    }
}

AuthType convertToAuthType(unsigned char preference) {
    return static_cast<AuthType>(preference & 3);
}

AuthType convertToAuthType(wds_profile_auth_protocol_enum_v01 protocol) {
    switch (protocol) {
        case WDS_PROFILE_AUTH_PROTOCOL_PAP_V01:
            return AuthType::PAP;
        case WDS_PROFILE_AUTH_PROTOCOL_CHAP_V01:
            return AuthType::CHAP;
        case WDS_PROFILE_AUTH_PROTOCOL_PAP_CHAP_V01:
            return AuthType::PAP_CHAP;
        default:
            return AuthType::NONE;
    }
}

ApnTypes convertToSingleCommonApnType(std::uint64_t modemBit) {
    for (const ApnTypeBits& bits : kApnTypeBits) {
        if (bits.modem == modemBit) {
            return bits.common;
        }
    }
    return static_cast<ApnTypes>(0);
}

unsigned int convertToCommonApnTypeMask(std::uint64_t modemMask) {
    unsigned int apnTypes = 0;
    for (const ApnTypeBits& bits : kApnTypeBits) {
        if ((modemMask & bits.modem) != 0) {
            apnTypes |= toMask(bits.common);
        }
    }
    return apnTypes;
}

wds_profile_identifier_type_v01 convertToProfileIdentifier(TechType techType, int profileId) {
    wds_profile_identifier_type_v01 identifier{};
    identifier.profile_type =
        techType == TechType::TECH_3GPP2 ? WDS_PROFILE_TYPE_3GPP2_V01 : WDS_PROFILE_TYPE_3GPP_V01;
    identifier.profile_index = static_cast<std::uint8_t>(profileId);
    return identifier;
}

wds_profile_pdn_type_enum_v01 convertToRlinkProfilePdnType(IPType type) {
    switch (type) {
        case IPType::V4:
            return WDS_PROFILE_PDN_TYPE_IPV4_V01;
        case IPType::V6:
            return WDS_PROFILE_PDN_TYPE_IPV6_V01;
        default:
            return WDS_PROFILE_PDN_TYPE_IPV4V6_V01;
    }
}

wds_pdp_type_enum_v01 convertToRlinkPdpType(IPType type) {
    switch (type) {
        case IPType::V4:
            return WDS_PDP_TYPE_IPV4_V01;
        case IPType::V6:
            return WDS_PDP_TYPE_IPV6_V01;
        default:
            return WDS_PDP_TYPE_IPV4V6_V01;
    }
}

wds_common_pdp_type_enum_v01 convertToRlinkCommonPdpType(IPType type) {
    switch (type) {
        case IPType::UNKNOWN:
            return WDS_COMMON_PDP_TYPE_UNSET_V01;
        case IPType::V4:
            return WDS_COMMON_PDP_TYPE_IPV4_V01;
        case IPType::V6:
            return WDS_COMMON_PDP_TYPE_IPV6_V01;
        default:
            return WDS_COMMON_PDP_TYPE_IPV4V6_V01;
    }
}

std::uint8_t convertToRlinkAuthPref(AuthType type) {
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(type) & 3U);
}

wds_profile_auth_protocol_enum_v01 convertToRlinkAuthProtocol(AuthType type) {
    switch (type) {
        case AuthType::PAP:
            return WDS_PROFILE_AUTH_PROTOCOL_PAP_V01;
        case AuthType::CHAP:
            return WDS_PROFILE_AUTH_PROTOCOL_CHAP_V01;
        case AuthType::PAP_CHAP:
            return WDS_PROFILE_AUTH_PROTOCOL_PAP_CHAP_V01;
        default:
            return WDS_PROFILE_AUTH_PROTOCOL_NONE_V01;
    }
}

wds_profile_pdn_level_auth_protocol_enum_v01 convertToRlinkPdnLevelAuthProtocol(AuthType type) {
    // Both enumerations number the protocols alike.
    return static_cast<wds_profile_pdn_level_auth_protocol_enum_v01>(
        convertToRlinkAuthProtocol(type));
}

std::uint64_t convertToSingleRlinkApnType(ApnTypes type) {
    for (const ApnTypeBits& bits : kApnTypeBits) {
        if (bits.common == type) {
            return bits.modem;
        }
    }
    return 0;
}

std::uint64_t convertToRlinkApnTypeMask(unsigned int apnTypes) {
    std::uint64_t modemMask = 0;
    for (const ApnTypeBits& bits : kApnTypeBits) {
        if ((apnTypes & toMask(bits.common)) != 0) {
            modemMask |= bits.modem;
        }
    }
    return modemMask;
}

std::string convertToLower(const std::string& text) {
    std::string lower = text;
    for (char& letter : lower) {
        letter = convertToLower(letter);
    }
    return lower;
}

}  // namespace vela
