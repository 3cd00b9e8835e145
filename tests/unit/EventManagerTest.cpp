// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "EventManager.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>
#include <utility>

#include "LogCapture.h"

namespace vela {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Pair;

/** Counts calls and leaves the descriptor readable, or drains it. */
struct Counter {
    int calls = 0;
    int closed = 0;
    static void count(int, void* data) { ++static_cast<Counter*>(data)->calls; }
    static void countAndDrain(int fd, void* data) {
        count(fd, data);
        EventFd::drain(fd);
    }
    static void close(int, void* data) { ++static_cast<Counter*>(data)->closed; }
};

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
    Pipe() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
        readEnd = UniqueFd(ends[0]);
        writeEnd = UniqueFd(ends[1]);
    }
};

void signal(const EventFd& fd) {
    ssize_t written = 0;
    ASSERT_TRUE(fd.signal(written));
}

class EventManagerTest : public testing::Test {
  protected:
    /** One line that has been logged since the last call. */
    void expectLogged(LogLevel level, const std::string& message) {
        EXPECT_THAT(capture.take(), Contains(Pair(level, message)));
    }

    LogCapture capture;
    EventManager events;
    Counter counter;
};

TEST_F(EventManagerTest, ServesFourDescriptorsAPass) {
    std::array<EventFd, 6> fds;
    for (EventFd& fd : fds) {
        ASSERT_TRUE(events.addEventHandler(fd.get(), Counter::countAndDrain, &counter, nullptr, 1));
        signal(fd);
    }
    events.processEvents();
    EXPECT_EQ(counter.calls, 4);
    std::string left;
    for (const auto& [level, text] : capture.take()) {
        left += text.rfind("there are ", 0) == 0 ? text.substr(10, 1) : "";
    }
    EXPECT_EQ(left, "4321");
    events.processEvents();
    EXPECT_EQ(counter.calls, 6);
}

TEST_F(EventManagerTest, SecondHandlerOfADescriptorIsRefused) {
    EventFd fd;
    Counter second;
    EXPECT_TRUE(events.addEventHandler(fd.get(), Counter::countAndDrain, &counter, nullptr, 1));
    EXPECT_FALSE(events.addEventHandler(fd.get(), Counter::countAndDrain, &second, nullptr, 1));
    expectLogged(LogLevel::Info, "fd=" + std::to_string(fd.get()) + " is already in handlers");
    signal(fd);
    events.processEvents();
    EXPECT_EQ(counter.calls, 1);
    EXPECT_EQ(second.calls, 0);
}

TEST_F(EventManagerTest, OnlyApprovedDescriptorsAreDispatched) {
    EventFd fd;
    events.addEventHandler(fd.get(), Counter::count, &counter, nullptr, 1);
    EXPECT_TRUE(EventManager::isApprovedFd(fd.get()));
    EventManager::remApprovedFd(fd.get());
    signal(fd);
    events.processEvents();
    EXPECT_EQ(counter.calls, 0);
    expectLogged(LogLevel::Info, "file descriptor " + std::to_string(fd.get()) +
                                     " is not on the approved list, cannot process event");
    EventManager::addApprovedFd(fd.get());
    events.processEvents();
    EXPECT_EQ(counter.calls, 1);
    events.removeEventHandler(fd.get());
    EXPECT_FALSE(EventManager::isApprovedFd(fd.get()));
    constexpr int kLast = (1 << 20) - 1;
    EventManager::addApprovedFd(kLast);
    EXPECT_TRUE(EventManager::isApprovedFd(kLast) && !EventManager::isApprovedFd(kLast - 1));
    EventManager::remApprovedFd(kLast);
    EXPECT_FALSE(EventManager::isApprovedFd(kLast));
    for (const int none : {-1, 1 << 20}) {
        EventManager::addApprovedFd(none);
        EXPECT_FALSE(EventManager::isApprovedFd(none));
    }
}

TEST_F(EventManagerTest, HangUpClosesWithoutAnEventCallback) {
    Pipe pipe;
    const int fd = pipe.readEnd.get();
    events.addEventHandler(fd, Counter::count, &counter, Counter::close, EPOLLIN | EPOLLHUP);
    ASSERT_EQ(::write(pipe.writeEnd.get(), "x", 1), 1);
    pipe.writeEnd.reset();
    events.processEvents();
    EXPECT_EQ(counter.calls, 0);
    EXPECT_EQ(counter.closed, 1);
    EXPECT_EQ(::fcntl(fd, F_GETFD), -1);
    EXPECT_FALSE(EventManager::isApprovedFd(fd));
    expectLogged(LogLevel::Info, "file descriptor '" + std::to_string(fd) + "' sent HUP.");
}

TEST_F(EventManagerTest, OtherEventsAreOnlyLogged) {
    Pipe pipe;
    events.addEventHandler(pipe.writeEnd.get(), Counter::count, &counter, nullptr, EPOLLOUT);
    events.processEvents();
    EXPECT_EQ(counter.calls, 0);
    expectLogged(LogLevel::Info, "Unhandled epoll event: EPOLLOUT  [flags 04]");
}

TEST_F(EventManagerTest, MissingCallbackAndFailuresAreLogged) {
    EventFd fd;
    events.addEventHandler(fd.get(), nullptr, nullptr, nullptr, 1);
    signal(fd);
    events.processEvents();
    expectLogged(LogLevel::Error, "no callback registered");

    EXPECT_FALSE(events.addEventHandler(-1, Counter::count, &counter, nullptr, 1));
    expectLogged(LogLevel::Error, "Cannot add event handler");
    events.removeEventHandler(12345);
    EXPECT_THAT(capture.take(),
                ElementsAre(Pair(LogLevel::Verbose, "EventManager::removeEventHandler(int fd) EX"),
                            Pair(LogLevel::Error, "Cannot remove event handler"),
                            Pair(LogLevel::Error, "handlers.erase for fd 12345, returned 0!")));
}

TEST_F(EventManagerTest, HandlerMayRemoveItself) {
    EventFd fd;
    std::pair both{&events, &counter};
    const auto remove = [](int ready, void* data) {
        auto& [manager, counted] = *static_cast<decltype(both)*>(data);
        manager->removeEventHandler(ready);
        ++counted->calls;
    };
    events.addEventHandler(fd.get(), remove, &both, nullptr, 1);
    signal(fd);
    events.processEvents();
    EXPECT_EQ(counter.calls, 1);
}

TEST_F(EventManagerTest, WakeEndsOneWait) {
    std::thread waker([this] { events.wake(); });
    events.processEvents();
    waker.join();
    events.wake();
    events.wake();
    events.processEvents();  // one pass takes both
    EventFd fd;
    events.addEventHandler(fd.get(), Counter::countAndDrain, &counter, nullptr, 1);
    signal(fd);
    events.processEvents();
    EXPECT_EQ(counter.calls, 1);
    EXPECT_THAT(capture.take(), Contains(Pair(LogLevel::Verbose, "EventManager::wake() EX")));
}

}  // namespace
}  // namespace vela
