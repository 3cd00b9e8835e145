// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What both technologies have in common.
#include "ModemProfile.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "DeathTests.h"
#include "LogCapture.h"
#include "MessageBytes.h"
#include "Modem3gpp2Profile.h"
#include "Modem3gppProfile.h"

namespace vela {
namespace {

class FakeKey : public IProfileKey {
  public:
    int getProfileId() const override { return 0; }
    TechType getTechType() const override { return TechType::TECH_3GPP; }
    void registerExpirationListener(std::function<void()>) override {}
    std::string dump() const override { return {}; }
};

TEST(ModemProfileTest, CallsListenersOfLiveKeysInOrder) {
    LogCapture log;
    std::string calls;
    auto first = std::make_shared<FakeKey>();
    auto gone = std::make_shared<FakeKey>();
    auto dropped = std::make_shared<FakeKey>();
    {
        Modem3gppProfile profile{ProfileParams()};
        profile.registerExpirationListener([&] { calls += '1'; }, first);
        profile.registerExpirationListener([&] { calls += '2'; }, gone);
        profile.registerExpirationListener([&] { calls += '3', dropped.reset(); }, first);
        profile.registerExpirationListener([&] { calls += '4'; }, dropped);
        profile.registerExpirationListener([&, own = first] { calls += '5'; }, first);
        profile.registerExpirationListener([&] { calls += '6'; }, {});
        gone.reset();
    }
    EXPECT_EQ(calls, "135");
    EXPECT_EQ(first.use_count(), 1);
    const LogCapture::Line invoke(LogLevel::Debug, "invoke callback");
    EXPECT_EQ(log.take(), (std::vector<LogCapture::Line>{
                              {LogLevel::Debug, "~ModemProfile()"}, invoke, invoke, invoke}));
}

TEST(ModemProfileTest, ForgettingAListenerMayComeBackToTheList) {
    std::string calls;
    auto kept = std::make_shared<FakeKey>();
    auto gone = std::make_shared<FakeKey>();
    auto owned = std::make_shared<FakeKey>();
    {
        Modem3gppProfile profile{ProfileParams()};
        // Stands for a client's object that registers and releases in its destructor.
        std::shared_ptr<void> meddler(nullptr, [&](void*) {
            profile.clearExpiredListeners();
            profile.registerExpirationListener([&] { calls += 'm'; }, kept);
        });
        profile.registerExpirationListener([meddler, owned] {}, gone);
        profile.registerExpirationListener([] {}, gone);
        profile.registerExpirationListener([&] { calls += 'o'; }, owned);
        profile.registerExpirationListener([&] { calls += 'k'; }, kept);
        meddler.reset();
        owned.reset();
        gone.reset();
        profile.clearExpiredListeners();
        EXPECT_EQ(calls, "");
    }
    EXPECT_EQ(calls, "km");
}

TEST(RefCountTest, GoesBelowZeroButNeverWraps) {
    Modem3gppProfile profile{ProfileParams()};
    profile.decRefCount();
    EXPECT_EQ(profile.getRefCount(), -1);
    runDeathTestsAfresh();
    RefCount highest(INT_MAX - 1);
    highest.increment();
    EXPECT_DEATH(highest.increment(), "");
    RefCount lowest(INT_MIN);
    EXPECT_DEATH(lowest.decrement(), "");
}

/** A field of client parameters with a value of variant 0, 1, 2, ... that the modem can hold. */
struct Field {
    bool only3gpp;
    void (*set)(ProfileParams&, int variant);
};

std::string text(int variant, int longest) {
    return "T" + std::to_string(variant) +
           std::string(static_cast<std::size_t>(variant % longest), 'X');
}

const Field kFields[] = {
    {false, [](auto& params, int v) { params.setApnName(text(v, 160)); }},
    {false, [](auto& params, int v) { params.setUserName(text(v, 120)); }},
    {false, [](auto& params, int v) { params.setPassword(text(v, 120)); }},
    {false, [](auto& params, int v) { params.setAuthType(static_cast<AuthType>(v % 4)); }},
    {false, [](auto& params, int v) { params.setHomeIPType(static_cast<IPType>(1 + v % 3)); }},
    {false, [](auto& params, int v) { params.setApnTypesMask(static_cast<unsigned>(v % 4096)); }},
    {false, [](auto& params, int v) { params.setApnClass(static_cast<ApnClass>(1 + v % 4)); }},
    {false, [](auto& params, int v) { params.setIsClatEnabled(v % 2 != 0); }},
    {true, [](auto& params, int v) { params.setRoamIPType(static_cast<IPType>(1 + v % 3)); }},
    {true, [](auto& params, int v) { params.setMaxPdnsConnPerBlock(v % 65536); }},
    {true, [](auto& params, int v) { params.setMaxPdnConnTimer(v % 65536); }},
    {true, [](auto& params, int v) { params.setPdnReqWaitInterval(v % 65536); }},
    {true, [](auto& params, int v) { params.setIsApnDisabled(v % 2 != 0); }},
    {true, [](auto& params, int v) { params.setIsEmergencySupported(v % 2 != 0); }},
};

std::shared_ptr<ModemProfile> make(TechType techType, const ProfileParams& params) {
    if (techType == TechType::TECH_3GPP) {
        return std::make_shared<Modem3gppProfile>(params);
    }
    return std::make_shared<Modem3gpp2Profile>(params);
}

class BothTechnologiesTest : public testing::TestWithParam<TechType> {
  protected:
    bool is3gpp() const { return GetParam() == TechType::TECH_3GPP; }

