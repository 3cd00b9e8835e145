// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "OperatorFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Text.h"
#include "ToolError.h"

namespace velactl {
namespace {

using testing::HasSubstr;

OperatorEntry entryOf(const std::string& attributes) {
    const OperatorFile file = OperatorFile::parse("<apns><apn " + attributes + "/></apns>", "test");
    return file.entries().at(0);
}

std::string errorOf(const std::string& text) {
    try {
        OperatorFile::parse(text, "test.xml");
    } catch (const ToolError& error) {
        EXPECT_EQ(error.status(), Exit::Refused);
        return error.what();
    }
    return "";
}

/** What an entry of a proper operator becomes: the profile's dump, with ~ for what most have in
 * common, and what refusal and notes say. */
TEST(OperatorFile, EntriesBecomeProfilesAndNotes) {
    struct Case {
        const char* attributes;
        const char* dump;
        const char* remarks;
    };
    const std::string usual = "HomeIPType=V4,RoamIPType=V4,ApnTypesMask=MMS|,";
    const Case cases[] = {
        // types
        {R"(apn="a" type="mms")", "ApnName=a,AuthType=NONE,~", ""},
        {R"(apn="a" type=" MMS , Xcap,mms")",
         "ApnName=a,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,ApnTypesMask=MMS|XCAP|,", ""},
        {R"(apn="a" type="default")",
         "ApnName=a,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,ApnTypesMask=DEFAULT|HIPRI|,", ""},
        {R"(apn="a" type="*")",
         "ApnName=a,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,"
         "ApnTypesMask=DEFAULT|MMS|SUPL|DUN|HIPRI|FOTA|IMS|CBS|,",
         ""},
        {R"(apn="a")",
         "ApnName=a,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,"
         "ApnTypesMask=DEFAULT|MMS|SUPL|DUN|HIPRI|FOTA|IMS|CBS|,",
         ""},
        {R"(apn="a" type="emergency,ia")",
         "ApnName=a,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,ApnTypesMask=IA|EMERGENCY|,"
         "IsEmergencySupported=true,",
         ""},
        {R"(apn="a" type="mms,rcs,foo")", "ApnName=a,AuthType=NONE,~",
         "type rcs left out: a profile has no bit for it; unknown type \"foo\" left out"},
        {R"(apn="a" type="vsim")", nullptr, "none of its types can be expressed: vsim"},
        // addresses
        {R"(apn="a" type="mms" protocol="ipv4v6" roaming_protocol="IPV6")",
         "ApnName=a,AuthType=NONE,HomeIPType=V4V6,RoamIPType=V6,ApnTypesMask=MMS|,", ""},
        {R"(apn="a" type="mms" protocol="PPP")", nullptr,
         "protocol \"PPP\": a profile knows IP, IPV6 and IPV4V6"},
        {R"(apn="a" type="mms" roaming_protocol="NON-IP")",
         "ApnName=a,AuthType=NONE,HomeIPType=V4,ApnTypesMask=MMS|,",
         "roaming_protocol \"NON-IP\" left out"},
        // names
        {R"(apn="Aa " type="mms")", "ApnName=Aa,AuthType=NONE,~", "spaces around"},
        {R"(apn="" type="mms")", "ApnName=,AuthType=NONE,~", "the network decides"},
        {R"(apn="#777" type="mms")", "ApnName=#777,AuthType=NONE,~", "unusual APN name \"#777\""},
        // credentials
        {R"(apn="a" type="mms" user="u" password="p")",
         "ApnName=a,UserName=u,Password=p,AuthType=PAP_CHAP,~", ""},
        {R"(apn="a" type="mms" user="u" authtype="0")", "ApnName=a,UserName=u,AuthType=NONE,~", ""},
        {R"(apn="a" type="mms" user="" authtype="2")", "ApnName=a,AuthType=CHAP,~", ""},
        {R"(apn="a" type="mms" user="u" authtype="4")", "ApnName=a,UserName=u,AuthType=PAP_CHAP,~",
         "authtype \"4\" left out: not a number from -1 to 3"},
        // classes
        {R"(apn="a" type="mms" modem_cognitive="true" profile_id="2")",
         "ApnName=a,AuthType=NONE,~ApnClass=IMS,", ""},
        {R"(apn="a" type="mms" modem_cognitive="true")", "ApnName=a,AuthType=NONE,~ApnClass=INET,",
         ""},
        {R"(apn="a" type="mms" modem_cognitive="yes" profile_id="2")", "ApnName=a,AuthType=NONE,~",
         "modem_cognitive \"yes\" taken as false"},
        {R"(apn="a" type="mms" modem_cognitive="true" profile_id="1")", "ApnName=a,AuthType=NONE,~",
         "profile_id \"1\" has no APN class"},
        // numbers and flags
        {R"(apn="a" type="mms" max_conns="65535" max_conns_time="0" wait_time="-1")",
         "ApnName=a,AuthType=NONE,~MaxPdnsConnPerBlock=65535,MaxPdnConnTimer=0,",
         "wait_time \"-1\" left out"},
        {R"(apn="a" type="mms" max_conns="99999999999999999999" wait_time="3s")",
         "ApnName=a,AuthType=NONE,~", "max_conns \"99999999999999999999\" left out"},
        {R"(apn="a" type="mms" skip_464xlat="1" carrier_enabled="false")",
         "ApnName=a,AuthType=NONE,~IsClatEnabled=false,IsApnDisabled=true,", "disabled by"},
        {R"(apn="a" type="mms" skip_464xlat="0")", "ApnName=a,AuthType=NONE,~IsClatEnabled=true,",
         ""},
        // what else stands there
        {R"(apn="a" type="mms" apn="b" APN="c")", "ApnName=a,AuthType=NONE,~",
         "attribute apn twice, the first counts; unknown attribute APN left out"},
        {R"(apn="a" type="mms" mvno_match_data="x")", "ApnName=a,AuthType=NONE,~",
         "mvno_match_data without mvno_type"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.attributes);
        const OperatorEntry entry =
            entryOf(std::string(R"(mcc="001" mnc="01" )") + each.attributes);
        std::string remarks = entry.refusal + join(entry.notes, "; ");
        EXPECT_THAT(remarks, HasSubstr(each.remarks));
        EXPECT_EQ(remarks.empty(), each.remarks[0] == '\0') << remarks;
        EXPECT_EQ(entry.isUsable(), each.dump != nullptr);
        if (each.dump != nullptr) {
            std::string dump = each.dump;
            if (const auto place = dump.find('~'); place != std::string::npos) {
                dump.replace(place, 1, usual);
            }
            EXPECT_EQ(entry.profile().dump(), dump);
        }
    }
}

TEST(OperatorFile, WhatAProfileCannotHoldIsRefusedAndWhatItHasNoFieldForIsNamed) {
    const std::string plmn = R"(mcc="001" mnc="01" type="mms" )";
    EXPECT_TRUE(entryOf(plmn + "apn='" + std::string(150, 'a') + "'").isUsable());
    EXPECT_FALSE(entryOf(plmn + "apn='" + std::string(151, 'a') + "'").isUsable());
    EXPECT_FALSE(entryOf(plmn + "apn='a' user='" + std::string(128, 'a') + "'").isUsable());
    EXPECT_THAT(entryOf(plmn + "apn='a' mmsc='x' mtu='1' proxy=''").notSent,
                testing::ElementsAre("mmsc", "mtu"));
    for (const char* wrong :
         {R"(mcc="" mnc="01")", R"(mcc="01" mnc="01")", R"(mnc="01")", R"(mcc="001" mnc="1")",
          R"(mcc="001" mnc="1234")", R"(mcc="0x1" mnc="01")"}) {
        const OperatorEntry entry = entryOf(wrong);
        EXPECT_THAT(entry.refusal, HasSubstr("no operator")) << wrong;
        EXPECT_EQ(entry.mcc + entry.mnc, "");
    }
}

TEST(OperatorFile, ErrorsNameFileLineAndColumn) {
    EXPECT_THAT(errorOf("<apns>\n  <apn mcc='1'\n</apns>"), HasSubstr("test.xml:3:1: broken XML"));
    EXPECT_THAT(errorOf("\n<html/>"), HasSubstr("test.xml:2:2: the root element is <html>"));
    EXPECT_THAT(errorOf("<apns/>\n<apns/>"), HasSubstr("test.xml:2:2: broken XML: a second root"));
    EXPECT_THAT(errorOf("<apns/>\n\n x"), HasSubstr("test.xml:3:2: broken XML: text outside"));
    EXPECT_THAT(errorOf("x<apns/>"), HasSubstr("test.xml:1:1: broken XML: text outside"));
    EXPECT_THAT(errorOf("<!-- none -->"), HasSubstr("broken XML: no element"));
    EXPECT_THAT(errorOf(""), HasSubstr("empty"));
    EXPECT_THAT(errorOf(std::string("\xFF\xFE<\0", 4)), HasSubstr("UTF-8"));
}

TEST(OperatorFile, KeepsTheFilesOrderAndLines) {
    const OperatorFile file = OperatorFile::parse(R"(<apns>
        <apn mcc="001" mnc="02" apn="one"/> stray words <apx/>
        <apn mcc="001" mnc="01" apn="two" mvno_type="SPN" mvno_match_data="Zwei"/>
        <apn mcc="001" mnc="02" apn="three"><apn/></apn>
        <apn mcc="" mnc="02" apn="four"/>
        <apn mcc="001" mnc="01" apn="five" mvno_type="spn" mvno_match_data="zWEI"/></apns>)",
                                                  "test");
    std::vector<std::string> found;
    for (const Operator& candidate : file.operators()) {
        found.push_back(candidate.name());
        for (const OperatorEntry* entry : candidate.entries) {
            found.push_back(std::to_string(entry->line) + entry->params.getApnName());
        }
    }
    EXPECT_THAT(found, testing::ElementsAre("001/02", "2one", "4three", "001/01 spn:Zwei", "3two",
                                            "6five"));
    EXPECT_EQ(file.strays().size(), 1U);
    EXPECT_EQ(file.oddities().size(), 2U);
    EXPECT_EQ(file.entries()[2].notes.back(), "what stands inside <apn> left out");
    EXPECT_EQ(file.find({"001", "01"}, "SPN:zwei").entries.size(), 2U);
}

}  // namespace
}  // namespace velactl
