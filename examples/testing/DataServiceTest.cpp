// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "DataService.h"

#include <velatesting/Matchers.h>
#include <velatesting/ModemTest.h>

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using velasim::Fault;
using velatesting::HasApn;
using velatesting::IsPersistent;

class DataServiceTest : public velatesting::ModemTest {
  protected:
    DataService service;
};

TEST_F(DataServiceTest, MakesAProfileForAsLongAsItIsNeeded) {
    EXPECT_TRUE(service.start("internet"));
    EXPECT_THAT(profiles(), ElementsAre(AllOf(HasApn("internet"), Not(IsPersistent()))));
    service.stop();
    EXPECT_THAT(profiles(), IsEmpty());
    EXPECT_TRUE(agrees());
}

TEST_F(DataServiceTest, UsesAProfileThatTheModemHas) {
    store({{"apn_name", "internet"}, {"pdp_type", 3U}});
    settle();
    EXPECT_TRUE(service.start("internet"));
    EXPECT_EQ(requests(RLINK_WDS_CREATE_PROFILE_REQ_V01), 0U);
    service.stop();
    EXPECT_THAT(profiles(), Contains(HasApn("internet"))) << "it is somebody else's";
}

TEST_F(DataServiceTest, FailsWhenTheModemRefuses) {
    strike(Fault::TableFull, RLINK_WDS_CREATE_PROFILE_REQ_V01);
    EXPECT_FALSE(service.start("internet"));
    EXPECT_TRUE(service.start("internet")) << "the next try may succeed";
}

TEST_F(DataServiceTest, SeesTheProfileGoOnlyWhenTheModemSaysSo) {
    const int index = store({{"apn_name", "internet"}, {"pdp_type", 3U}});
    settle();
    ASSERT_TRUE(service.start("internet"));
    hold();
    modem.foreignDelete(0, velasim::Technology::ThreeGpp, index);
    EXPECT_EQ(service.apn(), "internet") << "nobody has told the library";
    EXPECT_TRUE(deliver());
    EXPECT_EQ(service.apn(), "");
    letGo();
}

TEST_F(DataServiceTest, ARestartTakesTemporaryProfiles) {
    ASSERT_TRUE(service.start("internet"));
    settle();  // else the restart may swallow what the modem has to say of the new profile
    modem.restart();
    settle();
    reload();  // before the key is dropped: its number may be another's by then
    EXPECT_EQ(service.apn(), "");
    EXPECT_TRUE(agrees());
}

}  // namespace
