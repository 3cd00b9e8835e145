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
#include "Modem3gpp2Profile.h"
#include "Modem3gppProfile.h"
#include "TextTables.h"

namespace vela {
namespace {

/** Of a key, a listener only asks whether it lives. */
std::shared_ptr<IProfileKey> makeKey() {
    return {static_cast<IProfileKey*>(nullptr), [](auto*) {}};
}

TEST(ModemProfileTest, CallsListenersOfLiveKeysInOrder) {
    LogCapture log;
    std::string calls;
    auto first = makeKey();
    auto gone = makeKey();
    auto dropped = makeKey();
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
    auto kept = makeKey();
    auto gone = makeKey();
    auto owned = makeKey();
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

/** A field, and the values that the modem can hold: `count` numbers, or texts of such a length. */
struct Field {
    const char* name;
    bool only3gpp;
    int count;
    std::optional<int> first;  // of the numbers

    std::string withValue(int variant) const {
        const int offset = variant % count;
        return name +
               ("=" + (first ? std::to_string(*first + offset)
                             : "T" + std::string(static_cast<std::size_t>(offset), 'X'))) +
               " ";
    }
};

const Field kFields[] = {
    {"apn", false, 160, {}},   {"user", false, 127, {}},  {"pw", false, 127, {}},
    {"auth", false, 4, 0},     {"home", false, 3, 1},     {"mask", false, 4096, 0},
    {"class", false, 4, 1},    {"clat", false, 2, 0},     {"roam", true, 3, 1},
    {"block", true, 65536, 0}, {"timer", true, 65536, 0}, {"wait", true, 65536, 0},
    {"disabled", true, 2, 0},  {"emergency", true, 2, 0}};

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
        std::string line;
        for (const Field& field : kFields) {
            if (random() % 2 != 0 && (is3gpp() || !field.only3gpp)) {
                line += field.withValue(static_cast<int>(random() % 0x10000));
            }
        }
        return paramsOf(line);
    }

    std::mt19937 random{1};
};

INSTANTIATE_TEST_SUITE_P(Tech, BothTechnologiesTest,
                         testing::Values(TechType::TECH_3GPP, TechType::TECH_3GPP2));

TEST_P(BothTechnologiesTest, MatchesByWhatItHas) {
    for (const Field& field : kFields) {
        const FilterProfileParams filter = filterOf(field.withValue(0));
        const bool canHave = is3gpp() || !field.only3gpp;
        EXPECT_EQ(make(GetParam(), filter)->match(filter), canHave) << field.name;
        EXPECT_FALSE(make(GetParam(), ProfileParams())->match(filter)) << field.name;
    }
}

TEST_P(BothTechnologiesTest, MatchesNamesAndMasksAsTheCriteriaSay) {
    const ProfileParams params = paramsOf("user=bob apn=InterNet" + std::string(192, 'X'));
    const auto profile = make(GetParam(), params);
    const auto other = make(GetParam(), ProfileParams());
    other->setApnName(params.getApnName());  // neither cut nor lowered
    profile->apply(other);
    profile->setApnTypesMask(1 | 2 | 4 | std::uint64_t{1} << 40U);
    const auto matches = [&](const std::string& line) { return profile->match(filterOf(line)); };
    EXPECT_TRUE(matches("apn=INTERNET" + std::string(142, 'x') + "y"));
    for (const char* const line :
         {"criteria=4 apn=RNet", "criteria=4 apn=", "criteria=8 mask=4162", "criteria=8 mask=0"}) {
        EXPECT_TRUE(matches(line)) << line;
    }
    for (const char* const line :
         {"criteria=59 apn=internet", "criteria=59 apn=", "criteria=4 apn=internets",
          "criteria=63 user=Bob", "criteria=8 mask=6",
          "criteria=55 mask=67"}) {  // the modem knows one more bit
        EXPECT_FALSE(matches(line)) << line;
    }
    EXPECT_FALSE(profile->diff(ModifyProfileParams(paramsOf("mask=67"))));
    profile->setApnTypesMask(4);
    EXPECT_TRUE(matches("criteria=55 mask=4098"));
}

// Rows: the filter's type; columns: the profile's; both UNKNOWN, V4, V6, V4V6.
TEST(ModemProfileTest, MatchesIPTypesAsTheCriteriaSay) {
    const struct {
        unsigned int home;
        unsigned int roam;
        std::string_view matches;
    } table[] = {{0, 0, "1000010000100001"},
                 {1, 2, "1111010100110001"},
                 {16, 32, "1000110010101111"},
                 {17, 34, "1111110110111111"}};
    for (const auto& row : table) {
        for (std::size_t i = 0; i < row.matches.size(); ++i) {
            const auto actual = static_cast<IPType>(i % 4);
            const std::string wanted = std::to_string(i / 4) + " criteria=";
            // Every criterion of something else is on, and has no say here.
            const auto home = filterOf("home=" + wanted + std::to_string(46U | row.home));
            const auto roam = filterOf("roam=" + wanted + std::to_string(29U | row.roam));
            Modem3gppProfile common{ProfileParams()};
            common.setCommonIPType(actual);
            Modem3gppProfile different{ProfileParams()};
            different.setCommonIPType(actual == IPType::UNKNOWN ? actual : IPType::V4V6);
            different.setOverrideHomeIPType(actual);
            different.setLteRoamIPType(actual);
            different.setUmtsRoamIPType(actual);
            Modem3gpp2Profile other{ProfileParams()};
            other.setCommonIPType(actual);
            const bool expected = row.matches[i] == '1';
            for (const Modem3gppProfile* profile : {&common, &different}) {
                EXPECT_EQ(profile->match(home), expected) << home.dump() << profile->dump();
                EXPECT_EQ(profile->match(roam), expected) << roam.dump() << profile->dump();
            }
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
