// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ModemConversions.h"

#include <gtest/gtest.h>

#include "LogCapture.h"

namespace vela {
namespace {

/** The results for first, first + 1, ... last, as numbers. */
template <typename From, typename To>
std::vector<int> convertAll(To (*convert)(From), int first, int last) {
    std::vector<int> results;
    for (int value = first; value <= last; ++value) {
        results.push_back(static_cast<int>(convert(static_cast<From>(value))));
    }
    return results;
}

using Numbers = std::vector<int>;

TEST(ModemConversionsTest, WritesTypesWithTheirFallbacks) {
    EXPECT_EQ(convertAll(convertToRlinkProfilePdnType, -1, 4), (Numbers{2, 2, 0, 1, 2, 2}));
    EXPECT_EQ(convertAll(convertToRlinkPdpType, -1, 4), (Numbers{3, 3, 0, 2, 3, 3}));
    EXPECT_EQ(convertAll(convertToRlinkCommonPdpType, -1, 4), (Numbers{2, 255, 0, 1, 2, 2}));
    EXPECT_EQ(convertAll(convertToRlinkAuthPref, -1, 7), (Numbers{3, 0, 1, 2, 3, 0, 1, 2, 3}));
    EXPECT_EQ(convertAll(convertToRlinkAuthProtocol, -1, 5), (Numbers{0, 0, 1, 2, 3, 0, 0}));
    EXPECT_EQ(convertAll(convertToRlinkPdnLevelAuthProtocol, -1, 5),
              (Numbers{0, 0, 1, 2, 3, 0, 0}));
}

TEST(ModemConversionsTest, ReadsTypesAndLogsUnknownOnes) {
    LogCapture log;
    const auto logged = [&log](const std::string& what, int first, int second) {
        const std::string text = "Unknown " + what + " ";
        return log.take() ==
               std::vector<LogCapture::Line>{{LogLevel::Debug, text + std::to_string(first)},
                                             {LogLevel::Debug, text + std::to_string(second)}};
    };
    EXPECT_EQ(convertAll(convertProfileType, -1, 2), (Numbers{0, 0, 1, 0}));
    EXPECT_TRUE(logged("tech type", -1, 2));
    EXPECT_EQ(convertAll(convertPdnType, -1, 4), (Numbers{0, 1, 2, 3, 0, 0}));
    EXPECT_TRUE(logged("profile_pdn_type_enum", -1, 4));
    EXPECT_EQ(convertAll<wds_pdp_type_enum_v01>(convertPdpType, 0, 4), (Numbers{1, 0, 2, 3, 0}));
    EXPECT_TRUE(logged("pdp_type_enum", 1, 4));
    EXPECT_EQ(convertAll<wds_common_pdp_type_enum_v01>(convertPdpType, -1, 3),
              (Numbers{0, 1, 2, 3, 0}));
    EXPECT_TRUE(logged("pdp_type_enum", -1, 3));
    EXPECT_EQ(convertAll<unsigned char>(convertToAuthType, 252, 257), (Numbers{0, 1, 2, 3, 0, 1}));
    EXPECT_EQ(convertAll<wds_profile_auth_protocol_enum_v01>(convertToAuthType, -1, 5),
              (Numbers{0, 0, 1, 2, 3, 0, 0}));
    EXPECT_TRUE(log.take().empty());
}

TEST(ModemConversionsTest, ApnTypeBitsCorrespond) {
    // For ApnTypes bits 1, 2, 4, ... 2048.
    const std::uint64_t modemBits[] = {1, 4, 16, 8, 32, 64, 2, 128, 256, 512, 2048, 1024};
    for (unsigned int i = 0; i < 12; ++i) {
        const auto type = static_cast<ApnTypes>(1U << i);
        EXPECT_EQ(convertToSingleRlinkApnType(type), modemBits[i]);
        EXPECT_EQ(convertToSingleCommonApnType(modemBits[i]), type);
    }
    for (const unsigned int noBit : {0U, 3U, 4096U, 1U << 31U}) {
        EXPECT_EQ(convertToSingleRlinkApnType(static_cast<ApnTypes>(noBit)), 0U);
        EXPECT_EQ(convertToSingleCommonApnType(noBit), static_cast<ApnTypes>(0));
    }
    EXPECT_EQ(convertToSingleCommonApnType((std::uint64_t{1} << 32U) | 1U),
              static_cast<ApnTypes>(0));
}

TEST(ModemConversionsTest, ApnTypeMasksAreInverseAndDropOtherBits) {
    EXPECT_EQ(convertToRlinkApnTypeMask(0x1FFF), 0xFFFU);
    EXPECT_EQ(convertToCommonApnTypeMask(2), 64U);
    for (unsigned int mask = 0; mask <= 0xFFF; ++mask) {
        const std::uint64_t modemMask = convertToRlinkApnTypeMask(mask | 0xFFFFF000U);
        ASSERT_EQ(modemMask >> 12U, 0U);
        ASSERT_EQ(convertToCommonApnTypeMask(modemMask | 0xFFFFFFFFFFFFF000U), mask);
    }
}

TEST(ModemConversionsTest, LowersAsciiLettersOnly) {
    EXPECT_EQ(convertToLower("@AZ[`az{ \xC4\xE4.IMS"), "@az[`az{ \xC4\xE4.ims");
    EXPECT_EQ(convertToLower(std::string("A\0B", 3)), std::string("a\0b", 3));
}

}  // namespace
}  // namespace vela
