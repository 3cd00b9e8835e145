// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "EventManager.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "LogWrapper.h"

namespace vela {

namespace {

struct EventFlag {
    std::uint32_t bit;
    const char* name;
};

constexpr std::array<EventFlag, 15> kEventFlags{{
    {EPOLLIN, "EPOLLIN "},
    {EPOLLPRI, "EPOLLPRI "},
    {EPOLLOUT, "EPOLLOUT "},
    {EPOLLERR, "EPOLLERR "},
    {EPOLLHUP, "EPOLLHUP "},
    {EPOLLRDNORM, "EPOLLRDNORM "},
    {EPOLLRDBAND, "EPOLLRDBAND "},
    {EPOLLWRNORM, "EPOLLWRNORM "},
    {EPOLLWRBAND, "EPOLLWRBAND "},
    {EPOLLMSG, "EPOLLMSG "},
    {EPOLLRDHUP, "EPOLLRDHUP "},
    {EPOLLEXCLUSIVE, "EPOLLEXCLUSIVE "},
    {EPOLLWAKEUP, "EPOLLWAKEUP "},
    {EPOLLONESHOT, "EPOLLONESHOT "},
    {EPOLLET, "EPOLLET "},
}};

void logUnhandled(std::uint32_t events) {
    std::string names;
    for (const EventFlag& flag : kEventFlags) {
        if ((events & flag.bit) != 0) {
            names += flag.name;
        }
    }
    log(LogLevel::Info, "Unhandled epoll event: %s [flags 0%o]", names.c_str(), events);
}

int createEpoll() {
    const int fd = ::epoll_create1(EPOLL_CLOEXEC);
    if (fd == -1) {
        log(LogLevel::Error, "Cannot create epoll instance");
        std::abort();
    }
    return fd;
}

}  // namespace

constinit ApprovedDescriptors EventManager::approvedFd;

EventManager::EventManager() : epollFd(createEpoll()) {
    addEventHandler(wakeFd.get(), clearRead, nullptr, nullptr, EPOLLIN | EPOLLHUP);
    log(LogLevel::Verbose, "EventManager is ready. epollFd:%d", epollFd.get());
}

EventManager::~EventManager() {
    removeEventHandler(wakeFd.get());
    wakeFd.close();
    epollFd.reset();
}

bool EventManager::addEventHandler(int fd, EventCallback cb, void* data, CloseCallback closeCb,
                                   int events) {
    log(LogLevel::Verbose,
        "EventManager::addEventHandler(int %d, EventCallback %p, void* %p, CloseCallback %p, "
        "events %d) EX",
        fd, reinterpret_cast<void*>(cb), data, reinterpret_cast<void*>(closeCb), events);
    if (handlers.count(fd) != 0) {
        log(LogLevel::Info, "fd=%d is already in handlers", fd);
        return false;
    }
    epoll_event event{};
    event.events = static_cast<std::uint32_t>(events);
    event.data.fd = fd;
    if (::epoll_ctl(epollFd.get(), EPOLL_CTL_ADD, fd, &event) != 0) {
        log(LogLevel::Error, "Cannot add event handler");
        return false;
    }
    handlers[fd] = HandlerObject{cb, closeCb, data, events};
    addApprovedFd(fd);
    return true;
}

void EventManager::removeEventHandler(int fd) {
    log(LogLevel::Verbose, "EventManager::removeEventHandler(int fd) EX");
    if (::epoll_ctl(epollFd.get(), EPOLL_CTL_DEL, fd, nullptr) != 0) {
        log(LogLevel::Error, "Cannot remove event handler");
    }
    const auto found = handlers.find(fd);
    if (found != handlers.end() && found->second.closeCallback != nullptr) {
        found->second.closeCallback(fd, found->second.data);
    }
    const auto erased = handlers.erase(fd);
    if (erased != 1) {
        log(LogLevel::Error, "handlers.erase for fd %d, returned %d!", fd,
            static_cast<int>(erased));
    }
    remApprovedFd(fd);
}

bool EventManager::hasEvents() const {
    pollfd events{epollFd.get(), POLLIN, 0};
    return ::poll(&events, 1, 0) > 0;
}

void EventManager::processEvents(const std::function<void()>& onWake) {
    const int count = ::epoll_wait(epollFd.get(), readyEvents.data(), kMaxEvents, -1);
    if (onWake) {
        onWake();
    }
    if (count == -1) {
        log(LogLevel::Error, "epoll_wait error");
        return;
    }
    for (int i = 0; i < count; ++i) {
        const epoll_event event = readyEvents[static_cast<std::size_t>(i)];
        log(LogLevel::Verbose, "there are %d file descriptor(s) with events pending", count - i);
        log(LogLevel::Verbose, "processing event number: %d, handling %d for %d", i,
            static_cast<int>(event.events), event.data.fd);
        dispatch(event.data.fd, event.events);
    }
}

void EventManager::dispatch(int fd, std::uint32_t events) {
    if ((events & EPOLLHUP) != 0) {
        handleHangUp(fd);
    } else if ((events & EPOLLIN) != 0) {
        handleInput(fd);
    } else {
        logUnhandled(events);
    }
}

void EventManager::handleHangUp(int fd) {
    log(LogLevel::Info, "file descriptor '%d' sent HUP.", fd);
    removeEventHandler(fd);
    ::close(fd);
}

void EventManager::handleInput(int fd) {
    if (!isApprovedFd(fd)) {
        log(LogLevel::Info, "file descriptor %d is not on the approved list, cannot process event",
            fd);
        return;
    }
    const auto found = handlers.find(fd);
    if (found == handlers.end()) {
        log(LogLevel::Info, "file descriptor '%d' does not have an event handler registered", fd);
        return;
    }
    const HandlerObject handler = found->second;  // the callback may remove it
    log(LogLevel::Verbose, "file descriptor '%d' is processing events [callback:%p, data:%p]", fd,
        reinterpret_cast<void*>(handler.eventCallback), handler.data);
    if (handler.eventCallback == nullptr) {
        log(LogLevel::Error, "no callback registered");
        return;
    }
    handler.eventCallback(fd, handler.data);
}

void EventManager::wake() {
    log(LogLevel::Verbose, "EventManager::wake() EX");
    ssize_t written = 0;
    if (!wakeFd.signal(written)) {
        log(LogLevel::Info, "Error in writing rv: %d, error: %s", static_cast<int>(written),
            std::strerror(errno));
    }
}

void EventManager::clearRead(int fd, void* /*data*/) {
    constexpr std::size_t kChunk = 256;
    if (!EventFd::drain(fd, kChunk)) {
        log(LogLevel::Info, "Error while clearing the read buffer on fd %d", fd);
    }
}

bool EventManager::isApprovedFd(int fd) {
    return approvedFd.contains(fd);
}

void EventManager::addApprovedFd(int fd) {
    approvedFd.insert(fd);
}

void EventManager::remApprovedFd(int fd) {
    approvedFd.erase(fd);
}

}  // namespace vela