    /** About half of the fields, with random values. */
    ProfileParams randomParams() {
        ProfileParams params;
        for (const Field& field : kFields) {
            if (random() % 2 != 0 && (is3gpp() || !field.only3gpp)) {
                field.set(params, static_cast<int>(random() % 0x10000));
            }
        }
        return params;
    }

    std::mt19937 random{1};
};

INSTANTIATE_TEST_SUITE_P(Tech, BothTechnologiesTest,
                         testing::Values(TechType::TECH_3GPP, TechType::TECH_3GPP2));

TEST_P(BothTechnologiesTest, MatchesEachFieldByItsValue) {
    for (const Field& field : kFields) {
        ProfileParams params;
        field.set(params, 0);
        ProfileParams others;
        field.set(others, 1);
        const FilterProfileParams filter(params);
        EXPECT_EQ(make(GetParam(), params)->match(filter), is3gpp() || !field.only3gpp)
            << filter.dump();
        EXPECT_FALSE(make(GetParam(), others)->match(filter)) << filter.dump();
        EXPECT_FALSE(make(GetParam(), ProfileParams())->match(filter)) << filter.dump();
    }
    FilterProfileParams filter;
    filter.setFilterByTechType(GetParam());
    filter.setFilterByProfileId(-1);
    EXPECT_TRUE(make(GetParam(), ProfileParams())->match(filter));
    filter.setFilterByProfileId(0);
    EXPECT_FALSE(make(GetParam(), ProfileParams())->match(filter));
    filter.setFilterByProfileId(-1);
    filter.setFilterByTechType(static_cast<TechType>(2));
    EXPECT_FALSE(make(GetParam(), ProfileParams())->match(filter));
}

TEST_P(BothTechnologiesTest, MatchesNamesAndMasksAsTheCriteriaSay) {
    ProfileParams params;
    params.setApnName("InterNet" + std::string(192, 'X'));
    params.setUserName("bob");
    const auto profile = make(GetParam(), params);
    const auto other = make(GetParam(), ProfileParams());
    other->setApnName(params.getApnName());  // neither cut nor lowered
    profile->apply(other);
    profile->setApnTypesMask(1 | 2 | 4 | std::uint64_t{1} << 40U);
    const auto matches = [&](unsigned int criteria, auto setter, auto value) {
        FilterProfileParams filter;
        filter.addFilterMatchCriteria(criteria);
        (filter.*setter)(value);
        return profile->match(filter);
    };
    const auto name = &ProfileParams::setApnName;
    EXPECT_TRUE(matches(0, name, "INTERNET" + std::string(142, 'x') + "y"));
    EXPECT_FALSE(matches(63 & ~4U, name, "internet"));
    EXPECT_FALSE(matches(63 & ~4U, name, ""));
    EXPECT_TRUE(matches(4, name, "RNet"));
    EXPECT_TRUE(matches(4, name, ""));
    EXPECT_FALSE(matches(4, name, "internets"));
    EXPECT_FALSE(matches(63, &ProfileParams::setUserName, "Bob"));
    const auto mask = &ProfileParams::setApnTypesMask;
    EXPECT_FALSE(matches(63 & ~8U, mask, 1U | 2U | 64U));  // the bit that only the modem knows
    EXPECT_TRUE(matches(8, mask, 2U | 64U | 4096U));
    EXPECT_TRUE(matches(8, mask, 0U));
    EXPECT_FALSE(matches(8, mask, 2U | 4U));
    ModifyProfileParams modify;
    modify.setApnTypesMask(1 | 2 | 64);
    EXPECT_FALSE(profile->diff(modify));
    profile->setApnTypesMask(4);
    EXPECT_TRUE(matches(63 & ~8U, mask, 2U | 4096U));
}

// Rows: the filter's type; columns: the profile's; both UNKNOWN, V4, V6, V4V6.
TEST(ModemProfileTest, MatchesIPTypesAsTheCriteriaSay) {
    const struct {
        unsigned int home;
        unsigned int roam;
        std::string_view matches;
    } table[] = {{0, 0, "1000 0100 0010 0001"},
                 {1, 2, "1111 0101 0011 0001"},
                 {16, 32, "1000 1100 1010 1111"},
                 {17, 34, "1111 1101 1011 1111"}};
    for (const auto& row : table) {
        // Every other criterion is on, and has no say here.
        FilterProfileParams home;
        home.addFilterMatchCriteria(46U | row.home);
        FilterProfileParams roam;
        roam.addFilterMatchCriteria(29U | row.roam);
        for (std::size_t i = 0; i < row.matches.size(); i += i % 5 == 3 ? 2U : 1U) {
            const auto actual = static_cast<IPType>(i % 5);
            home.setHomeIPType(static_cast<IPType>(i / 5));
            roam.setRoamIPType(static_cast<IPType>(i / 5));
            const bool expected = row.matches[i] == '1';
            Modem3gppProfile profile{ProfileParams()};
            profile.setCommonIPType(actual);
            EXPECT_EQ(profile.match(home), expected) << home.dump() << profile.dump();
            EXPECT_EQ(profile.match(roam), expected) << roam.dump() << profile.dump();
            profile.setCommonIPType(actual == IPType::UNKNOWN ? actual : IPType::V4V6);
            profile.setOverrideHomeIPType(actual);
            profile.setLteRoamIPType(actual);
            profile.setUmtsRoamIPType(actual);
            EXPECT_EQ(profile.match(home), expected) << home.dump() << profile.dump();
            EXPECT_EQ(profile.match(roam), expected) << roam.dump() << profile.dump();
            Modem3gpp2Profile other{ProfileParams()};
            other.setCommonIPType(actual);
            EXPECT_EQ(other.match(home), expected) << home.dump() << other.dump();
        }
    }
}

TEST_P(BothTechnologiesTest, ReadsBackWhatItWrites) {
    for (int round = 0; round < 300; ++round) {
        const auto profile = make(GetParam(), randomParams());
        profile->setProfileId(round);
        profile->setIsPersistent(round % 2 != 0);
        auto create = profile->constructAddRequest();
        wds_get_profile_settings_resp_msg_v01 response{};
        response.settings = create.settings;
        std::shared_ptr<ModemProfile> copy;
        if (is3gpp()) {
            copy = std::make_shared<Modem3gppProfile>(round, response);
        } else {
            copy = std::make_shared<Modem3gpp2Profile>(round, response);
            ASSERT_FALSE(copy->hasPassword());
            if (profile->hasPassword()) {
                copy->setPassword(profile->getPassword());
            }
        }
        ASSERT_EQ(copy->dump(), profile->dump());
        ASSERT_EQ(copy->getIsPersistent(), round % 2 != 0);

        // Create and modify carry the same settings, apart from the persistence.
        const auto modify = profile->constructModifyRequest();
        create.settings.persistence_flag_valid = create.settings.persistence_flag = 0;
        ASSERT_TRUE(bytesOf(create.settings) == bytesOf(modify.settings));
    }
}

TEST_P(BothTechnologiesTest, ApplyingADifferenceLeavesNoneAndMatches) {
    for (int round = 0; round < 500; ++round) {
        const auto profile = make(GetParam(), randomParams());
        const std::string before = profile->dump();
        ASSERT_FALSE(profile->diff(ModifyProfileParams(profile->get())));
        const ProfileParams wanted = randomParams();
        const auto difference = profile->diff(ModifyProfileParams(wanted));
        ASSERT_EQ(profile->dump(), before);
        profile->apply(difference);
        ASSERT_FALSE(profile->diff(ModifyProfileParams(wanted))) << before << wanted.dump();
        ASSERT_TRUE(profile->match(FilterProfileParams(wanted))) << before << wanted.dump();
    }
}

}  // namespace
}  // namespace vela
