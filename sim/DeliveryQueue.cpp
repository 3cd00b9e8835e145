// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "DeliveryQueue.h"

#include <algorithm>
#include <utility>

namespace velasim {

struct DeliveryQueue::Item {
    Delivery delivery;
    Place place;
    bool isGranted;           // the thread may make it
    bool isFinished = false;  // made or dropped

    std::uint32_t receiver() const { return delivery.entry.client; }
};

DeliveryQueue::DeliveryQueue(Journal& journal, DeliveryMode mode)
    : journal(journal), mode(mode), thread([this] { run(); }), threadId(thread.get_id()) {}

DeliveryQueue::Ticket DeliveryQueue::push(Delivery delivery, Place place) {
    const std::lock_guard lock(mutex);
    const bool isGranted = mode == DeliveryMode::Immediate && place != Place::First;
    auto ticket = std::make_shared<Item>(Item{std::move(delivery), place, isGranted});
    if (closed) {
        ticket->isFinished = true;
        return ticket;
    }
    queue.insert(positionFor(*ticket), ticket);
    workable.notify_one();
    return ticket;
}

void DeliveryQueue::setMode(DeliveryMode next) {
    const std::lock_guard lock(mutex);
    mode = next;
    for (const auto& ticket : queue) {
        ticket->isGranted =
            ticket->isGranted || (mode == DeliveryMode::Immediate && ticket->place != Place::First);
    }
    workable.notify_one();
    settled.notify_all();
}

std::deque<DeliveryQueue::Ticket>::iterator DeliveryQueue::positionFor(const Item& item) {
    if (item.place == Place::Last) {
        return queue.end();
    }
    return std::find_if(queue.begin(), queue.end(), [&](const Ticket& other) {
        return item.place == Place::First ? other->place != Place::First
                                          : other->receiver() == item.receiver();
    });
}

void DeliveryQueue::deliver(const Ticket& ticket) {
    std::unique_lock lock(mutex);
    ticket->isGranted = true;
    workable.notify_one();
    if (!isOwnThread()) {
        settled.wait(lock, [&] { return ticket->isFinished; });
    }
}

void DeliveryQueue::drop(std::uint32_t receiver) {
    const std::lock_guard lock(mutex);
    std::deque<Ticket> kept;
    for (auto& ticket : std::exchange(queue, {})) {
        if (ticket->receiver() == receiver) {
            finish(ticket);
        } else {
            kept.push_back(std::move(ticket));
        }
    }
    queue = std::move(kept);
    settled.notify_all();
}

void DeliveryQueue::finish(const Ticket& ticket) {
    ticket->isFinished = true;
    if (ticket->delivery.entry.kind == JournalKind::IndicationDelivered) {
        ticket->delivery.entry.kind = JournalKind::IndicationDropped;
        journal.add(ticket->delivery.entry);
    }
}

void DeliveryQueue::waitUntilQuiet(std::uint32_t receiver) {
    if (!isOwnThread()) {
        std::unique_lock lock(mutex);
        settled.wait(lock, [&] { return !running || running->receiver() != receiver; });
    }
}

std::size_t DeliveryQueue::size() const {
    const std::lock_guard lock(mutex);
    return queue.size();
}

bool DeliveryQueue::deliverNext() {
    std::unique_lock lock(mutex);
    if (queue.empty() || isOwnThread()) {
        return false;
    }
    const Ticket next = queue.front();
    next->isGranted = true;
    workable.notify_one();
    settled.wait(lock, [&] { return next->isFinished; });
    return true;
}

std::size_t DeliveryQueue::deliverAll() {
    std::size_t count = 0;
    while (deliverNext()) {
        ++count;
    }
    return count;
}

void DeliveryQueue::waitIdle() {
    if (isOwnThread()) {
        return;
    }
    std::unique_lock lock(mutex);
    for (;;) {
        settled.wait(lock, [&] {
            return !running && (mode == DeliveryMode::Stepped || queue.empty() || closed);
        });
        if (queue.empty() || closed) {
            return;
        }
        lock.unlock();
        deliverNext();
        lock.lock();
    }
}

void DeliveryQueue::close() {
    {
        const std::lock_guard lock(mutex);
        closed = true;
        for (const auto& ticket : std::exchange(queue, {})) {
            ticket->isFinished = true;
        }
    }
    workable.notify_all();
    settled.notify_all();
    if (thread.joinable()) {
        thread.join();
    }
}

void DeliveryQueue::run() {
    std::unique_lock lock(mutex);
    for (;;) {
        Ticket ticket;
        workable.wait(lock, [&] { return closed || (ticket = takeGranted()) != nullptr; });
        if (closed) {
            return;
        }
        makeCallback(lock, ticket);
    }
}

DeliveryQueue::Ticket DeliveryQueue::takeGranted() {
    const auto found = std::find_if(queue.begin(), queue.end(),
                                    [](const Ticket& ticket) { return ticket->isGranted; });
    if (found == queue.end()) {
        return nullptr;
    }
    Ticket ticket = *found;
    queue.erase(found);
    return ticket;
}

void DeliveryQueue::makeCallback(std::unique_lock<std::mutex>& lock, const Ticket& ticket) {
    running = ticket;
    journal.add(ticket->delivery.entry);
    lock.unlock();
    ticket->delivery.callback();
    lock.lock();
    ticket->isFinished = true;
    running.reset();
    settled.notify_all();
}

}  // namespace velasim
