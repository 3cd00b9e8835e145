// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <future>

#include "support/ClientFixture.h"
#include "vela/Observer.h"

namespace vela {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using velasim::Fault;

using Bytes = std::vector<std::uint8_t>;

using PipelineTest = ClientFixture;

/** The profile-changed indication as the modem encodes it. */
Bytes indicationOf(std::uint8_t type, std::uint8_t index, std::uint8_t event) {
    return {0x10, 9, 0, type, 0, 0, 0, index, event, 0, 0, 0};
}

// ---- expiration callbacks

TEST_F(PipelineTest, CallbacksMayDropKeys) {
    start();
    const Key* doomed = nullptr;
    const std::pair<std::function<void()>, bool> endsAndWhetherTheOtherIsStillKnown[] = {
        {[&] { EXPECT_TRUE(manager.deleteProfile(*doomed)); }, true},
        {[&] { modem.foreignDelete(0, Technology::ThreeGpp, 1); }, true},
        {[&] { change(1, "user_name=eve"); }, true},
        {[&] { reload(); }, false},
        {[&] { start(); }, false}};
    for (const auto& [end, known] : endsAndWhetherTheOtherIsStillKnown) {
        EXPECT_EQ(modem.restore({}), "");
        reload();
        Key key = add("apn=net");
        const auto other = std::make_shared<Key>(add("apn=temp", false));
        const Key deleting = find("apn=net").front();
        doomed = &deleting;
        settle();
        const std::weak_ptr<IProfileKey> watch = key;
        key->registerExpirationListener([key, other] { other->reset(); });
        key.reset();
        EXPECT_FALSE(watch.expired()) << "the callback holds it";
        modem.journal().clear();
        end();
        EXPECT_TRUE(!known || modem.journal().waitFor([](const auto& entries) {
            return std::any_of(entries.begin(), entries.end(), [](const auto& entry) {
                return entry.kind == velasim::JournalKind::Request && entry.index == 2;
            });
        })) << "the other is released without further requests";
        settle();
        EXPECT_TRUE(watch.expired());
        EXPECT_EQ(*other, nullptr);
        EXPECT_EQ(stored(2, "apn_name=temp"), known ? "" : "apn_name=temp");
    }
}

TEST_F(PipelineTest, CallbacksMayNotWait) {
    start();
    const Key key = add("apn=net");
    bool called = false;
    key->registerExpirationListener([&] {
        called = true;
        expectNothing(manager, key);
        key->registerExpirationListener([] { ADD_FAILURE(); });
        manager.init(0, false);
        EXPECT_THAT(manager.dump(), Contains("Cache:"));
    });
    EXPECT_TRUE(manager.deleteProfile(key));
    EXPECT_TRUE(called);
    EXPECT_EQ(logged("Request refused on the VELA thread: *"), 7U);
    EXPECT_EQ(logged("Manager::addProfile < "), 1U);
    EXPECT_EQ(logged("Unable to cast to AddResponse"), 1U);
    EXPECT_EQ(logged("Error in getProfile"), 1U);
    EXPECT_NE(add("apn=new"), nullptr) << "all is well afterwards";
    EXPECT_TRUE(agrees());
}

// ---- life

TEST_F(PipelineTest, KeysOutliveTheirPipeline) {
    auto client = std::make_unique<Manager>();
    connect(*client);
    int expirations = 0;
    Keys keys;
    const auto addTemporary = [&] {
        keys.push_back(client->addProfile(AddProfileParams(false, TechType::TECH_3GPP, false)));
        keys.back()->registerExpirationListener([&expirations] { ++expirations; });
    };
    addTemporary();
    connect(*client);
    EXPECT_EQ(client->getProfile(keys.back()), std::nullopt) << "tokens are not used twice";
    addTemporary();
    client.reset();
    EXPECT_EQ(expirations, 2);
    keys.back()->registerExpirationListener([] { ADD_FAILURE(); });
    keys.clear();
    EXPECT_EQ(profilesInModem(), 2U) << "nobody was left to delete them";
}

// Nobody can keep an indication from calling a listener just while the manager is replaced or goes.
TEST_F(PipelineTest, ListenersMayCallAManagerThatIsReplacedOrGoes) {
    store("apn_name=a");
    for (const bool destroy : {false, true}) {
        auto client = std::make_unique<Manager>();
        Manager* const called = client.get();
        connect(*client);
        std::promise<void> entered;
        std::size_t found = 0;
        const Key key = client->filter(FilterProfileParams()).front();
        key->registerExpirationListener([&] {
            entered.set_value();
            for (int i = 0; i < 200; ++i) {
                found += called->filter(FilterProfileParams()).size();
                called->init(0, false);
            }
        });
        change(1, destroy ? "apn_name=b" : "apn_name=c");
        entered.get_future().wait();
        if (!destroy) {
            client->init(0, false);
        }
        client.reset();
        EXPECT_EQ(found, 0U);
    }
}

TEST_F(PipelineTest, NothingWorksBeforeInit) {
    start();
    const Key key = add("apn=net");
    settle();
    velasim::DiagLog::instance().clear();
    Manager other;
    expectNothing(other, key);
    reload(other);
    EXPECT_EQ(logged("Manager not initialized!"), 7U);
    EXPECT_EQ(logged("*"), 8U) << "and its construction";
    const auto lines = other.dump();
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 2), ElementsAre("", "Logs:"));
    EXPECT_THAT(lines.back(), HasSubstr(" [VELA]Manager not initialized!"));
}

// ---- the connection

