// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/Observer.h"

#include <future>
#include <mutex>
#include <regex>
#include <set>
#include <stdexcept>
#include <thread>

#include "support/ClientFixture.h"
#include "vela/Util.h"
#include "velasim/Random.h"

namespace vela {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using velasim::Fault;

template <typename... Parts>
std::string textOf(const Parts&... parts) {
    std::ostringstream text;
    (text << ... << parts);
    return text.str();
}

template <typename Words>
std::string joined(const Words& words) {
    std::string line;
    for (const std::string& word : words) {
        line += " " + word;
    }
    return line;
}

/** Text of which lines that are indented continue the former. */
std::string unwrapped(const std::string& text) {
    return std::regex_replace(text, std::regex("\n +"), " ");
}

/** The four IP fields of the modem: PDP type, override, LTE and UMTS roaming. */
std::string ipFieldsOf(const ProfileImage& image) {
    std::string text;
    for (const auto& field :
         {image.pdpType, image.overrideHomeIPType, image.lteRoamIPType, image.umtsRoamIPType}) {
        text += field ? textOf(" ", *field) : " -";
    }
    return text;
}

/** Writes down each call: on whose thread (c: the client's, w: the worker's), what, of what. */
class Notebook : public Observer {
  public:
    explicit Notebook(bool isFaulty = false) : isFaulty(isFaulty) {}

    /** What was told since the last call. */
    std::string take() {
        const std::lock_guard lock(mutex);
        return std::exchange(lines, "");
    }

    void onRequest(const ClientRequest& request) override { note("> ", request.getRequestType()); }
    void onResponse(const ClientRequest& request, const ClientResponse* response,
                    std::chrono::nanoseconds duration) override {
        expectPlausible(duration);
        EXPECT_TRUE(!response || response->getResponseType() == request.getRequestType());
        note("< ", request.getRequestType(), " ",
             response ? textOf(response->getStatus()) : "refused");
    }
    void onSearch(const ClientRequest& request,
                  const std::vector<ProfileCandidate>& candidates) override {
        searched = candidates;
        std::multiset<std::string> found;  // their order is arbitrary
        for (const ProfileCandidate& candidate : candidates) {
            found.insert(candidate.fits() ? "fits" : candidate.profile ? "not" : "unreadable");
        }
        note("? ", request.getRequestType(), joined(found));
    }
    void onMessage(const ModemMessage& message) override {
        const char* const outcomes[] = {"answered", "refused", "timed out", "not sent", "lost"};
        expectPlausible(message.duration);
        if (message.profile != nullptr) {
            image = *message.profile;
            EXPECT_EQ(image.techType, message.techType);
            EXPECT_EQ(image.profileId, message.profileId);
        }
        note(std::hex, static_cast<std::uint32_t>(message.type), std::dec, " ", message.techType,
             ":", message.profileId, " ", outcomes[static_cast<int>(message.outcome)], " ",
             message.error, " ", message.result, message.request ? " for " : "",
             message.request ? textOf(message.request->getRequestType()) : "");
    }
    void onIndication(const ModemIndication& indication) override {
        const char* const outcomes[] = {" confirmed", " followed"};
        note("! ", indication.outcome == IndicationOutcome::Unreadable
                       ? "unreadable"
                       : indication.change.dump() + outcomes[static_cast<int>(indication.outcome)]);
    }
    void onService(ServiceState state) override {
        const char* const states[] = {"up", "down", "failed"};
        note("service ", states[static_cast<int>(state)]);
    }
    void onPolicyBegin(const PolicyCall& call) override {
        const auto sizeOf = [](const auto* list) { return list ? list->size() : 0; };
        note("begin ", static_cast<int>(call.policy), call.isProfileUpdateAllowed ? " may " : " ",
             call.techType, ":", call.profileId, " ",
             call.params ? call.params->getApnName() + " " : "", sizeOf(call.profiles), "+",
             sizeOf(call.profiles3gpp2));
    }
    void onPolicyEnd(const PolicyCall& call, const PolicyResult& result) override {
        note("end ", static_cast<int>(call.policy), result.matches ? " matches" : "",
             result.key ? textOf(" ", result.key->getTechType(), ":", result.key->getProfileId())
                        : "");
    }

