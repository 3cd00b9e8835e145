// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What the system and the messaging library do to the library, and what it gives them. The linker
// has these calls come here first.
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <future>
#include <limits>
#include <set>
#include <thread>

#include "ClientRequestManager.h"
#include "support/ClientFixture.h"
#include "support/DeathTests.h"
#include "support/LogCapture.h"
#include "vela/Observer.h"

namespace {

// What still succeeds, or shall fail once.
std::atomic<int> epollsLeft = std::numeric_limits<int>::max();
std::atomic<int> eventFdsLeft = std::numeric_limits<int>::max();
std::atomic<int> registrationsLeft = std::numeric_limits<int>::max();
std::atomic<bool> isWaitInterrupted = false;
std::atomic<bool> isReadFailing = false;
thread_local bool isWriteFailing = false;

// What the messaging library was given.
struct Given {
    rlink_notify_cb onNotify;
    rlink_error_cb onError;
    void* proxy;
    std::set<unsigned> timeOuts;
    std::size_t usedOsParams;
    std::size_t strangersReleased;
} given;  // written by the worker, read at rest

rlink_client_type stranger() {
    return reinterpret_cast<rlink_client_type>(&given);
}
bool isNotifierFailing = false;
std::function<void()> duringMessage = [] {};

template <typename Call>
auto unless(bool fails, int error, Call call) -> decltype(call()) {
    if (fails) {
        errno = error;
        return -1;
    }
    return call();
}

void use(rlink_client_os_params& params) {
    for (std::uint64_t& part : params.reserved) {
        given.usedOsParams += part == 0 ? 0U : 1U;
        part = ~std::uint64_t{0};
    }
}

}  // namespace

#pragma GCC visibility push(default)  // for sanitizers that are libraries
extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names

decltype(epoll_create1) __real_epoll_create1;
int __wrap_epoll_create1(int flags) {
    return unless(epollsLeft-- <= 0, EMFILE, [&] { return __real_epoll_create1(flags); });
}

decltype(eventfd) __real_eventfd;
int __wrap_eventfd(unsigned count, int flags) {
    return unless(eventFdsLeft-- <= 0, EMFILE, [&] { return __real_eventfd(count, flags); });
}

decltype(epoll_ctl) __real_epoll_ctl;
int __wrap_epoll_ctl(int epoll, int what, int fd, epoll_event* event) {
    const bool fails = what == EPOLL_CTL_ADD && registrationsLeft-- <= 0;
    return unless(fails, ENOSPC, [&] { return __real_epoll_ctl(epoll, what, fd, event); });
}

decltype(epoll_wait) __real_epoll_wait;
int __wrap_epoll_wait(int epoll, epoll_event* events, int most, int timeOut) {
    return unless(isWaitInterrupted.exchange(false), EINTR,
                  [&] { return __real_epoll_wait(epoll, events, most, timeOut); });
}

decltype(read) __real_read;
ssize_t __wrap_read(int fd, void* data, size_t size) {
    return unless(isReadFailing.exchange(false), EIO, [&] { return __real_read(fd, data, size); });
}

decltype(write) __real_write;
ssize_t __wrap_write(int fd, const void* data, size_t size) {
    return unless(std::exchange(isWriteFailing, false), EAGAIN,
                  [&] { return __real_write(fd, data, size); });
}

decltype(rlink_client_notifier_init) __real_rlink_client_notifier_init;
int __wrap_rlink_client_notifier_init(rlink_service_object_type service,
                                      rlink_client_os_params* params, rlink_client_type* notifier) {
    use(*params);
    if (isNotifierFailing) {
        *notifier = stranger();
        return RLINK_ERROR_INTERNAL;
    }
    return __real_rlink_client_notifier_init(service, params, notifier);
}

decltype(rlink_client_register_notify_cb) __real_rlink_client_register_notify_cb;
int __wrap_rlink_client_register_notify_cb(rlink_client_type notifier, rlink_notify_cb callback,
                                           void* data) {
    given.onNotify = callback;
    given.proxy = data;
    return __real_rlink_client_register_notify_cb(notifier, callback, data);
}

decltype(rlink_client_init) __real_rlink_client_init;
int __wrap_rlink_client_init(rlink_service_info* info, rlink_service_object_type service,
                             rlink_ind_cb callback, void* data, rlink_client_os_params* params,
                             rlink_client_type* client) {
    use(*params);
    const int result = __real_rlink_client_init(info, service, callback, data, params, client);
    if (result != RLINK_NO_ERROR) {
        *client = stranger();
    }
    return result;
}

decltype(rlink_client_register_error_cb) __real_rlink_client_register_error_cb;
int __wrap_rlink_client_register_error_cb(rlink_client_type client, rlink_error_cb callback,
                                          void* data) {
    given.onError = callback;
    return __real_rlink_client_register_error_cb(client, callback, data);
}

