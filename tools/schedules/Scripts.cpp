// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Each script prepares a library that is connected and at rest, has a few threads do what it is
// about, and asks of every schedule the same: all come to an end, each got what it asked for, and
// the library still works.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "Modem.h"
#include "Scheduler.h"
#include "vela/Manager.h"

namespace schedules {

namespace {

using Key = std::shared_ptr<vela::IProfileKey>;

constexpr auto kModify = WDS_PROFILE_CHANGE_EVENT_MODIFY_V01;
constexpr auto kDelete = WDS_PROFILE_CHANGE_EVENT_DELETE_V01;

void require(bool holds, const std::string& what) {
    if (!holds) {
        Scheduler::instance().fail(what);
    }
}

/** Has all of them done at the same time, each on a thread of its own, and waits for their end. */
void atOnce(const std::vector<std::pair<const char*, std::function<void()>>>& actions) {
    auto& scheduler = Scheduler::instance();
    std::vector<std::thread> threads;
    for (const auto& [name, action] : actions) {
        scheduler.nameNext(name);
        threads.emplace_back(action);
    }
    scheduler.explore(true);
    // This thread takes no part: it goes on when nobody else can.
    scheduler.point(
        "waits for all", nullptr, [] { return false; }, scheduler.now());
    for (auto& thread : threads) {
        thread.join();
    }
    scheduler.explore(false);
}

/** The library on the modem. */
struct Connected {
    explicit Connected(vela::Manager& library) : library(library) {
        library.init(0, false);
        modem::comeUp();
        settle();
    }

    Key add() const {
        vela::AddProfileParams params(false, vela::TechType::TECH_3GPP, false);
        params.setApnName(modem::nameOf(modem::countOf(RLINK_WDS_CREATE_PROFILE_REQ_V01) + 1));
        auto key = library.addProfile(params);
        require(key != nullptr, "no key for a profile that was added");
        return key;
    }

    void dump() const {
        const auto lines = library.dump();
        require(std::count(lines.begin(), lines.end(), "Pending:") == 1,
                "a dump has not met the worker, which had nothing else to do");
    }

    /** The worker has done all that it was signalled. */
    void settle() const {
        dump();
        dump();
    }

    /** A caller that asks for one profile gets that one's parameters. */
    std::function<void()> asks(const Key& key) const {
        return [this, key] {
            const auto params = library.getProfile(key);
            require(params && params->getApnName() == modem::nameOf(key->getProfileId()),
                    "a caller got " + (params ? params->getApnName() : std::string("nothing")) +
                        " and had asked for " + modem::nameOf(key->getProfileId()));
        };
    }

    std::function<void()> dumps() const {
        return [this] { dump(); };
    }

    /** One client, no notifier, and a worker that answers. */
    void requireSound() const {
        settle();
        require(modem::openHandles() == 1, "not one client and no notifier");
        asks(add())();
    }

