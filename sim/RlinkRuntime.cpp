// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "RlinkRuntime.h"

#include <algorithm>
#include <utility>

namespace velasim {

rlink_client_type RlinkRuntime::toClient(Handle handle) {
    // An opaque number to the client, never dereferenced.
    return reinterpret_cast<rlink_client_type>(handle);  // NOLINT(performance-no-int-to-ptr)
}

RlinkRuntime::RlinkRuntime(Journal& journal, DeliveryMode mode, bool isServiceUp)
    : journal(journal), up(isServiceUp), queued(journal, mode) {}

int RlinkRuntime::createNotifier(Handle handle) {
    const std::lock_guard lock(mutex);
    Endpoint endpoint{};
    endpoint.handle = handle;
    note(JournalKind::NotifierCreated, add(std::move(endpoint)));
    return RLINK_NO_ERROR;
}

int RlinkRuntime::watchService(Handle handle, rlink_notify_cb callback,
                               rlink_service_object_type service, void* data) {
    const std::lock_guard lock(mutex);
    const auto found = find(handle);
    if (found == endpoints.end() || found->second.isClient) {
        return RLINK_ERROR_CLIENT;
    }
    found->second.onNotify = callback;
    found->second.service = service;
    found->second.data = data;
    if (up) {
        pushNotify(found->first, found->second, RLINK_SERVICE_AVAILABLE);
    }
    return RLINK_NO_ERROR;
}

int RlinkRuntime::connect(Handle handle, rlink_ind_cb callback, void* data) {
    const std::lock_guard lock(mutex);
    if (!up) {
        note(JournalKind::ClientConnected, 0, RLINK_ERROR_SERVICE);
        return RLINK_ERROR_SERVICE;
    }
    Endpoint endpoint{};
    endpoint.handle = handle;
    endpoint.isClient = true;
    endpoint.isConnected = true;
    endpoint.onIndication = callback;
    endpoint.data = data;
    note(JournalKind::ClientConnected, add(std::move(endpoint)));
    return RLINK_NO_ERROR;
}

int RlinkRuntime::watchErrors(Handle handle, rlink_error_cb callback, void* data) {
    const std::lock_guard lock(mutex);
    const auto found = find(handle);
    if (found == endpoints.end() || !found->second.isClient) {
        return RLINK_ERROR_CLIENT;
    }
    found->second.onError = callback;
    found->second.errorData = data;
    if (!found->second.isConnected) {
        pushError(found->first, found->second);
    }
    return RLINK_NO_ERROR;
}

std::uint32_t RlinkRuntime::release(Handle handle) {
    std::uint32_t number = 0;
    {
        const std::lock_guard lock(mutex);
        const auto found = find(handle);
        if (found == endpoints.end()) {
            return 0;
        }
        number = found->first;
        note(JournalKind::Released, number);
        dropHeld(found->second);
        endpoints.erase(found);
    }
    queued.drop(number);
    queued.waitUntilQuiet(number);
    return number;
}

bool RlinkRuntime::owns(Handle handle) const {
    const std::lock_guard lock(mutex);
    return find(handle) != endpoints.end();
}

std::uint32_t RlinkRuntime::clientOf(Handle handle) const {
    const std::lock_guard lock(mutex);
    const auto found = find(handle);
    return found != endpoints.end() && found->second.isClient ? found->first : 0;
}

bool RlinkRuntime::isServiceUp() const {
    const std::lock_guard lock(mutex);
    return up;
}

bool RlinkRuntime::isConnected(std::uint32_t client) const {
    const std::lock_guard lock(mutex);
    const auto found = endpoints.find(client);
    return found != endpoints.end() && found->second.isConnected;
}

std::vector<std::uint32_t> RlinkRuntime::connectedClients() const {
    const std::lock_guard lock(mutex);
    std::vector<std::uint32_t> clients;
    for (const auto& [number, endpoint] : endpoints) {
        if (endpoint.isConnected) {
            clients.push_back(number);
        }
    }
    return clients;
}

std::size_t RlinkRuntime::openHandles() const {
    const std::lock_guard lock(mutex);
    return endpoints.size();
}

void RlinkRuntime::serviceUp() {
    const std::lock_guard lock(mutex);
    up = true;
    note(JournalKind::ServiceUp, 0);
    notifyAll(RLINK_SERVICE_AVAILABLE);
}

void RlinkRuntime::serviceDown() {
    const std::lock_guard lock(mutex);
    up = false;
    note(JournalKind::ServiceDown, 0);
    for (auto& [number, endpoint] : endpoints) {
        disconnect(number, endpoint);
    }
    notifyAll(RLINK_SERVICE_GONE);
}

DeliveryQueue::Ticket RlinkRuntime::queue(const Indication& indication,
                                          DeliveryQueue::Place place) {
    const std::lock_guard lock(mutex);
    const auto found = endpoints.find(indication.client);
    if (found == endpoints.end() || !found->second.isConnected) {
        return nullptr;
    }
    auto& endpoint = found->second;
    auto ticket = push(endpoint, indication, place);
    std::for_each(endpoint.held.begin(), endpoint.held.end(), [](Held& held) { --held.further; });
    for (const auto& held : endpoint.held) {
        if (held.further == 0) {
            push(endpoint, held.indication, DeliveryQueue::Place::Last);
        }
    }
    std::erase_if(endpoint.held, [](const Held& held) { return held.further == 0; });
    return ticket;
}

void RlinkRuntime::hold(const Indication& indication, std::uint32_t further) {
    const std::lock_guard lock(mutex);
    const auto found = endpoints.find(indication.client);
    if (found != endpoints.end() && found->second.isConnected) {
        found->second.held.push_back({indication, std::max(further, 1U)});
    }
}

std::size_t RlinkRuntime::releaseHeld() {
    const std::lock_guard lock(mutex);
    std::size_t count = 0;
    for (auto& [number, endpoint] : endpoints) {
        for (const auto& held : std::exchange(endpoint.held, {})) {
            push(endpoint, held.indication, DeliveryQueue::Place::Last);
            ++count;
        }
    }
    return count;
}

void RlinkRuntime::close() {
    queued.close();  // before handles are forgotten: a release must find the callback to wait for
    const std::lock_guard lock(mutex);
    endpoints.clear();
    up = false;
}

RlinkRuntime::Endpoints::iterator RlinkRuntime::find(Handle handle) {
    return std::find_if(endpoints.begin(), endpoints.end(),
                        [&](const auto& item) { return item.second.handle == handle; });
}

RlinkRuntime::Endpoints::const_iterator RlinkRuntime::find(Handle handle) const {
    return std::find_if(endpoints.begin(), endpoints.end(),
                        [&](const auto& item) { return item.second.handle == handle; });
}

void RlinkRuntime::note(JournalKind kind, std::uint32_t client, int result) {
    JournalEntry entry;
    entry.kind = kind;
    entry.client = client;
    entry.result = result;
    journal.add(std::move(entry));
}

std::uint32_t RlinkRuntime::add(Endpoint endpoint) {
    endpoints.emplace(++lastNumber, std::move(endpoint));
    return lastNumber;
}

void RlinkRuntime::disconnect(std::uint32_t number, Endpoint& endpoint) {
    if (endpoint.isConnected) {
        endpoint.isConnected = false;
        dropHeld(endpoint);
        queued.drop(number);
        pushError(number, endpoint);
    }
}

void RlinkRuntime::dropHeld(Endpoint& endpoint) {
    for (auto& held : std::exchange(endpoint.held, {})) {
        held.indication.kind = JournalKind::IndicationDropped;
        journal.add(std::move(held.indication));
    }
}

DeliveryQueue::Ticket RlinkRuntime::push(const Endpoint& endpoint, const Indication& indication,
                                         DeliveryQueue::Place place) {
    DeliveryQueue::Delivery delivery{indication, {}};
    delivery.entry.kind = JournalKind::IndicationQueued;
    journal.add(delivery.entry);
    delivery.entry.kind = JournalKind::IndicationDelivered;
    delivery.callback = [callback = endpoint.onIndication, client = toClient(endpoint.handle),
                         data = endpoint.data, messageId = indication.messageId,
                         bytes = indication.bytes]() mutable {
        if (callback != nullptr) {
            callback(client, messageId, bytes.data(), static_cast<unsigned>(bytes.size()), data);
        }
    };
    return queued.push(std::move(delivery), place);
}

void RlinkRuntime::pushNotify(std::uint32_t number, const Endpoint& endpoint,
                              rlink_notify_event_type event) {
    if (endpoint.onNotify == nullptr) {
        return;
    }
    DeliveryQueue::Delivery delivery;
    delivery.entry.kind = JournalKind::NotifyDelivered;
    delivery.entry.client = number;
    delivery.entry.result = event;
    delivery.callback = [callback = endpoint.onNotify, client = toClient(endpoint.handle),
                         service = endpoint.service, data = endpoint.data,
                         event] { callback(client, service, event, data); };
    queued.push(std::move(delivery), DeliveryQueue::Place::Last);
}

void RlinkRuntime::pushError(std::uint32_t number, const Endpoint& endpoint) {
    if (endpoint.onError == nullptr) {
        return;
    }
    DeliveryQueue::Delivery delivery;
    delivery.entry.kind = JournalKind::ErrorDelivered;
    delivery.entry.client = number;
    delivery.entry.result = RLINK_ERROR_SERVICE;
    delivery.callback = [callback = endpoint.onError, client = toClient(endpoint.handle),
                         data = endpoint.errorData] {
        callback(client, RLINK_ERROR_SERVICE, data);
    };
    queued.push(std::move(delivery), DeliveryQueue::Place::Last);
}

void RlinkRuntime::notifyAll(rlink_notify_event_type event) {
    for (const auto& [number, endpoint] : endpoints) {
        pushNotify(number, endpoint, event);
    }
}

}  // namespace velasim