    // Of the latest search and message; to be read at rest.
    std::vector<ProfileCandidate> searched;
    ProfileImage image;

  private:
    static void expectPlausible(std::chrono::nanoseconds duration) {
        EXPECT_GT(duration.count(), 0);
        EXPECT_LT(duration, std::chrono::minutes(1));
    }

    template <typename... Parts>
    void note(const Parts&... parts) {
        const std::lock_guard lock(mutex);
        lines += textOf(std::this_thread::get_id() == client ? " c " : " w ", parts..., ";");
        if (isFaulty) {
            throw std::runtime_error("an observer that fails");
        }
    }

    const bool isFaulty;
    const std::thread::id client = std::this_thread::get_id();
    std::mutex mutex;
    std::string lines;  // guarded by mutex
};

class ObserverTest : public ClientFixture {
  protected:
    using Steps = std::vector<std::pair<std::string, std::function<void()>>>;

    /** Indications come when the test settles. */
    ObserverTest()
        : ClientFixture(Manager::getInstance(), {.delivery = velasim::DeliveryMode::Stepped}) {
        start();
        setObserver(notes);
    }
    void TearDown() override { setObserver(nullptr); }

    /** What is told of an action, and of what comes of it. */
    std::string told(const std::function<void()>& action) {
        settle();
        notes->take();
        action();
        settle();
        return notes->take();
    }
    std::string told(const Steps& steps) {
        std::string transcript;
        for (const auto& [name, action] : steps) {
            transcript += "\n" + name + ":" + told(action);
        }
        return transcript;
    }

    Steps clientSteps() {
        const auto listener = [&] {
            EXPECT_FALSE(manager.getProfile(key));
            temporary.reset();
        };
        return {{"add", [&] { key = add("apn=a"); }},
                {"another", [&] { temporary = add("apn=b", false, TechType::TECH_3GPP2); }},
                {"refused", [&] { addRefused(); }},
                {"filter", [&] { find("apn=a"); }},
                {"none", [&] { find("apn=none"); }},
                {"match", [&] { manager.match(FilterProfileParams(), key); }},
                {"no key", [&] { manager.match(FilterProfileParams(), nullptr); }},
                {"get", [&] { read(key); }},
                {"modify", [&] { modify("user=bob", key); }},
                {"no change", [&] { modify("user=bob", key); }},
                {"listen", [&, listener] { key->registerExpirationListener(listener); }},
                {"delete", [&] { manager.deleteProfile(key); }},
                {"create", [&] { modem.foreignCreate(0, Technology::ThreeGpp2, {}); }},
                {"gone", [&] { manager.match(FilterProfileParams(), key); }},
                {"drop", [&] { add("apn=c", false).reset(); }},
                {"block", [&] { manager.refresh(PDCRefreshStatus::RefreshStarted); }},
                {"filter", [&] { find("apn=a"); }},
                {"reload", [&] { reload(); }}};
    }

    Steps modemSteps() {
        const auto initAfter = [&](Fault reason) {
            return [this, reason] {
                fault(reason);
                manager.init(0, false);
            };
        };
        const auto inject = [&](const std::vector<std::uint8_t>& bytes, std::uint32_t message) {
            return [this, bytes, message] { modem.injectIndication(bytes, message); };
        };
        return {{"store", [&] { store("apn_name=a"); }},
                {"ready", [&] { modem.profileReady(0); }},
                {"change", [&] { change(1, "user_name=eve"); }},
                {"create", [&] { modem.foreignCreate(0, Technology::ThreeGpp2, {}); }},
                {"delete", [&] { modem.foreignDelete(0, Technology::ThreeGpp2, 1); }},
                {"says nothing", inject({0x11, 0, 0}, 0xA8)},
                {"undecodable", inject({0x10, 9}, 0xA8)},
                {"unknown", inject({0x10, 9}, 0x77)},
                {"down", [&] { modem.serviceDown(); }},
                {"reload", [&] { reload(); }},
                {"up", [&] { modem.serviceUp(); }},
                {"no client", initAfter(Fault::ClientInitFailure)},
                {"no service", initAfter(Fault::NoServiceInstance)}};
    }