    vela::Manager& library;
};

std::function<void()> announces(int index, wds_profile_change_event_enum_v01 event) {
    return [=] { modem::announce(index, event); };
}

int readsOf(int index) {
    return modem::countOf(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01, index);
}

// ---- The scripts

void twoCallers(const Connected& scene) {
    atOnce({{"caller 1", scene.asks(scene.add())}, {"caller 2", scene.asks(scene.add())}});
}

void callerAndDump(const Connected& scene) {
    Key added;
    atOnce({{"caller", [&] { added = scene.add(); }}, {"dumper", scene.dumps()}});
}

void twoDumps(const Connected& scene) {
    atOnce({{"dumper 1", scene.dumps()}, {"dumper 2", scene.dumps()}});
}

void callerAndIndication(const Connected& scene) {
    const auto one = scene.add();
    modem::announce(1, kModify);  // of the library's own addition
    scene.settle();
    atOnce({{"caller", scene.asks(one)}, {"messaging", announces(1, kModify)}});
    scene.settle();
    require(readsOf(1) == 1, "a changed profile has not been read");
}

void twoIndications(const Connected& scene) {
    const std::array keys{scene.add(), scene.add()};
    for (const int index : {1, 2}) {
        modem::announce(index, kModify);
    }
    scene.settle();
    atOnce({{"messaging 1", announces(1, kModify)}, {"messaging 2", announces(2, kModify)}});
    scene.settle();
    require(readsOf(1) == 1 && readsOf(2) == 1, "not each changed profile has been read once");
}

void releaseOfDropped(const Connected& scene) {
    auto key = scene.add();
    bool isExpired = false;
    key->registerExpirationListener([&] { isExpired = true; });
    atOnce({{"owner", [&] { key.reset(); }}, {"messaging", announces(1, kDelete)}});
    scene.settle();
    require(!modem::has(1), "a profile outlives its last key");
    require(scene.library.filter({}).empty(), "a dropped profile is still there");
}

void listenerReleases(const Connected& scene) {
    auto one = scene.add();
    auto two = scene.add();
    const auto three = scene.add();
    one->registerExpirationListener([&] { two.reset(); });
    atOnce({{"caller", scene.asks(three)}, {"messaging", announces(1, kDelete)}});
    scene.settle();
    require(modem::countOf(RLINK_WDS_DELETE_PROFILE_REQ_V01, 2) == 1 && !modem::has(2),
            "the profile of a key that was dropped is not deleted once");
}

void initDuringCallbacks(const Connected& scene) {
    const auto key = scene.add();
    atOnce({{"starter", [&] { scene.library.init(0, false); }}, {"messaging", [&] {
                                                                     modem::announce(1, kModify);
                                                                     modem::comeUp();
                                                                 }}});
    modem::comeUp();
}

void stopDuringRelease() {
    auto library = std::make_unique<vela::Manager>();
    const Connected scene(*library);
    auto key = scene.add();
    atOnce({{"owner", [&] { key.reset(); }}, {"stopper", [&] { library.reset(); }}});
    require(modem::openHandles() == 0, "a handle is left");
}

void serviceDuringRequest(const Connected& scene) {
    Key key;
    atOnce({{"caller",
             [&] {
                 key = scene.library.addProfile({false, vela::TechType::TECH_3GPP, false});
             }},
            {"messaging", [&] {
                 modem::goDown();
                 modem::comeUp();
             }}});
    scene.settle();
    modem::comeUp();  // for a notifier that is made when all is over
}

void dropDuringExit() {
    auto& library = vela::Manager::getInstance();
    const Connected scene(library);
    auto& scheduler = Scheduler::instance();
    auto key = std::make_shared<Key>(scene.add());
    scheduler.nameNext("owner");
    std::thread([key, &library] {
        key->reset();
        library.filter({});
    }).detach();
    scheduler.explore(true);
    std::exit(0);  // NOLINT(concurrency-mt-unsafe): which is what is tried
}

/** A script of a library that goes on working. */
template <void (*Act)(const Connected& scene)>
void run() {
    vela::Manager library;
    const Connected scene(library);
    Act(scene);
    scene.requireSound();
}

}  // namespace

const std::vector<Script>& allScripts() {
    static const std::vector<Script> scripts{
        // that which takes longest comes first
        {"init-during-callbacks", run<initDuringCallbacks>},
        {"two-callers", run<twoCallers>},
        {"caller-and-dump", run<callerAndDump>},
        {"two-dumps", run<twoDumps>},
        {"caller-and-indication", run<callerAndIndication>},
        {"two-indications", run<twoIndications>},
        {"release-of-dropped", run<releaseOfDropped>},
        {"listener-releases", run<listenerReleases>},
        {"stop-during-release", stopDuringRelease},
        {"service-during-request", run<serviceDuringRequest>},
        {"drop-during-exit", dropDuringExit},
    };
    return scripts;
}

}  // namespace schedules