TEST_F(PipelineTest, RegistersAgainAfterEveryOutage) {
    Bytes subscription(392);
    Bytes events(2052);
    subscription[16] = subscription[17] = 1;
    events[0] = events[4] = events[2048] = events[2049] = 1;
    events[8] = events[12] = 0xFF;
    for (const std::uint8_t instance : Bytes{0, 1, 1}) {
        connect(manager, instance);
        modem.journal().clear();
        modem.restart();
        settle();
        std::vector<std::pair<std::uint32_t, Bytes>> sent;
        for (const auto& entry : modem.journal().snapshot()) {
            if (entry.kind == velasim::JournalKind::Request) {
                sent.emplace_back(entry.messageId, entry.bytes);
            }
        }
        EXPECT_THAT(sent, ElementsAre(std::pair(0xAFU, Bytes{instance, 0, 0, 0}),
                                      std::pair(0x03U, subscription), std::pair(0xA7U, events)));
    }
}

// Rows: fault | message | its value | line | requests sent.
TEST_F(PipelineTest, TroubleOnConnecting) {
    start();
    for (const auto& row : rowsOf(R"(
refuse | 175 | 0 | Unable send bind req message | 3;;
time-out | 3 | 0 | Unable send indication req message | 3;;
send-failure | 167 | 0 | Unable send config req message | 3;;
no-service-instance | 0 | 0 | error get service. | 0;;
client-init-failure | 0 | 7 | rlink_client_init error. ErrCode : 7 | 0;;
error-callback-failure | 0 | 5 | rlink_client_register_error_cb result: 5 | 3;;)")) {
        modem.journal().clear();
        velasim::DiagLog::instance().clear();
        const auto number = [&row](std::size_t cell) {
            return static_cast<std::uint32_t>(std::stoul(row[cell]));
        };
        fault(velasim::faultNamed(row[0]).value(), number(1), 1, 1, number(2));
        manager.init(0, false);
        settle();
        EXPECT_EQ(logged(row[3]), 1U) << row[3];
        EXPECT_EQ(requests(), number(4)) << row[3];
    }
    const velasim::Simulator without({.hasService = false});
    manager.init(0, false);
    EXPECT_EQ(logged("cannot obtain service obj, fatal error"), 1U);
    EXPECT_EQ(add("apn=net"), nullptr);
}

// ---- what the modem says

TEST_F(PipelineTest, IndicationsOfEveryKind) {
    start();
    const std::tuple<Bytes, std::uint32_t, const char*, std::size_t> cases[] = {
        {indicationOf(0, 1, 4), 0xA8, "ProfileCache: onIndication < 3GPP:1 SubscriptionChange", 2},
        {indicationOf(1, 1, 5), 0xA8, "ProfileCache: onIndication < 3GPP2:1 ProfileReady", 2},
        {indicationOf(0, 1, 0), 0xA8, "ProfileCache: onIndication < 3GPP:1 ProfileReady", 2},
        {indicationOf(0, 1, 200), 0xA8, "ProfileCache: onIndication < 3GPP:1 ProfileReady", 2},
        {indicationOf(2, 255, 2), 0xA8, "ProfileCache: onIndication < 3GPP:255 Delete", 0},
        {indicationOf(2, 1, 2), 0xA8, "Unknown tech type 2", 0},
        {indicationOf(0, 1, 5), 0x77, "Unknown message ID 119 received", 0},
        {{0x11, 0, 0}, 0xA8, "Profile changed ind TLV is not valid", 0},
        {{0x10, 9}, 0xA8, "Unable to decode the nr status ind message", 0},
        {{}, 0xA8, "The ind_cb_data/ind_buf is null or ind_buf_len is 0", 0}};
    for (const auto& [bytes, message, line, lists] : cases) {
        modem.journal().clear();
        velasim::DiagLog::instance().clear();
        modem.injectIndication(bytes, message);
        settle();
        EXPECT_EQ(logged(line), 1U) << line;
        EXPECT_EQ(requests(), lists) << line;
    }
}

TEST_F(PipelineTest, AFloodOfIndicationsLeavesRoomForRequests) {
    struct Flood : Observer {
        explicit Flood(velasim::Simulator& modem) : modem(modem) {}
        void onIndication(const ModemIndication& /*indication*/) override {
            modem.injectIndication(indicationOf(0, 9, 2));
            modem.waitIdle();  // the next one waits before this one is done
        }
        velasim::Simulator& modem;
    };
    start();
    setObserver(std::make_shared<Flood>(modem));
    modem.injectIndication(indicationOf(0, 9, 2));
    for (int i = 0; i < 10; ++i) {
        EXPECT_THAT(find(""), IsEmpty());
    }
    setObserver(nullptr);
}

TEST_F(PipelineTest, NothingFromTheModemIsTrusted) {
    store("apn_name=%n%s%d user_name=%s%n pdp_type=3");
    store("apn_string_3gpp2=cdma pdn_type_3gpp2=2");
    start();
    reload();
    EXPECT_EQ(logged("TechType=3GPP,ProfileId=1,ApnName=%n%s%d,UserName=%s%n,*"), 1U);
    add("apn=%n%s");
    EXPECT_EQ(logged("Added: TechType=3GPP,ProfileId=2,ApnName=%n%s,*"), 1U);

    // 255 entries at most; those that the modem did not name cannot be read.
    fault(Fault::ListOverrun, RLINK_WDS_GET_PROFILE_LIST_REQ_V01);
    modem.journal().clear();
    reload();
    EXPECT_EQ(requests(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01), 256U);
    EXPECT_THAT(find(""), SizeIs(3));
}

}  // namespace
}  // namespace vela