decltype(rlink_client_send_msg_sync) __real_rlink_client_send_msg_sync;
int __wrap_rlink_client_send_msg_sync(rlink_client_type client, unsigned id, void* request,
                                      unsigned size, void* response, unsigned room,
                                      unsigned timeOut) {
    given.timeOuts.insert(timeOut);
    duringMessage();
    return __real_rlink_client_send_msg_sync(client, id, request, size, response, room, timeOut);
}

decltype(rlink_client_release) __real_rlink_client_release;
int __wrap_rlink_client_release(rlink_client_type client) {
    given.strangersReleased += client == stranger() ? 1U : 0U;
    return __real_rlink_client_release(client);
}

// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

}  // extern "C"
#pragma GCC visibility pop

namespace vela {
namespace {

using testing::Contains;
using testing::Pair;
using testing::StartsWith;

/** Writes level and text to the error stream, where death tests look. */
class ErrorStreamWriter : public LogWriter {
  public:
    void write(LogLevel level, std::string /*tag*/, std::string message) override {
        std::fprintf(stderr, "<%d %s>", convertPrio(level), message.c_str());
    }
    int convertPrio(LogLevel level) override { return static_cast<int>(level); }
};

[[noreturn]] void startWith(int epolls, int eventFds, int registrations) {
    LogWrapper::getInstance().setLogWriter(std::make_unique<ErrorStreamWriter>());
    epollsLeft = epolls;
    eventFdsLeft = eventFds;
    registrationsLeft = registrations;
    std::make_unique<ClientRequestManager>(0).reset();
    std::exit(0);
}

TEST(BoundaryDeathTest, StartNeedsItsDescriptors) {
    runDeathTestsAfresh();
    constexpr int kAny = std::numeric_limits<int>::max();
    const std::string end = "\\s*(qemu: .*)?$";  // an emulator tells of the abort itself
    EXPECT_DEATH(startWith(0, kAny, kAny), "<3 Cannot create epoll instance>" + end);
    for (int eventFds = 0; eventFds < 4; ++eventFds) {
        EXPECT_DEATH(startWith(1, eventFds, kAny), "<3 Cannot create eventfd instance>" + end);
    }
    EXPECT_DEATH(startWith(1, 4, kAny),
                 "<5 VELA thread started>.*<3 Cannot create eventfd instance>" + end);
    EXPECT_DEATH(startWith(1, 5, 4), "<5 VELA thread started>.*<3 Cannot add event handler>" + end);
    EXPECT_EXIT(startWith(1, 5, 5), testing::ExitedWithCode(0),
                "<0 EventManager::addEventHandler\\(int [0-9]+, .*, events 17\\) EX>.*"
                "<1 vela::ClientRequestManager: destructor>");
}

[[noreturn]] void dropProfileWith(const std::function<void()>& listener) {
    velasim::Simulator simulator;
    Manager manager;
    manager.init(0, false);
    simulator.waitSubscribed();
    const Key key = manager.addProfile({true, TechType::TECH_3GPP, false});
    key->registerExpirationListener(listener);
    manager.deleteProfile(key);
    std::exit(0);
}

TEST(BoundaryDeathTest, ListenersThatThrowEndTheProcess) {
    runDeathTestsAfresh();
    EXPECT_EXIT(dropProfileWith({}), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(dropProfileWith([] { throw 1; }), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(dropProfileWith([] {}), testing::ExitedWithCode(0), "");
}

class BoundaryTest : public ClientFixture {
  protected:
    void TearDown() override { isNotifierFailing = false; }

    LogCapture capture;
};

TEST_F(BoundaryTest, StartNeedsItsThread) {
    pthread_attr_t former;
    pthread_attr_t huge;
    ASSERT_EQ(pthread_getattr_default_np(&former), 0);
    ASSERT_EQ(pthread_attr_init(&huge), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 62U), 0);
    ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
    std::string reason;
    try {
        manager.init(0, false);
    } catch (const std::system_error& error) {
        reason = error.what();
    }
    ASSERT_EQ(pthread_setattr_default_np(&former), 0);
    EXPECT_THAT(reason, StartsWith("thread constructor failed"));
}

TEST_F(BoundaryTest, FailuresOnTheWayAreTold) {
    ClientRequestManager pipeline(0);
    const auto request = std::make_shared<GetRequest>(nullptr);
    const auto& line = pipeline.getLine();
    const auto saidAfter = [&](const auto& act) {
        capture.take();
        act();
        EXPECT_NE(line->post(request), nullptr);
        return capture.take();
    };
    EXPECT_THAT(saidAfter([&] {
                    isWriteFailing = true;
                    EXPECT_EQ(line->post(request), nullptr);
                }),
                Contains(Pair(LogLevel::Error, StartsWith("error in writing rv: -1 error: "))));
    EXPECT_THAT(saidAfter([&] {
                    isReadFailing = true;
                    line->post(request);
                }),
                Contains(Pair(LogLevel::Error, StartsWith("Error while clearing the read"))));
    EXPECT_THAT(saidAfter([&] {
                    isReadFailing = true;
                    line->dump();  // which wakes the worker
                    while (isReadFailing) {
                        std::this_thread::yield();
                    }
                }),
                Contains(Pair(LogLevel::Info, StartsWith("Error while clearing the read"))));
    EXPECT_THAT(saidAfter([&] {
                    isWaitInterrupted = true;
                    line->post(request);
                }),
                Contains(Pair(LogLevel::Error, "epoll_wait error")));
}

TEST_F(BoundaryTest, RequestsOfAWrongClassFail) {
    ClientRequestManager pipeline(0);
    for (int type = 0; type < 8; ++type) {
        const auto response =
            pipeline.getLine()->post(std::make_shared<ClientRequest>(ReqRespType{type}));
        ASSERT_NE(response, nullptr);
        EXPECT_EQ(response->getStatus(), Status::Failure) << type;
        EXPECT_EQ(static_cast<int>(response->getResponseType()), type);
    }
    EXPECT_EQ(pipeline.getLine()->post(std::make_shared<ClientRequest>(ReqRespType{8})), nullptr);
}

TEST_F(BoundaryTest, EveryInitBringsItsOwnSink) {
    manager.init(0, false);
    settle();
    const std::size_t former = logged("Manager::init(1)");
    const LogCapture other;
    capture.take();
    manager.init(1, false);
    EXPECT_THAT(capture.take(), testing::IsEmpty());
    EXPECT_EQ(logged("Manager::init(1)"), former + 1);
    EXPECT_THAT(manager.dump(), Contains(testing::EndsWith("[VELA]Manager::init(1)")));
}

TEST_F(BoundaryTest, WhatTheMessagingLibraryIsGiven) {
    given = {};
    start();
    EXPECT_NE(add("apn=a"), nullptr);
    given.onNotify(nullptr, nullptr, RLINK_SERVICE_GONE, given.proxy);
    settle();
    EXPECT_EQ(logged("RlinkWdsProxy notify cb: unsupported service event"), 1U);
    EXPECT_EQ(logged("RlinkWdsProxy service is up, trying to initialize svc client"), 0U);

    modem.serviceDown();
    settle();
    given.onError(nullptr, RLINK_ERROR_SERVICE, given.proxy);
    settle();
    given.onError(nullptr, RLINK_ERROR_SERVICE, given.proxy);
    settle();
    EXPECT_EQ(modem.openHandles(), 1U) << "one outage, one notifier";

    modem.serviceUp();
    settle();
    given.onNotify(nullptr, nullptr, RLINK_SERVICE_AVAILABLE, given.proxy);
    settle();
    EXPECT_EQ(modem.openHandles(), 1U) << "one client, however often the service comes";

    fault(velasim::Fault::ClientInitFailure);
    manager.init(0, false);
    settle();
    isNotifierFailing = true;
    manager.init(0, false);
    settle();
    manager.init(0, false);
    EXPECT_EQ(given.strangersReleased, 0U);
    EXPECT_EQ(given.usedOsParams, 0U);
    EXPECT_THAT(given.timeOuts, testing::ElementsAre(1000U));
}

TEST_F(BoundaryTest, AnObserverThatComesDuringAMessageIsNotToldOfIt) {
    struct Counter : Observer {
        void onMessage(const ModemMessage& /*message*/) override { ++messages; }
        int messages = 0;
    };
    const auto counter = std::make_shared<Counter>();
    start();
    setObserver(counter);
    add("apn=a");
    setObserver(nullptr);
    duringMessage = [&counter] { setObserver(counter); };
    add("apn=b");
    duringMessage = [] {};
    EXPECT_EQ(counter->messages, 1);
    add("apn=c");
    EXPECT_EQ(counter->messages, 2);
    setObserver(nullptr);
}

TEST_F(BoundaryTest, DumpTellsOfAWorkerThatIsStuck) {
    std::vector<std::string> lines;
    const auto dumpElsewhere = [&] {
        lines = std::async(std::launch::async, [&] { return manager.dump(); }).get();
    };
    const auto says = [](const std::string& text) {
        return Contains(testing::ContainsRegex(text));
    };
    start();
    const Key key = add("apn=internet");
    key->registerExpirationListener([&] {
        EXPECT_THAT(lines, says("busy for [0-9]+ ms with Delete, message 41 to the modem"));
        dumpElsewhere();
    });
    duringMessage = dumpElsewhere;
    EXPECT_TRUE(manager.deleteProfile(key));
    duringMessage = [] {};
    EXPECT_THAT(lines, says("busy for [0-9]+ ms with Delete, no message to the modem"));
    EXPECT_THAT(lines, says("Manager::deleteProfile >"));
    EXPECT_THAT(manager.dump(), testing::Not(says("busy for")));
}

}  // namespace
}  // namespace vela
