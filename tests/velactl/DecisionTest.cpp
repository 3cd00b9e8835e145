// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The record of a decision against the simulator's own tables, and against its documented form.
#include "decisions/Decision.h"

#include <vela/Util.h>

#include <random>
#include <set>

#include "ToolRun.h"
#include "modem/SimulatedModem.h"
#include "profiles/Text.h"
#include "velasim/Settle.h"

namespace velactl {
namespace {

using vela::IPType;
using vela::ProfileParams;
using velasim::Technology;

// --- the form of the document

std::string textOf(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

const Json& documentedForm() {
    static const Json kSchema = Json::parse(std::ifstream(VELACTL_DOCS "/decision.schema.json"));
    return kSchema;
}

bool isOf(const Json& list, const Json& value) {
    return std::count(list.begin(), list.end(), value) != 0;
}

/** What is wrong with a value, by the parts of the schema language that the schema uses. */
std::string flawOf(const Json& value, Json schema) {
    if (schema.contains("$ref")) {
        schema = documentedForm()[Json::json_pointer(schema["$ref"].get<std::string>().substr(1))];
    }
    const auto fits = [&](const Json& one) { return flawOf(value, one).empty(); };
    const Json forms = schema.value("oneOf", Json::array());
    const std::string type = value.is_number_integer() ? "integer" : value.type_name();
    const Json types = schema.value("type", Json(type));
    if (schema.value("const", value) != value || (types != type && !isOf(types, type)) ||
        (schema.contains("enum") && !isOf(schema["enum"], value)) ||
        (!forms.empty() && std::count_if(forms.begin(), forms.end(), fits) != 1)) {
        return textOf(value) + " is not " + schema.dump();
    }
    std::string flaws;
    if (value.is_object()) {
        for (const Json& item : schema.value("required", Json::array())) {
            flaws += value.contains(item) ? "" : "no member " + item.dump();
        }
        const Json properties = schema.value("properties", Json::object());
        for (const auto& item : properties.items()) {
            flaws += value.contains(item.key()) ? flawOf(value[item.key()], item.value()) : "";
        }
    }
    if (value.is_array() && schema.contains("items")) {
        for (const Json& element : value) {
            flaws += flawOf(element, schema["items"]);
        }
    }
    return flaws;
}

// --- the modem's own tables

using Places = std::set<std::string>;
using Table = std::map<std::string, std::pair<Technology, velasim::Settings>>;

/** Where two tables differ. */
Places differences(const Table& before, const Table& after) {
    Places places;
    for (const auto& [one, other] : {std::pair(&before, &after), std::pair(&after, &before)}) {
        for (const auto& [place, profile] : *one) {
            const auto found = other->find(place);
            if (found == other->end() ||
                !velasim::sameSettings(found->second.second, profile.second, profile.first)) {
                places.insert(place);
            }
        }
    }
    return places;
}

Places placesOf(const Json& changes) {
    Places places;
    for (const Json& change : changes) {
        places.insert(change["technology"].get<std::string>() + ' ' + change["index"].dump());
    }
    return places;
}

using Key = std::shared_ptr<vela::IProfileKey>;

class Decisions : public testing::Test {
  protected:
    Decisions() { begin(); }

    /** Starts anew with an empty modem. */
    void begin() {
        bench.reset();
        if (device) {
            device->faults().clear();
            device->restore({});
        }
        bench.emplace(ModemOptions{});
        policies.setProfileUpdateAllowed(false);
    }

    velasim::Simulator& simulator() {
        return device ? *device : dynamic_cast<SimulatedModem&>(bench->modem()).simulator();
    }

    /** Also what a restart brings about, step by step. */
    void settle() {
        velasim::settle(bench->manager(), simulator());
        bench->settle();
    }

    void reload() { bench->manager().refresh(vela::PDCRefreshStatus::RefreshCompleted); }

    Table table() {
        Table all;
        for (const Technology tech : {Technology::ThreeGpp, Technology::ThreeGpp2}) {
            for (const auto& profile : simulator().profiles(0, tech)) {
                const char* name = tech == Technology::ThreeGpp2 ? "3GPP2 " : "3GPP ";
                all[name + std::to_string(profile.index)] = {tech, profile.settings};
            }
        }
        return all;
    }

    /** Others store a 3GPP profile. */
    void store(const std::string& apn, const std::string& user = "", int pdpType = 0) {
        velasim::Settings settings{};
        velasim::setText(settings, "apn_name", apn);
        velasim::setNumber(settings, "pdp_type", static_cast<std::uint64_t>(pdpType));
        if (!user.empty()) {
            velasim::setText(settings, "user_name", user);
            velasim::setText(settings, "password", "secret-" + user);
        }
        ASSERT_TRUE(simulator().storeProfile(0, Technology::ThreeGpp, settings));
        reload();
    }

    /** Runs a policy; the key is let go at the end. Checks what must hold of every record. */
    template <typename PolicyRun>
    Json record(PolicyRun run) {
        const Table before = table();
        Decision decision(*bench, "test");
        Key key = run();
        settle();
        decision.end();
        const Table after = table();
        key.reset();
        settle();
        decision.release();
        Json document = decision.toJson(true);
        EXPECT_EQ(flawOf(document, documentedForm()), "");
        EXPECT_EQ(document["table_seen"], device == nullptr);
        checkChanges(document["steps"], document["changes"], differences(before, after));
        checkChanges(document["release_steps"], document["release_changes"],
                     differences(after, table()));
        checkSearches(document);
        EXPECT_EQ(document["done"], decision.isDone());
        EXPECT_THAT(textOf(decision.toJson(false)), Not(HasSubstr("secret-")));
        text = join(decision.lines(false), "\n");
        EXPECT_THAT(text, Not(HasSubstr("secret-")));
        return document;
    }

    /** What the record says has changed, or, where tables are not seen, what it says was written,
     * is what has changed. */
    void checkChanges(const Json& steps, const Json& changes, const Places& expected) {
        Places written = placesOf(changes);
        bool isCertain = true;
        for (const Json& step : device ? steps : Json()) {
            isCertain = isCertain && step["kind"] != "service" && step["kind"] != "indication";
            for (const Json& message : step.value("messages", Json::array())) {
                const Json& outcome = message["outcome"];
                isCertain = isCertain && outcome != "timed_out" && outcome != "lost";
                written.merge(outcome == "answered" ? placesOf(Json::array({message})) : Places());
            }
        }
        if (!device) {
            EXPECT_EQ(written, expected);
        } else if (isCertain) {
            EXPECT_THAT(expected, testing::IsSubsetOf(written)) << textOf(steps);
        }
    }

    /** A field is in the list of those that do not fit if and only if another was asked for. Of
     * addresses, that depends on how loosely they are asked for. */
    static void checkSearches(const Json& document) {
        for (const Json& step : document["steps"]) {
            for (const Json& candidate : step.value("candidates", Json::array())) {
                const Json& profile = candidate["profile"];
                if (profile.is_null() || profile["technology"] == "3GPP2") {
                    continue;
                }
                for (const ProfileField& field : profileFields()) {
                    const std::string key = field.key;
                    if (step["asked"].contains(key) && key != "home_ip" && key != "roam_ip") {
                        EXPECT_NE(candidate["mismatches"].contains(key),
                                  isSame(field, profile, step["asked"]))
                            << textOf(candidate) << textOf(step["asked"]);
                    }
                }
            }
        }
    }

    /** Below the platform's interface; null where the workbench brings its own. */
    const std::unique_ptr<velasim::Simulator> device = makeDevice();
    std::optional<Workbench> bench;
    vela::Util policies;
    std::string text;
};

ProfileParams asking(const std::string& apn, const std::string& user = "",
                     IPType home = IPType::V4) {
    ProfileParams params;
    params.setApnName(apn);
    params.setHomeIPType(home);
    if (!user.empty()) {
        params.setUserName(user);
        params.setPassword("secret-" + user);
    }
    return params;
}

using PolicyRun = Key (*)(vela::Util& policies, const ProfileParams& params);

Key attach(vela::Util& policies, const ProfileParams& params) {
    return policies.findOrCreateProfileForLteAttach(params);
}
Key matchAttach(vela::Util& policies, const ProfileParams& params) {
    policies.matchLteAttachProfileId(1, params);
    return {};
}
Key call(vela::Util& policies, const ProfileParams& params) {
    return policies.findOrCreateProfileForSetupDataCall(vela::TechType::TECH_3GPP, params);
}
Key call3gpp2(vela::Util& policies, const ProfileParams& params) {
    return policies.findOrCreateProfileForSetupDataCall(vela::TechType::TECH_3GPP2, params);
}
Key emergency(vela::Util& policies, const ProfileParams& params) {
    return policies.findOrCreateProfileForEmergencyDataCall(params);
}
Key classes(vela::Util& policies, const ProfileParams& params) {
    ProfileParams ims = params;
    ims.setApnClass(vela::ApnClass::IMS);
    policies.updateModemProfileByApnClass({params, ims}, {ims});
    return {};
}
Key masks(vela::Util& policies, const ProfileParams& params) {
    ProfileParams typed = params;
    typed.setApnTypesMask(5);
    policies.updateAPNTypeBitmaskOnModemProfile({typed, params});
    return {};
}
const std::vector<PolicyRun> kRuns{attach, matchAttach, call, call3gpp2, emergency, classes, masks};

// --- tests

TEST_F(Decisions, EveryMessageWithinEveryPolicyMayFail) {
    using velasim::Fault;
    struct Message {
        std::uint32_t id;
        const char* apn;
        /** Makes the library send what no policy does. */
        void (*provoke)(velasim::Simulator& modem) = nullptr;
    };
    const auto announce = [](velasim::Simulator& modem) { modem.profileReady(0); };
    const auto restart = [](velasim::Simulator& modem) { modem.restart(); };
    const Message messages[]{{0x27, "new"},
                             {0x28, "found"},
                             {0x29, "new"},
                             {0x2A, "found", announce},
                             {0x2B, "found", announce},
                             {0xAF, "found", restart},
                             {0x03, "found", restart},
                             {0xA7, "found", restart}};
    const std::pair<Fault, const char*> faults[]{{Fault::Refuse, "refused"},
                                                 {Fault::Timeout, "timed_out"},
                                                 {Fault::TimeoutAfterEffect, "timed_out"},
                                                 {Fault::SendFailure, "not_sent"},
                                                 {Fault::RestartBeforeEffect, "lost"},
                                                 {Fault::RestartAfterEffect, "lost"}};
    std::map<std::uint32_t, int> struck;
    const auto tryOne = [&](PolicyRun run, const Message& message, const auto& fault) {
        begin();
        store("found");
        store("found", "other", 3);
        policies.setProfileUpdateAllowed(message.provoke == nullptr);
        const auto rule = simulator().faults().add({.fault = fault.first, .messageId = message.id});
        const Json document = record([&] {
            if (message.provoke != nullptr) {
                message.provoke(simulator());
            }
            settle();
            return run(policies, asking(message.apn, "me"));
        });
        if (simulator().faults().strikes(rule) != 0) {
            ++struck[message.id];
            EXPECT_EQ(document["done"], false) << document;
            EXPECT_THAT(document["failures"], Not(testing::IsEmpty()));
            EXPECT_THAT(document.dump(), HasSubstr("\"outcome\":\"" + std::string(fault.second)));
            for (const Json& failure : document["failures"]) {
                EXPECT_THAT(text, HasSubstr(failure.get<std::string>()));
            }
        }
    };
    std::size_t turn = 0;
    for (const Message& message : messages) {
        for (const auto& fault : faults) {
            ++turn;
            for (std::size_t run = 0; run < kRuns.size(); ++run) {
                // With what is sent before they begin, the policies take turns.
                if (message.provoke == nullptr || run == turn % kRuns.size()) {
                    tryOne(kRuns[run], message, fault);
                }
            }
        }
        EXPECT_GE(struck[message.id], 6) << message.id;
    }
}

TEST_F(Decisions, RandomModemsAndRequests) {
    std::mt19937 random(7);
    const auto one = [&](std::initializer_list<const char*> of) {
        return std::string(*(of.begin() + random() % of.size()));
    };
    for (int round = 0; round < 60; ++round) {
        begin();
        for (auto i = random() % 5; i > 0; --i) {
            velasim::Settings settings{};
            velasim::setText(settings, "apn_name", one({"a", "B", "c"}));
            velasim::setText(settings, "profile_name",
                             one({"vela_profile", "vela_profile_ia", "own"}));
            for (const char* name :
                 {"pdp_type", "override_home_pdp_type", "lte_roaming_pdp_type",
                  "umts_roaming_pdp_type", "emergency_calls_support", "apn_class"}) {
                if (random() % 2 == 0) {
                    velasim::setNumber(settings, name, random() % 2);
                }
            }
            ASSERT_TRUE(simulator().storeProfile(0, Technology::ThreeGpp, settings));
        }
        reload();
        ProfileParams asked =
            asking(one({"A", "b"}), one({"", "me"}), static_cast<IPType>(1 + random() % 3));
        if (random() % 2 == 0) {
            asked.setRoamIPType(static_cast<IPType>(1 + random() % 3));
        }
        policies.setProfileUpdateAllowed(random() % 2 == 0);
        const std::size_t held = table().size();
        const PolicyRun run = kRuns[random() % kRuns.size()];
        const Json document = record([&] { return run(policies, asked); });
        for (const Json& step : document["steps"]) {
            if (step["kind"] == "search") {
                EXPECT_EQ(step["candidates"].size(), held) << step;
                break;
            }
        }
    }
}

/** In which order the library lists them, nobody knows: whichever is first, the record says so. */
TEST_F(Decisions, TiesNameTheOthersAndTheirCredentials) {
    std::set<std::string> users;
    for (const bool swap : {false, true}) {
        begin();
        store("tie", swap ? "two" : "one");
        store("tie", swap ? "one" : "two");
        const Json document = record([&] { return call(policies, asking("tie", "me")); });
        const std::string user = document["taken"]["profile"]["user"];
        users.insert(user);
        EXPECT_THAT(
            text,
            AllOf(HasSubstr("order of the list is arbitrary"),
                  HasSubstr("fits too, not taken: user is " +
                            std::string(user == "one" ? "two" : "one") + ", there " + user +
                            "; another password"),
                  HasSubstr("user is " + user +
                            ", asked was me (not compared)\n  another password (not compared)")));
    }
    EXPECT_EQ(users.size(), 2U);
}

TEST_F(Decisions, NothingIsSaidOnlyIfNothingIsSo) {
    store("a", "", 3);
    ProfileParams asked = asking("a");
    asked.setRoamIPType(IPType::V6);
    policies.setProfileUpdateAllowed(true);
    record([&] { return attach(policies, asked); });
    EXPECT_THAT(text, AllOf(HasSubstr("sent: home_override=IPv4, lte_roaming=IPv6"),
                            HasSubstr(device ? "before, the library knew technology=3GPP"
                                             : "3GPP profile 1 (a) changed: home_ip"),
                            Not(HasSubstr("byte for byte"))));
    record([&] { return attach(policies, asked); });
    EXPECT_THAT(text, AllOf(HasSubstr("nothing is sent: nothing to change"),
                            HasSubstr(device ? "table was not seen" : "byte for byte")));
}

/** A profile that nobody holds: its release has failed, or its creation was not answered. */
TEST_F(Decisions, WhatIsLeftBehindIsNamed) {
    struct Case {
        PolicyRun run;
        velasim::Fault fault;
        std::uint32_t message;
        const char* outcome;
        const char* words;
    };
    const Case cases[]{{call, velasim::Fault::Refuse, 0x29, "created", "temporary"},
                       {call, velasim::Fault::TimeoutAfterEffect, 0x27, "none", "temporary"},
                       {attach, velasim::Fault::TimeoutAfterEffect, 0x27, "none", "persistent"}};
    for (const Case& each : cases) {
        begin();
        simulator().faults().add({.fault = each.fault, .messageId = each.message});
        const Json document = record([&] { return each.run(policies, asking("a")); });
        EXPECT_EQ(document["outcome"], each.outcome);
        EXPECT_EQ(document["done"], false);
        const auto said = HasSubstr("Left behind: 3GPP profile 1 (a) is in the modem, " +
                                    std::string(each.words));
        if (device) {
            EXPECT_EQ(document["left_behind"], Json());
        } else {
            EXPECT_THAT(text, said);
        }
    }
}

TEST_F(Decisions, AnAnswerOfNoSaysWhy) {
    const auto matches = [&](const char* why, const ProfileParams& asked) {
        Json document = record([&] { return matchAttach(policies, asked); });
        EXPECT_EQ(document["why_not"], *why == '\0' ? Json() : Json(why)) << document;
        return document;
    };
    matches("no_such_profile", asking("a"));
    store("a", "you");
    ProfileParams asked = asking("a", "me");
    asked.setApnTypesMask(5);
    asked.setIsClatEnabled(true);
    Json document = matches("does_not_fit", asked);
    EXPECT_EQ(document["taken"]["differs_from_asked"]["user"]["compared"], true);
    EXPECT_EQ(document["taken"]["differs_from_asked"]["types"]["compared"], false);
    asked.setUserName("you");
    asked.setPassword("secret-you");
    document = matches("", asked);
    EXPECT_EQ(document["taken"]["differs_from_asked"].size(), 2U);
    EXPECT_THAT(text, HasSubstr("types is not set, asked was default,supl (not compared)"));
    bench->manager().refresh(vela::PDCRefreshStatus::RefreshStarted);
    matches("refresh_awaited", asked);
    simulator().faults().add({.fault = velasim::Fault::Refuse, .messageId = 0x2B});
    reload();
    matches(device ? "unknown" : "not_readable", asked);
    begin();
    bench->manager().addProfile({asking("a"), true, vela::TechType::TECH_3GPP, false});
    matches("not_for_attach", asking("a"));
}

TEST_F(Decisions, FieldsThatA3gpp2ProfileDoesNotHoldAreNotWritten) {
    ProfileParams asked = asking("a", "me");
    asked.setRoamIPType(IPType::V6);
    asked.setIsEmergencySupported(true);
    policies.setProfileUpdateAllowed(true);
    Json document;
    const Key kept = [&] {
        Key key;
        document = record([&] { return key = call3gpp2(policies, asked); });
        return key;
    }();
    EXPECT_EQ(document["steps"].back()["not_written"], Json({"roam_ip", "emergency"}));
    EXPECT_THAT(text, HasSubstr("not written, as a 3GPP2 profile does not hold it: roam_ip,"));
    document = record([&] { return call3gpp2(policies, asked); });
    EXPECT_EQ(document["steps"].back()["why_unsent"], "nothing_to_change");
    reload();
    policies.setProfileUpdateAllowed(false);
    document = record([&] { return call3gpp2(policies, asked); });
    EXPECT_EQ(document["taken"]["unknown"], device ? Json({"password"}) : Json::array());
}

TEST_F(Decisions, OthersAndTheUnreadable) {
    store("a");
    store("b");
    simulator().faults().add({.fault = velasim::Fault::Refuse, .messageId = 0x2B});
    reload();
    record([&] {
        simulator().foreignDelete(0, Technology::ThreeGpp, 2);
        settle();
        return call(policies, asking("a"));
    });
    EXPECT_THAT(text, AllOf(HasSubstr("an entry that the library could not read"),
                            HasSubstr("a change by others: deleted, 3GPP profile 2"),
                            HasSubstr(device ? ""
                                             : "meanwhile, by no write that the library knows of: "
                                               "3GPP profile 2 (b) deleted")));
    bench->manager().refresh(vela::PDCRefreshStatus::RefreshStarted);
    const Json blocked = record([&] { return call(policies, asking("a")); });
    EXPECT_EQ(blocked["outcome"], "none");
    EXPECT_THAT(blocked["failures"].dump(), HasSubstr("awaits the end of a refresh"));
    reload();
}

TEST_F(Decisions, AnyTextIsOnlyText) {
    const std::string credential(127, 'u');
    for (const std::string& apn :
         {std::string("x,HomeIPType=V6,"), std::string(150, 'n'), std::string("\xff\x1b[2J")}) {
        begin();
        ProfileParams asked = asking(apn, credential.substr(0, 120));
        asked.setUserName(credential);
        const Json created = record([&] { return attach(policies, asked); });
        EXPECT_EQ(created["taken"]["profile"]["user"], credential);
        EXPECT_EQ(created["taken"]["differs_from_asked"], Json::object());
        EXPECT_THAT(text, AllOf(HasSubstr("apn=" + printable(apn)), Not(HasSubstr("\x1b"))));
        EXPECT_EQ(record([&] { return attach(policies, asked); })["outcome"], "found");
    }
}

}  // namespace
}  // namespace velactl
