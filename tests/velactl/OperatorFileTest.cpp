// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "operators/OperatorFile.h"

#include "ToolRun.h"
#include "profiles/Text.h"

namespace velactl {
namespace {

std::vector<OperatorEntry> entriesOf(const OperatorFile& file) {
    std::vector<OperatorEntry> entries;
    file.forEach([&](const Operator& each) {
        entries.insert(entries.end(), each.entries.begin(), each.entries.end());
    });
    file.forEachStray([&](const OperatorEntry& each) { entries.push_back(each); });
    return entries;
}

OperatorEntry entryOf(const std::string& attributes) {
    return entriesOf(OperatorFile::parse("<apns><apn " + attributes + "/></apns>", "test")).at(0);
}

/** What an entry of a proper operator becomes, for MMS unless it says otherwise: the profile's
 * dump, with ~ for what an entry without further attributes has, and what refusal and notes say. */
TEST(OperatorFile, EntriesBecomeProfilesAndNotes) {
    struct Case {
        std::string attributes;
        const char* dump;
        const char* remarks;
    };
    const std::string usual = "ApnName=a,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,";
    const char* const kAny = "~ApnTypesMask=DEFAULT|MMS|SUPL|DUN|HIPRI|FOTA|IMS|CBS|,";
    const char* const kMms = "~ApnTypesMask=MMS|,";
    const Case cases[] = {
        {R"(type="mms")", kMms, ""},
        {R"(type=" MMS , Xcap,mms")", "~ApnTypesMask=MMS|XCAP|,", ""},
        {R"(type="default")", "~ApnTypesMask=DEFAULT|HIPRI|,", ""},
        {R"(type="*")", kAny, ""},
        {R"(type="")", kAny, ""},
        {R"(type="emergency,ia")", "~ApnTypesMask=IA|EMERGENCY|,IsEmergencySupported=true,", ""},
        {R"(type="mms,rcs,foo")", kMms,
         "type rcs left out: a profile has no bit for it; unknown type \"foo\" left out"},
        {R"(type="vsim")", nullptr, "none of its types can be expressed: vsim"},
        // addresses
        {R"(protocol="ipv4v6" roaming_protocol="IPV6")",
         "ApnName=a,AuthType=NONE,HomeIPType=V4V6,RoamIPType=V6,ApnTypesMask=MMS|,", ""},
        {R"(protocol="PPP")", nullptr, "protocol \"PPP\" is not IP, IPV6 or IPV4V6"},
        {R"(roaming_protocol="NON-IP")", "ApnName=a,AuthType=NONE,HomeIPType=V4,ApnTypesMask=MMS|,",
         "roaming_protocol \"NON-IP\" is not IP, IPV6 or"},
        // names
        {R"(apn="a ")", kMms, "spaces around"},
        {R"(apn="")", "ApnName=,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,ApnTypesMask=MMS|,",
         "the network decides"},
        {R"(apn="#7")", "ApnName=#7,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,ApnTypesMask=MMS|,",
         "unusual APN name \"#7\""},
        // credentials
        {R"(user="u" password="p")",
         "ApnName=a,UserName=u,Password=p,AuthType=PAP_CHAP,HomeIPType=V4,RoamIPType=V4,"
         "ApnTypesMask=MMS|,",
         ""},
        {R"(user="" authtype="2")",
         "ApnName=a,AuthType=CHAP,HomeIPType=V4,RoamIPType=V4,ApnTypesMask=MMS|,", ""},
        {R"(user="u" authtype="0")",
         "ApnName=a,UserName=u,AuthType=NONE,HomeIPType=V4,RoamIPType=V4,ApnTypesMask=MMS|,", ""},
        {R"(authtype="4")", kMms, "authtype \"4\" is not -1, 0, 1, 2 or 3"},
        // classes
        {R"(modem_cognitive="true" profile_id="2")", "~ApnTypesMask=MMS|,ApnClass=IMS,", ""},
        {R"(modem_cognitive="true")", "~ApnTypesMask=MMS|,ApnClass=INET,", ""},
        {R"(modem_cognitive="yes" profile_id="2")", kMms,
         "modem_cognitive \"yes\" is not true or false"},
        {R"(modem_cognitive="true" profile_id="1")", kMms, "profile_id \"1\" is not 0, 2, 3 or 4"},
        // numbers and flags
        {R"(max_conns="65535" max_conns_time="0" wait_time="-1")",
         "~ApnTypesMask=MMS|,MaxPdnsConnPerBlock=65535,MaxPdnConnTimer=0,",
         "wait_time \"-1\" is not a number from 0 to 65535"},
        {R"(max_conns="99999999999999999999" wait_time="3s")", kMms, "wait_time \"3s\" is no"},
        {R"(skip_464xlat="1" carrier_enabled="false")",
         "~ApnTypesMask=MMS|,IsClatEnabled=false,IsApnDisabled=true,", "disabled by"},
        {R"(skip_464xlat="0")", "~ApnTypesMask=MMS|,IsClatEnabled=true,", ""},
        // what else stands there
        {R"(APN="c")", kMms, "unknown attribute APN left out"},
        {R"(mvno_match_data="x")", kMms, "mvno_match_data without mvno_type"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.attributes);
        std::string attributes = R"(mcc="001" mnc="01" )" + each.attributes;
        for (const char* missing : {R"( apn="a")", R"( type="mms")"}) {
            const std::string name(missing, 5);
            attributes += attributes.find(name) == std::string::npos ? missing : "";
        }
        const OperatorEntry entry = entryOf(attributes);
        const std::string remarks = entry.refusal + join(entry.notes, "; ");
        EXPECT_THAT(remarks, HasSubstr(each.remarks));
        EXPECT_EQ(remarks.empty(), each.remarks[0] == '\0') << remarks;
        EXPECT_EQ(entry.isUsable(), each.dump != nullptr);
        if (each.dump != nullptr) {
            const std::string dump = each.dump;
            EXPECT_EQ(entry.profile(true, true).dump(),
                      dump[0] == '~' ? usual + dump.substr(1) : dump);
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
    const std::string bomb = "<!DOCTYPE apns [<!ENTITY a 'aaa'><!ENTITY b '&a;&a;&a;'>]>\n";
    std::string names;
    for (int i = 0; i < 1001; ++i) {
        names += "<n" + std::to_string(i) + "/>";
    }
    const std::pair<std::string, const char*> cases[] = {
        {"<apns>\n  <apn mcc='1'\n</apns>", ":3:1: broken XML"},
        {"<apns>\n  <apn mcc='1'", ":2:3: broken XML: unclosed token"},
        {"<apns>\n  <apn/>\n", ":3:1: broken XML: the file ends inside an element"},
        {"<apns>\n  <apn mcc='1' mcc='2'/></apns>", ":2:16: broken XML: duplicate attribute"},
        {"\n<html/>", ":2:1: the root element is <html>"},
        {"<apns/>\n\n x", ":3:2: broken XML: junk after document element"},
        {"<!-- none -->", "no element; an operator file has <apns>"},
        {"", "no element"},
        // encodings
        {std::string("\xFF\xFE<\0", 4), "broken XML"},
        {"<apns>\n<apn carrier='S\374d'/></apns>",
         ":2:16: a byte that cannot stand there in \"UTF-8\""},
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><apns/>",
         "declares the encoding \"ISO-8859-1\", but begins with the mark of UTF-8"},
        {"<?xml version='1.0' encoding='US-ASCII'?>\n<apns carrier='\xFC'/>",
         ":2:16: a byte that cannot stand there in \"US-ASCII\""},
        {"<?xml version='1.0' encoding='windows-1252'?><apns/>",
         "encoding \"windows-1252\" is not known"},
        {"<?xml version='1.0' encoding='UTF-16'?><apns/>", "declares the encoding \"UTF-16\", but"},
        // what would take memory without end
        {bomb + "<apns>&b;</apns>", ":1:16: a document type is not read"},
        {"<apns>\n&b;</apns>", ":2:1: broken XML: undefined entity"},
        {"<apns>" + join(Names(200, "<a>"), ""), "nested more than 100 deep"},
        {"<apns>" + names, "more than 1000 different names"},
        {"<apns><!--" + std::string(2000000, 'x'), "more than 1 MiB"},
    };
    for (const auto& [text, error] : cases) {
        EXPECT_THAT(complaintOf([&, &text = text] { OperatorFile::parse(text, "test.xml"); }),
                    AllOf(HasSubstr("test.xml:"), HasSubstr(error)));
    }
}

TEST(OperatorFile, WhatIsReadIsUtf8WhateverTheFileIsWrittenIn) {
    const std::string latin =
        "<?xml version='1.0' encoding='ISO-8859-1'?>"
        "<apns><apn mcc='001' mnc='01' carrier='S\374d'/></apns>";
    const std::string utf8 =
        "\xEF\xBB\xBF<apns><apn mcc='001' mnc='01' carrier='S\303\274d'/></apns>";
    const std::string content = latin.substr(latin.find("<apns>"));
    std::string big("\xFE\xFF");
    std::string little("\xFF\xFE");
    for (const char letter : content) {
        big += {'\0', letter};
    }
    for (const char letter : "<?xml version='1.0' encoding='UTF-16'?>" + content) {
        little += {letter, '\0'};
    }
    for (const std::string& text : {latin, utf8, big, little}) {
        const auto entries = entriesOf(OperatorFile::parse(text, "test"));
        ASSERT_EQ(entries.size(), 1U);
        EXPECT_EQ(entries[0].carrier, "S\303\274d");
    }
}

TEST(OperatorFile, KeepsTheFilesOrderAndLines) {
    const OperatorFile file = OperatorFile::parse(R"(<apns>
        <apn mcc="001" mnc="02" apn="one"/> stray words <apx/>
        <apn mcc="001" mnc="01" apn="two" mvno_type="SPN" mvno_match_data="Zwei"/>
        <apn mcc="001" mnc="02" apn="three"><apn/>more</apn>
        <apn mcc="" mnc="02" apn="four"/><apx/><apx/>
        <apx><apn/></apx><apx/><apx/><apx/>
        <apn mcc="001" mnc="01" apn="five" mvno_type="spn" mvno_match_data="zWEI"/></apns>)",
                                                  "test");
    std::vector<std::string> found;
    file.forEach([&](const Operator& candidate) {
        found.push_back(candidate.name());
        for (const OperatorEntry& entry : candidate.entries) {
            found.push_back(std::to_string(entry.line) + entry.apnName());
        }
    });
    EXPECT_THAT(found, testing::ElementsAre("001/02", "2one", "4three", "001/01 spn:Zwei", "3two",
                                            "7five"));
    EXPECT_EQ(file.entryCount(), 5U);
    EXPECT_EQ(file.operatorCount(), 2U);
    EXPECT_THAT(file.oddities(),
                testing::ElementsAre("lines 2, 4: text between the elements left out",
                                     "lines 2, 5, 6: element <apx> left out",
                                     "lines 4, 6: element <apn> inside another left out"));
    EXPECT_EQ(file.find({"001", "01"}, "SPN:zwei").entries.size(), 2U);
}

/** More than is kept in memory, and operators whose entries lie far apart. */
TEST(OperatorFile, EntriesOfALargeFileAreFoundAgain) {
    constexpr unsigned kOperators = 400;
    constexpr unsigned kRounds = 100;
    std::string text = "<apns>\n";
    for (unsigned i = 0; i < kOperators * kRounds; ++i) {
        text += "<apn mcc='" + std::to_string(100 + i % kOperators) + "' mnc='01' apn='" +
                std::to_string(i) + "' mmsc='" + std::string(100, 'x') + "'/>\n";
    }
    const OperatorFile file = OperatorFile::parse(text + "</apns>", "test");
    unsigned number = 0;
    file.forEach([&](const Operator& each) {
        EXPECT_EQ(each.plmn.mcc, std::to_string(100 + number));
        ASSERT_EQ(each.entries.size(), kRounds);
        for (unsigned round = 0; round < kRounds; ++round) {
            const unsigned i = round * kOperators + number;
            ASSERT_EQ(each.entries[round].apnName(), std::to_string(i));
            ASSERT_EQ(each.entries[round].line, i + 2U);
        }
        ++number;
    });
    EXPECT_EQ(number, kOperators);
}

}  // namespace
}  // namespace velactl
