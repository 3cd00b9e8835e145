// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "velasim/Journal.h"
#include "velasim/SimulatorOptions.h"

namespace velasim {

/**
 * The callbacks that wait, and the one thread that makes them, without a lock held. Knows receivers
 * only by their numbers. Any thread.
 */
class DeliveryQueue {
  public:
    struct Delivery {
        /** What is journaled; `client` is the receiver. */
        JournalEntry entry;
        std::function<void()> callback;
    };

    /** Stands for one queued delivery. */
    struct Item;
    using Ticket = std::shared_ptr<Item>;

    enum class Place {
        Last,
        BeforeOthersOfReceiver,
        First  // of all; waits for deliver(), so that several are queued before one is made
    };

    DeliveryQueue(Journal& journal, DeliveryMode mode);
    ~DeliveryQueue() { close(); }

    DeliveryQueue(const DeliveryQueue&) = delete;
    DeliveryQueue& operator=(const DeliveryQueue&) = delete;

    /** After close(), nothing is queued any more. */
    Ticket push(Delivery delivery, Place place);

    /** From now on; Immediate also for what is queued. */
    void setMode(DeliveryMode next);

    /** In Stepped mode too; waits until it has been made or dropped. On the queue's own thread:
     * does not wait. */
    void deliver(const Ticket& ticket);

    /** Drops what waits for a receiver. */
    void drop(std::uint32_t receiver);

    /** Waits until no callback for the receiver is running. On the queue's own thread: returns. */
    void waitUntilQuiet(std::uint32_t receiver);

    std::size_t size() const;
    bool deliverNext();
    std::size_t deliverAll();
    void waitIdle();

    /** Drops everything and ends the thread. Not on the queue's own thread. */
    void close();

  private:
    std::deque<Ticket>::iterator positionFor(const Item& item);
    void run();
    void makeCallback(std::unique_lock<std::mutex>& lock, const Ticket& ticket);
    Ticket takeGranted();
    void finish(const Ticket& ticket);
    bool isOwnThread() const { return std::this_thread::get_id() == threadId; }

    Journal& journal;
    mutable std::mutex mutex;
    std::condition_variable workable;
    std::condition_variable settled;
    // Guarded by `mutex`.
    DeliveryMode mode;
    std::deque<Ticket> queue;
    Ticket running;
    bool closed = false;

    std::thread thread;  // after what it uses
    const std::thread::id threadId;
};

}  // namespace velasim
