// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "modem/Workbench.h"

#include <gmock/gmock.h>
#include <wds_service_v01.h>

#include "modem/SimulatedModem.h"

namespace velactl {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto k3gpp = velasim::Technology::ThreeGpp;

class WorkbenchTest : public testing::Test {
  protected:
    void addProfile(const std::string& apn, vela::TechType tech = vela::TechType::TECH_3GPP) {
        vela::AddProfileParams params(true, tech, false);
        params.setApnName(apn);
        params.setPassword("secret");
        keys.push_back(bench.manager().addProfile(params));
    }

    void foreignCreate(const char* apn) {
        velasim::Settings settings{};
        velasim::setText(settings, "apn_name", apn);
        simulator.foreignCreate(0, k3gpp, settings);
    }

    Workbench bench{ModemOptions{}};
    velasim::Simulator& simulator = dynamic_cast<SimulatedModem&>(bench.modem()).simulator();
    std::vector<std::shared_ptr<vela::IProfileKey>> keys;
};

TEST_F(WorkbenchTest, ItsOwnQuestionsAreNotTold) {
    struct : vela::Observer {
        void onRequest(const vela::ClientRequest& /*request*/) override { ++requests; }
        int requests = 0;
    } observer;
    addProfile("a");
    bench.tell(&observer);
    bench.disagreements();
    bench.find(vela::TechType::TECH_3GPP, 1);
    EXPECT_LE(observer.requests, 1);  // the key of the latter is let go
    addProfile("b");
    EXPECT_EQ(observer.requests, 2);
    bench.tell(nullptr);
    EXPECT_EQ(bench.takeTraffic().writes, 2U);
    EXPECT_EQ(bench.takeTraffic().writes, 0U);
}

TEST_F(WorkbenchTest, SaysWhatItCannotCompare) {
    addProfile("a", vela::TechType::TECH_3GPP2);
    EXPECT_THAT(bench.disagreements(), IsEmpty());
    EXPECT_THAT(bench.uncompared(),
                ElementsAre(HasSubstr("the password of 3GPP2 profile 1 (a) is not compared")));
}

TEST_F(WorkbenchTest, SaysWhatTheLibraryHoldsTwiceOrCannotRead) {
    simulator.faults().add({.fault = velasim::Fault::DuplicateIndication});
    foreignCreate("twin");
    bench.settle();
    EXPECT_THAT(bench.disagreements(),
                ElementsAre("3GPP profile 1 (twin) is held twice by the library"));
    simulator.faults().add(
        {.fault = velasim::Fault::Timeout, .messageId = RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01});
    foreignCreate("unread");
    bench.settle();
    EXPECT_THAT(bench.disagreements(),
                testing::AllOf(Contains("3GPP profile 2 (unread) is unknown to the library"),
                               Contains("the library could not read 1 profile that it holds")));
}

TEST_F(WorkbenchTest, AConnectionThatFailsSaysWhy) {
    using enum vela::ModemMessageType;
    using Service = vela::ServiceState;
    const auto refused = [](vela::ModemMessageType type) {
        vela::ModemMessage message;
        message.type = type;
        message.outcome = vela::MessageOutcome::Refused;
        return message;
    };
    vela::ModemMessage listed;
    listed.type = ListProfiles;
    const std::pair<std::optional<Service>, const char*> cases[] = {
        {std::nullopt, "its service has not come up"},
        {Service::ConnectFailed, "could not connect to its service"},
        {Service::Down, "its service has gone"},
    };
    for (const auto& [service, failure] : cases) {
        EXPECT_THAT(connectionOf({}, service, bench.modem()).failure, HasSubstr(failure));
    }
    const Connection last = connectionOf(
        {refused(RegisterIndications), refused(ListProfiles), listed}, Service::Up, bench.modem());
    EXPECT_EQ(last.failure, "");
    EXPECT_THAT(last.notes, ElementsAre(HasSubstr("does not see what others change"),
                                        HasSubstr("refused to list the profiles")));
}

TEST(Recorder, AnIndicationThatIsLateDoesNotStandForTheNext) {
    Recorder recorder;
    vela::ModemMessage change;
    change.type = vela::ModemMessageType::ModifyProfile;
    constexpr std::chrono::milliseconds kPatience(20);
    recorder.onMessage(change);
    recorder.awaitConfirmations(kPatience);
    recorder.onIndication({});
    recorder.onMessage(change);
    const auto start = std::chrono::steady_clock::now();
    recorder.awaitConfirmations(kPatience);
    EXPECT_GE(std::chrono::steady_clock::now() - start, kPatience);
}

}  // namespace
}  // namespace velactl