    void addRefused() {
        fault(Fault::Refuse);
        EXPECT_EQ(add("apn=no"), nullptr);
    }

    Key key;
    Key temporary;
    std::shared_ptr<Notebook> notes = std::make_shared<Notebook>();
};

TEST_F(ObserverTest, RequestsAndWhatTheyTake) {
    EXPECT_EQ(told(clientSteps()), unwrapped(R"(
add: c > Add; w 27 3GPP:1 answered 0 0 for Add; c < Add Success; w ! 3GPP:1 Create confirmed; w !
    3GPP:1 Modify confirmed;
another: c > Add; w 27 3GPP2:1 answered 0 0 for Add; c < Add Success; w ! 3GPP2:1 Create
    confirmed; w ! 3GPP2:1 Modify confirmed;
refused: c > Add; w 27 3GPP:-1 refused 6 0 for Add; c < Add Success;
filter: c > Filter; w ? Filter fits not; c < Filter Success; c > Callback; c < Callback Success;
none: c > Filter; w ? Filter not not; c < Filter Success;
match: c > Match; w ? Match fits; c < Match Success;
no key: c > Match; c < Match Failure;
get: c > Get; c < Get Success;
modify: c > Modify; w 28 3GPP:1 answered 0 0 for Modify; c < Modify Success; w ! 3GPP:1 Modify
    confirmed;
no change: c > Modify; c < Modify Success;
listen: c > Callback; c < Callback Failure;
delete: c > Delete; w 29 3GPP:1 answered 0 0 for Delete; w > Get; w < Get refused; w > Callback; w
    < Callback Success; w 29 3GPP2:1 answered 0 0 for Callback; c < Delete Success; w ! 3GPP:1
    Delete confirmed; w ! 3GPP2:1 Delete confirmed;
create: w 2b 3GPP2:1 answered 0 0; w ! 3GPP2:1 Create followed;
    w 2b 3GPP2:1 answered 0 0; w ! 3GPP2:1 Modify followed;
gone: c > Match; w ? Match; c < Match Success;
drop: c > Add; w 27 3GPP:1 answered 0 0 for Add; c < Add Success; c > Callback; w 29 3GPP:1
    answered 0 0 for Callback; c < Callback Success; w ! 3GPP:1 Create confirmed; w ! 3GPP:1
    Modify confirmed; w ! 3GPP:1 Delete confirmed;
block: c > Refresh; c < Refresh Success;
filter: c > Filter; c < Filter Failure;
reload: c > Refresh; w 2a 3GPP:-1 answered 0 0 for Refresh;
    w 2a 3GPP2:-1 answered 0 0 for Refresh; w 2b 3GPP2:1 answered 0 0 for Refresh;
    c < Refresh Success;)"));
}

TEST_F(ObserverTest, WhatTheModemDoes) {
    EXPECT_EQ(told(modemSteps()), unwrapped(R"(
store:
ready: w 2a 3GPP:-1 answered 0 0; w 2b 3GPP:1 answered 0 0; w 2a 3GPP2:-1 answered 0 0; w ! 3GPP:0
    ProfileReady followed;
change: w 2b 3GPP:1 answered 0 0; w ! 3GPP:1 Modify followed;
create: w 2b 3GPP2:1 answered 0 0; w ! 3GPP2:1 Create followed; w 2b 3GPP2:1 answered 0 0; w !
    3GPP2:1 Modify followed;
delete: w ! 3GPP2:1 Delete followed;
says nothing: w ! unreadable;
undecodable: w ! unreadable;
unknown:
down: w service down;
reload: c > Refresh; w 2a 3GPP:-1 not sent 0 -5 for Refresh; c < Refresh Success;
up: w af 3GPP:-1 answered 0 0; w 3 3GPP:-1 answered 0 0; w a7 3GPP:-1 answered 0 0; w service up;
no client: w service failed;
no service: w service failed;)"));
}

TEST_F(ObserverTest, ObserversDisturbNothing) {
    static const std::regex tokens("(token=|Release |Listener )[0-9]+( [0-9]+)?");
    // How often the loop comes round, and what it finds at once, is left to chance.
    static const std::regex loop(".*(EventManager|file descriptor|ing event|rlinkInd|indQueue).*");
    std::vector<std::string> transcripts;
    std::set<std::string> logs;
    for (const bool isFaulty : {false, true}) {
        for (const bool isInstalled : {false, true}) {
            EXPECT_EQ(modem.restore({}), "");
            key.reset();
            temporary.reset();
            notes = std::make_shared<Notebook>(isFaulty);
            setObserver(isInstalled ? notes : nullptr);
            connect(manager);
            velasim::DiagLog::instance().clear();
            transcripts.push_back(told(clientSteps()));
            transcripts.back() += told(modemSteps());
            std::string log;
            for (const auto& line : velasim::DiagLog::instance().lines()) {
                log += std::regex_match(line.text, loop) ? "" : line.text + "\n";
            }
            logs.insert(std::regex_replace(log, tokens, "$1"));
        }
    }
    EXPECT_EQ(logs.size(), 1U) << *logs.begin() << "\n---\n" << *logs.rbegin();
    EXPECT_EQ(transcripts[0], transcripts[2]);
    EXPECT_EQ(transcripts[1], transcripts[3]);
    EXPECT_NE(transcripts[0], transcripts[1]);
}

// Every message, whatever becomes of it.
TEST_F(ObserverTest, MessagesAndTheirOutcomes) {
    const std::tuple<std::uint32_t, const char*, std::function<void()>> messages[] = {
        {0x27, " for Add", [&] { add("apn=new"); }},
        {0x28, " for Modify", [&] { modify("user=eve", key); }},
        {0x29, " for Delete", [&] { manager.deleteProfile(key); }},
        {0x2A, " for Refresh", [&] { reload(); }},
        {0x2B, " for Refresh", [&] { reload(); }},
        {0xAF, "", [&] { manager.init(0, false); }},
        {0x03, "", [&] { manager.init(0, false); }},
        {0xA7, "", [&] { manager.init(0, false); }}};
    constexpr auto kDecode = static_cast<std::uint32_t>(RLINK_ERROR_DECODE);
    const std::tuple<Fault, std::uint32_t, const char*> outcomes[] = {
        {Fault::LoseIndication, 0, " answered 0 0"},
        {Fault::Refuse, 52, " refused 52 0"},
        {Fault::Timeout, 0, " timed out 0 -3"},
        {Fault::TimeoutAfterEffect, 0, " timed out 0 -3"},
        {Fault::SendFailure, 0, " not sent 0 -1"},
        {Fault::SendFailure, kDecode, " lost 0 -4"},
        {Fault::RestartAfterEffect, 0, " lost 0 -2"}};
    for (const auto& [type, purpose, act] : messages) {
        for (const auto& [reason, value, outcome] : outcomes) {
            EXPECT_EQ(modem.restore({}), "");
            modem.faults().clear();
            connect(manager);
            key = add("apn=net user=bob");
            settle();
            fault(reason, type, 1, 1, value);
            const std::string lines = told(act);
            std::smatch first;
            const std::regex line(textOf(" w ", std::hex, type, " [^;]*"));
            EXPECT_TRUE(std::regex_search(lines, first, line)) << lines;
            EXPECT_THAT(first.str(), EndsWith(textOf(outcome, purpose))) << lines;
        }
    }
}

// ---- searches

/** Criteria in their order: those that a profile may meet, and the same not met. */
const auto kMet = split(
    "tech=0,id=1,apn=net,mask=3,user=bob,pw=x,auth=1,class=2,clat=1,ia=0,vela=1,home=1,roam=2,"
    "block=4,timer=5,wait=6,disabled=1,emergency=1",
    ',');
const auto kUnmet = split(
    "tech=1,id=7,apn=ne,mask=1,user=eve,pw=y,auth=2,class=1,clat=0,ia=1,vela=0,home=3,roam=3,"
    "block=5,timer=6,wait=7,disabled=0,emergency=0",
    ',');

TEST_F(ObserverTest, EveryCriterionByItsName) {
    const ProfileParams all = filterOf(joined(kMet));
    key = manager.addProfile(AddProfileParams(all, true, TechType::TECH_3GPP, false));
    const auto mismatches = [this](const std::vector<std::string>& criteria) {
        manager.filter(filterOf(joined(criteria)));
        return notes->searched.at(0).mismatches;
    };
    std::vector<FilterCriterion> everyone;
    for (std::size_t i = 0; i < kMet.size(); ++i) {
        everyone.push_back(FilterCriterion{static_cast<std::int32_t>(i)});
        auto criteria = kMet;
        criteria[i] = kUnmet[i];
        EXPECT_THAT(mismatches(criteria), ElementsAre(everyone.back()));
    }
    EXPECT_THAT(mismatches(kMet), IsEmpty());
    EXPECT_EQ(mismatches(kUnmet), everyone);
    EXPECT_EQ(notes->searched.at(0).profile->params.dump(), all.dump());
}

TEST_F(ObserverTest, WhoMadeAProfileAndWhetherItStays) {
    for (const bool isPersistent : {false, true}) {
        EXPECT_EQ(modem.restore({}), "");
        reload();
        key = add("apn=a", isPersistent);
        for (const bool isRead : {false, true}) {
            find("");
            const ProfileImage& image = notes->searched.at(0).profile.value();
            EXPECT_EQ(image.isPersistent, isPersistent);
            EXPECT_EQ(image.isVelaCreated, !isRead);
            reload();
        }
    }
}

TEST_F(ObserverTest, FitsWhatTheLibraryFinds) {
    velasim::Random random(1);
    const auto tokenOf = [](const Key& one) {
        return std::stoul(one->dump().substr(one->dump().rfind('=') + 1));
    };
    const auto some = [&random](double chance) {
        std::string line;
        for (std::size_t i = 0; i < kMet.size(); ++i) {
            if (random.chance(chance)) {
                line += " " + (random.chance(0.7) ? kMet : kUnmet)[i];
            }
        }
        return filterOf(line);
    };
    for (int i = 0; i < 16; ++i) {
        manager.addProfile(AddProfileParams(some(0.8), true, TechType{i % 2}, i % 5 == 0));
    }
    fault(Fault::Refuse, RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01, 3);
    reload();
    notes->take();
    const Keys everything = find("");
    EXPECT_THAT(notes->take(), HasSubstr(" fits unreadable;"));
    std::size_t found = 0;
    for (int i = 0; i < 500; ++i) {
        FilterProfileParams filter = some(0.15);
        filter.addFilterMatchCriteria(static_cast<unsigned>(random.next()) & 63U);
        std::vector<unsigned long> tokens;
        for (const Key& one : manager.filter(filter)) {
            tokens.push_back(tokenOf(one));
        }
        std::vector<unsigned long> fitting;
        for (const ProfileCandidate& candidate : notes->searched) {
            if (candidate.fits()) {
                fitting.push_back(candidate.token);
            }
        }
        EXPECT_EQ(fitting, tokens) << filter.dump();
        found += tokens.size();
        const Key& one = *std::next(everything.begin(), static_cast<long>(random.below(15)));
        const bool matches = manager.match(filter, one);
        ASSERT_THAT(notes->searched, testing::SizeIs(1));
        EXPECT_EQ(notes->searched[0].fits(), matches) << filter.dump();
        EXPECT_EQ(notes->searched[0].token, tokenOf(one));
    }
    EXPECT_GT(found, 500U);
}

TEST_F(ObserverTest, TheFieldsBehindTheIPTypes) {
    key = add("home=3 roam=1");
    EXPECT_EQ(ipFieldsOf(notes->image), " V4V6 V4V6 V4 V4") << "as written";
    modify("roam=3", key);
    EXPECT_EQ(ipFieldsOf(notes->image), " - UNKNOWN V4V6 V4V6") << "what is modified";
    find("");
    EXPECT_EQ(ipFieldsOf(notes->searched.at(0).profile.value()), " V4V6 UNKNOWN V4V6 V4V6");
    store("apn=a pdp=3 lte=0 umts=1");
    reload();
    EXPECT_EQ(ipFieldsOf(notes->image), " V4V6 - V4 V6") << "as read";
}

// ---- policies, life

TEST_F(ObserverTest, PoliciesNest) {
    Util util;
    const ProfileParams asked = paramsOf("apn=ia home=3 roam=3");
    const ProfileParams net = paramsOf("apn=net");
    const auto ofClasses = listOf("apn=x class=1, apn=y class=2");
    const std::string lines = told(
        {{"attach", [&] { util.findOrCreateProfileForLteAttach(asked); }},
         {"matches", [&] { util.matchLteAttachProfileId(1, asked); }},
         {"does not", [&] { util.matchLteAttachProfileId(7, asked); }},
         {"update", [&] { util.setProfileUpdateAllowed(true); }},
         {"call", [&] { util.findOrCreateProfileForSetupDataCall(TechType::TECH_3GPP2, net); }},
         {"refuse", [&] { fault(Fault::Refuse, RLINK_WDS_CREATE_PROFILE_REQ_V01); }},
         {"refused", [&] { util.findOrCreateProfileForEmergencyDataCall(paramsOf("apn=sos")); }},
         {"classes",
          [&] { util.updateModemProfileByApnClass(ofClasses, listOf("apn=z class=1")); }},
         {"masks", [&] { util.updateAPNTypeBitmaskOnModemProfile(listOf("apn=ia mask=1")); }}});
    EXPECT_EQ(std::regex_replace(lines, std::regex(" [cw] [^be][^;]*;"), ""), unwrapped(R"(
attach: c begin 0 3GPP:-1 ia 0+0; c end 0 3GPP:1;
matches: c begin 1 3GPP:1 ia 0+0; c end 1 matches;
does not: c begin 1 3GPP:7 ia 0+0; c end 1;
update:
call: c begin 2 may 3GPP2:-1 net 0+0; c end 2 3GPP2:1;
refuse:
refused: c begin 3 may 3GPP:-1 sos 0+0; c end 3;
classes: c begin 4 may 3GPP:-1 2+1; c begin 5 may 3GPP:-1 x 0+0; c end 5;
    c begin 5 may 3GPP:-1 y 0+0; c end 5; c begin 5 may 3GPP2:-1 z 0+0; c end 5; c end 4;
masks: c begin 6 may 3GPP:-1 1+0; c end 6;)"));
}

TEST_F(ObserverTest, MayBeReplacedAtAnyTime) {
    class Passing : public Observer {
      public:
        explicit Passing(std::function<void()> action) : action(std::move(action)) {}
        void onMessage(const ModemMessage&) override { action(); }

      private:
        const std::function<void()> action;
    };
    const auto install = [](const std::function<void()>& action) {
        const auto observer = std::make_shared<Passing>(action);
        setObserver(observer);
        return std::weak_ptr<Observer>(observer);
    };
    auto former = install([&] { setObserver(notes); });
    EXPECT_EQ(told([&] { add("apn=a"); }),
              unwrapped(R"( c < Add Success; c > Callback; c < Callback Success;
    w ! 3GPP:1 Create confirmed; w ! 3GPP:1 Modify confirmed;)"));
    EXPECT_TRUE(former.expired());
    install([last = std::shared_ptr<void>(nullptr, [&](const void*) { setObserver(notes); })] {});
    setObserver(nullptr);
    EXPECT_THAT(told([&] { reload(); }), EndsWith(" c < Refresh Success;")) << "it came back";

    std::promise<void> entered;
    std::promise<void> mayReturn;
    former = install([&] {
        entered.set_value();
        mayReturn.get_future().wait();
    });
    auto adding = std::async(std::launch::async, [&] { return add("apn=b"); });
    entered.get_future().wait();
    setObserver(notes);
    EXPECT_FALSE(former.expired()) << "it is in a call";
    mayReturn.set_value();
    EXPECT_NE(adding.get(), nullptr);
    EXPECT_TRUE(former.expired());
}

TEST_F(ObserverTest, TellsNothingOfAPipelineThatIsNotThere) {
    auto other = std::make_unique<Manager>();
    EXPECT_EQ(told([&] { other->filter(FilterProfileParams()); }), "");
    const auto connecting = told([&] {
        other->init(0, false);
        settle(*other);
    });
    EXPECT_THAT(connecting, EndsWith(" w service up;"));
    key = other->addProfile(AddProfileParams(true, TechType::TECH_3GPP, false));
    settle(*other);
    EXPECT_EQ(told([&] { other.reset(); }), "");
    EXPECT_EQ(told([&] { key.reset(); }), "");
}

}  // namespace
}  // namespace vela
