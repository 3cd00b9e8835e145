// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/epoll.h>

#include <array>
#include <cstdint>
#include <functional>
#include <map>

#include "ApprovedDescriptors.h"
#include "EventFd.h"
#include "UniqueFd.h"

namespace vela {

/** Called on the worker thread for a descriptor that is ready, with the data it was added with. */
using EventCallback = void (*)(int fd, void* data);

/** Called when a descriptor with a handler closes or its handler is removed. */
using CloseCallback = void (*)(int fd, void* data);

/**
 * The event loop on which the worker thread sleeps.
 *
 * Takes no lock. Handlers are edited while the worker stands between two passes (see WorkerGate),
 * or by the worker itself; wake() alone may be called from any thread at any time.
 */
class EventManager {
  public:
    /** Logs and aborts when the kernel gives no epoll instance or eventfd. */
    EventManager();
    EventManager(const EventManager&) = delete;
    EventManager& operator=(const EventManager&) = delete;
    ~EventManager();

    /**
     * Watches `fd` and approves it for dispatching. The descriptor stays the caller's.
     * @param closeCb null for none
     * @param events epoll event mask
     * @return false when `fd` has a handler already (which stays) or cannot be watched
     */
    bool addEventHandler(int fd, EventCallback cb, void* data, CloseCallback closeCb, int events);

    /** Stops watching `fd`, and calls its close callback. Does not close it. */
    void removeEventHandler(int fd);

    /** Waits for events and dispatches at most 4 of them; between the two it calls `onWake`, if
     * any. */
    void processEvents(const std::function<void()>& onWake = {});

    /** Whether there are events to dispatch. Any thread. */
    bool hasEvents() const;

    /** Makes a waiting processEvents() return. Any thread. */
    void wake();

    /** Event callback that drains a descriptor. */
    static void clearRead(int fd, void* data);

    static bool isApprovedFd(int fd);
    static void addApprovedFd(int fd);
    static void remApprovedFd(int fd);

  private:
    struct HandlerObject {
        EventCallback eventCallback = nullptr;
        CloseCallback closeCallback = nullptr;
        void* data = nullptr;
        int events = 0;
    };
    static constexpr int kMaxEvents = 4;

    void dispatch(int fd, std::uint32_t events);
    void handleHangUp(int fd);
    void handleInput(int fd);

    static ApprovedDescriptors approvedFd;

    UniqueFd epollFd;
    EventFd wakeFd;
    std::map<int, HandlerObject> handlers;
    std::array<epoll_event, kMaxEvents> readyEvents{};
};

}  // namespace vela
