// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/ProfileParams.h"

#include <gtest/gtest.h>

#include <locale>
#include <sstream>

#include "TextTables.h"
#include "vela/Responses.h"

namespace vela {
namespace {

FilterProfileParams everything() {
    return filterOf(
        "ia=0 vela=1 emergency=0 disabled=1 wait=-3 timer=1234567 block=1 clat=1 class=3 mask=65 "
        "roam=2 home=3 auth=3 pw=p%s user=Bob apn=");
}

constexpr const char* kEverything =
    "ApnName=,UserName=Bob,Password=p%s,AuthType=PAP_CHAP,HomeIPType=V4V6,RoamIPType=V6,"
    "ApnTypesMask=DEFAULT|IMS|,ApnClass=INET,IsClatEnabled=true,MaxPdnsConnPerBlock=1,"
    "MaxPdnConnTimer=1234567,PdnReqWaitInterval=-3,IsApnDisabled=true,IsEmergencySupported=false,"
    "IsVelaProfile=true,IsIAProfile=false,";

TEST(ProfileParamsTest, DumpsPresentFieldsInOrderUnderAnyLocale) {
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
        std::string do_truename() const override { return "wahr"; }
    };
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    EXPECT_EQ(ProfileParams(everything()).dump(), kEverything);
    std::locale::global(before);
    EXPECT_EQ(ProfileParams().dump(), "");
}

template <typename Enum>
std::string namesFrom(int first, int last) {
    std::ostringstream names;
    for (int value = first; value <= last; ++value) {
        names << static_cast<Enum>(value) << ' ';
    }
    return names.str();
}

TEST(ProfileTypesTest, PrintsNamesAndOtherNumbers) {
    EXPECT_EQ(namesFrom<TechType>(-1, 2), "-1 3GPP 3GPP2 2 ");
    EXPECT_EQ(namesFrom<IPType>(-1, 4), "-1 UNKNOWN V4 V6 V4V6 4 ");
    EXPECT_EQ(namesFrom<AuthType>(-1, 4), "-1 NONE PAP CHAP PAP_CHAP 4 ");
    EXPECT_EQ(namesFrom<ReqRespType>(-1, 8),
              "-1 Add Modify Delete Filter Match Get Callback Refresh 8 ");
    EXPECT_EQ(namesFrom<Status>(-2, 2), "-2 -1 Success Failure 2 ");
    EXPECT_EQ(namesFrom<ApnClass>(0, 5), "0 IMS ADMN INET APP 5 ");
    EXPECT_EQ(namesFrom<ApnClass>(-2147483647 - 1, -2147483647), "-2147483648 -2147483647 ");
}

TEST(ProfileParamsTest, DumpsApnTypes) {
    const std::pair<unsigned int, std::string> table[] = {
        {0, "NONE"},
        {0xFFF, "DEFAULT|MMS|SUPL|DUN|HIPRI|FOTA|IMS|CBS|IA|EMERGENCY|MCX|XCAP|"},
        {4096, ""},
        {4096 | 2048, "XCAP|"}};
    for (const auto& [mask, expected] : table) {
        EXPECT_EQ(paramsOf("mask=" + std::to_string(mask)).dump(),
                  "ApnTypesMask=" + expected + ",");
    }
}

TEST(ProfileParamsTest, AddTellsTechnologyPersistenceAndInitialAttach) {
    EXPECT_EQ(AddProfileParams(false, TechType::TECH_3GPP, false).dump(),
              "3GPP persist=false: IsIAProfile=false,");
    const AddProfileParams params(everything(), true, static_cast<TechType>(2), true);
    EXPECT_EQ(params.dump().rfind("2 persist=true: ApnName=,", 0), 0U);
    EXPECT_TRUE(params.getIsIAProfile());
    EXPECT_TRUE(params.getIsVelaProfile());
    EXPECT_FALSE(AddProfileParams(params, true, TechType::TECH_3GPP, false).getIsIAProfile());
}

TEST(ProfileParamsTest, FilterDumpsCriteriaAndSelectorsFirst) {
    FilterProfileParams filter;
    EXPECT_EQ(filter.dump(), "None: ");
    filter.addFilterMatchCriteria(63);
    EXPECT_EQ(filter.dump(),
              "HomeIPSubset|RoamIPSubset|ApnNameSubset|ApnTypeBitmaskSubset|HomeIPSuperset|"
              "RoamIPSuperset|: ");
    filter.removeFilterMatchCriteria(59);
    filter.addFilterMatchCriteria(4);
    EXPECT_EQ(filter.dump(), "ApnNameSubset|: ");
    filter = filterOf("criteria=4 id=3 tech=0 apn=ims");
    EXPECT_EQ(filter.dump(), "ApnNameSubset|: tech=3GPP,id=3,ApnName=ims,");
    EXPECT_EQ(FilterProfileParams(ProfileParams(filter)).dump(), "None: ApnName=ims,");
    EXPECT_EQ(FilterProfileParams(ProfileParams(everything())).dump(),
              "None: " + std::string(kEverything));
}

TEST(ProfileParamsTest, AssignmentTakesAbsenceToo) {
    ProfileParams params = everything();
    const std::string longName(200, 'A');
    params.setApnName(longName);
    EXPECT_EQ(params.getApnName(), longName) << "as it was given";
    params = ProfileParams();
    EXPECT_EQ(params.dump(), "");
    EXPECT_EQ(params.getMaxPdnConnTimer(), 0);
    EXPECT_FALSE(params.getIsVelaProfile());
}

}  // namespace
}  // namespace vela
