// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "support/ClientFixture.h"

namespace vela {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using velasim::Fault;

constexpr const char* kFollowed = "ProfileCache: updating cache due to indication!";
constexpr const char* kMissing = "ProfileCache: token is not present or expired";
constexpr const char* kIgnoring = "ProfileCache: ignoring non-persistent or non-vela created";

class CacheTest : public ClientFixture {
  protected:
    CacheTest() { start(); }

    std::function<void()> counting() {
        return [this] { ++expirations; };
    }

    int expirations = 0;
};

TEST_F(CacheTest, ForeignChangesAreFollowed) {
    const Key key = add("apn=Net user=bob");
    settle();
    key->registerExpirationListener(counting());
    for (const std::string user : {"ann", "joe"}) {
        change(1, "user_name=" + user);
        settle();
        EXPECT_THAT(read(key), HasSubstr("ApnName=net,UserName=" + user));
    }
    EXPECT_EQ(expirations, 1) << "the listener went with the object it was registered for";
    modem.foreignDelete(0, Technology::ThreeGpp, 1);
    modem.foreignCreate(0, Technology::ThreeGpp2, settingsOf("apn_string_3gpp2=cdma"));
    EXPECT_TRUE(agrees());
}

TEST_F(CacheTest, RefusedWrites) {
    const Key key = add("apn=net user=bob");
    settle();
    for (const Fault reason : {Fault::Refuse, Fault::Timeout, Fault::SendFailure}) {
        fault(reason, velasim::kAnyMessage, 1, 3);
        EXPECT_TRUE(modify("user=eve", key)) << "deliberately";
        EXPECT_FALSE(manager.deleteProfile(key));
        EXPECT_EQ(add("apn=two"), nullptr);
    }
    EXPECT_EQ(logged("ProfileCache: failed to modify modem profile"), 3U);
    EXPECT_EQ(logged("ProfileCache: Failed to remove profile"), 3U);
    EXPECT_EQ(logged("Unable send RLINK_WDS_CREATE_PROFILE_REQ_V01 message"), 3U);
    EXPECT_TRUE(agrees());

    modem.journal().clear();
    EXPECT_TRUE(modify("user=bob apn=NET", key)) << "changes nothing";
    EXPECT_EQ(add("apn=odd", true, static_cast<TechType>(2)), nullptr);
    EXPECT_EQ(logged("ProfileCache: failed to create profile"), 1U);
    EXPECT_EQ(requests(), 0U);
}

/** Not one of the library's keys. */
class ForeignKey : public IProfileKey {
  public:
    int getProfileId() const override { return 1; }
    TechType getTechType() const override { return TechType::TECH_3GPP; }
    void registerExpirationListener(std::function<void()>) override {}
    std::string dump() const override { return "foreign"; }
};

TEST_F(CacheTest, KeysThatNameNothing) {
    const Key reloaded = add("apn=reloaded");
    const Key deleted = add("apn=deleted");
    const Key also = find("apn=deleted").front();
    EXPECT_TRUE(manager.deleteProfile(deleted)) << "whoever else holds a key";
    reload();
    const std::pair<Key, std::size_t> keysAndMisses[] = {
        {nullptr, 0}, {std::make_shared<ForeignKey>(), 0}, {deleted, 4}, {also, 4}, {reloaded, 4}};
    for (const auto& [key, misses] : keysAndMisses) {
        velasim::DiagLog::instance().clear();
        expectNothingBy(manager, key);
        EXPECT_EQ(logged(kMissing), misses);
    }
    reloaded->registerExpirationListener(counting());
    reload();
    EXPECT_EQ(expirations, 0);
    EXPECT_EQ(profilesInModem(), 1U);
}

TEST_F(CacheTest, ReleasesOfKeys) {
    Keys keys = {add("apn=temp", false), add("apn=temp", false)};
    keys.splice(keys.end(), find(""));
    for (; keys.size() > 2; keys.pop_front()) {
        EXPECT_EQ(profilesInModem(), 2U);
    }
    keys.pop_front();
    EXPECT_EQ(profilesInModem(), 1U);
    keys.clear();
    EXPECT_EQ(profilesInModem(), 0U);
    EXPECT_EQ(logged("Released profile 2"), 1U);
    EXPECT_TRUE(agrees());
    EXPECT_EQ(logged(kFollowed), 0U);
}

TEST_F(CacheTest, ReleasesThatDeleteNothing) {
    // The count stays at 1, so that the next key brings it to 2 and takes it back to 1.
    add("apn=keep");
    EXPECT_EQ(logged(kIgnoring), 1U);
    find("apn=keep").clear();
    EXPECT_EQ(logged(kIgnoring), 1U) << "the count had been lowered";

    modem.foreignCreate(0, Technology::ThreeGpp, settingsOf("apn_name=found persistence_flag=0"));
    settle();
    find("apn=found").clear();
    EXPECT_EQ(logged(kIgnoring), 2U) << "temporary, but not the library's";

    Key changed = add("apn=changed", false);
    settle();
    change(3, "user_name=eve");
    settle();
    changed.reset();
    EXPECT_EQ(logged(kIgnoring), 3U) << "read again, it is not the library's any more";

    Key refused = add("apn=refused", false);
    fault(Fault::Refuse);
    refused.reset();
    find("apn=refused").clear();
    EXPECT_EQ(requests(RLINK_WDS_DELETE_PROFILE_REQ_V01), 1U) << "its count stayed as well";
    EXPECT_TRUE(agrees());
}

TEST_F(CacheTest, AnEntryThatCouldNotBeRead) {
    const Key key = add("apn=net");
    settle();
    key->registerExpirationListener(counting());
    fault(Fault::SendFailure, RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01);
    change(1, "user_name=eve");
    settle();
    EXPECT_EQ(expirations, 1);
    EXPECT_THAT(cached(), ElementsAre("null"));
    EXPECT_THAT(find(""), IsEmpty());
    EXPECT_EQ(logged("ProfileCache: null profile"), 1U);
    EXPECT_EQ(read(key), "none");
    EXPECT_TRUE(modify("user=joe", key));
    EXPECT_TRUE(manager.deleteProfile(key));
    EXPECT_TRUE(agrees());
    EXPECT_EQ(logged(kFollowed), 2U) << "even its own deletion";
}

TEST_F(CacheTest, ARefreshUnderWayBlocksEverything) {
    Key temporary = add("apn=temp", false);
    temporary->registerExpirationListener(counting());
    const Key key = add("apn=net user=bob");
    for (int i = 0; i < 2; ++i) {
        manager.refresh(PDCRefreshStatus::RefreshStarted);
        modem.journal().clear();
        expectNothing(manager, key);
        key->registerExpirationListener(counting());
        temporary.reset();
        EXPECT_EQ(requests(), 0U);
    }
    EXPECT_EQ(logged(kMissing), 0U) << "something reached the cache";
    manager.refresh(static_cast<PDCRefreshStatus>(200));
    EXPECT_EQ(logged("VELA refresh completed"), 1U) << "every other status is an end";
    EXPECT_THAT(find(""), SizeIs(2));
    EXPECT_EQ(expirations, 0);
    EXPECT_EQ(profilesInModem(), 2U);
    EXPECT_TRUE(agrees());
}

TEST_F(CacheTest, AListenerIsForgottenWithItsKey) {
    const Key key = add("apn=net");
    Key other = find("").front();
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> watch = held;
    other->registerExpirationListener([held = std::move(held)] {});
    EXPECT_FALSE(watch.expired());
    other.reset();
    EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace vela
