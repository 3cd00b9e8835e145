// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ModelModem.h"

#include <wds_service_v01.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace coherence {

namespace {

using velasim::Fault;
using velasim::FaultPoint;
using velasim::JournalEntry;
using velasim::JournalKind;
using velasim::Technology;

constexpr std::uint32_t kSubscription[] = {RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01,
                                           RLINK_WDS_INDICATION_REGISTER_REQ_V01,
                                           RLINK_WDS_CONFIGURE_PROFILE_EVENT_LIST_REQ_V01};

bool contains(const std::set<Fault>& faults, std::initializer_list<Fault> any) {
    return std::any_of(any.begin(), any.end(),
                       [&](Fault fault) { return faults.count(fault) != 0; });
}

}  // namespace

int freeIndex(const Table& table, Technology technology, unsigned capacity) {
    for (int index = 1; index <= static_cast<int>(capacity); ++index) {
        if (table.count({technology, index}) == 0) {
            return index;
        }
    }
    return 0;
}

void store(Table& table, ProfileId id, const velasim::Settings& settings) {
    auto& stored = table[id];
    if (stored.persistence_flag_valid == 0) {
        stored.persistence_flag_valid = stored.persistence_flag = 1;
    }
    for (const auto& name : velasim::fieldNames(id.technology)) {
        if (const auto text = velasim::textOf(settings, name)) {
            velasim::setText(stored, name, *text);
        } else if (const auto number = velasim::numberOf(settings, name)) {
            velasim::setNumber(stored, name, *number);
        }
    }
}

std::string Change::text() const {
    constexpr const char* kTexts[] = {"Create", "Delete", "Modify", "SubscriptionChange",
                                      "ProfileReady"};
    return id.text() + " " + kTexts[static_cast<int>(event)];
}

Arrival::Arrival(const JournalEntry& entry)
    : isKnown(entry.messageId == RLINK_WDS_PROFILE_CHANGED_IND_V01) {
    wds_profile_changed_ind_msg_v01 message{};
    // Decoding needs no particular client.
    auto* client = reinterpret_cast<rlink_client_type>(1);
    isDecodable =
        rlink_client_message_decode(client, RLINK_MESSAGE_INDICATION, entry.messageId,
                                    entry.bytes.data(), static_cast<unsigned>(entry.bytes.size()),
                                    &message, sizeof message) == RLINK_NO_ERROR;
    if (isDecodable && message.profile_changed_valid != 0) {
        const auto& told = message.profile_changed;
        const bool is3gpp2 = told.profile_type == WDS_PROFILE_TYPE_3GPP2_V01;
        const auto event = static_cast<std::int64_t>(told.change_event);
        change = {{is3gpp2 ? Technology::ThreeGpp2 : Technology::ThreeGpp, told.profile_index},
                  event >= 1 && event <= 4 ? static_cast<Event>(event - 1) : Event::ProfileReady};
    }
}

void ModelModem::witness(const std::vector<JournalEntry>& entries) {
    trace.assign(entries.begin(), entries.end());
}

void ModelModem::finish() {
    if (const auto* entry = next()) {
        throw Mismatch("not expected: " + entry->line());
    }
}

/** The next entry that has to be predicted; takes note of the others. */
const JournalEntry* ModelModem::next() {
    for (; !trace.empty(); trace.pop_front()) {
        const auto& entry = trace.front();
        if (entry.kind <= JournalKind::Response ||  // the library's calls are the first kinds
            (entry.fault && pointOf(*entry.fault) != FaultPoint::Indication)) {
            return &entry;
        }
        observe(entry);
    }
    return nullptr;
}

void ModelModem::observe(const JournalEntry& entry) {
    const ProfileId about{entry.technology.value_or(Technology::ThreeGpp), entry.index};
    if (entry.fault) {
        excuses.onIndicationFault(about, *entry.fault);
    }
    if (entry.kind == JournalKind::IndicationDelivered) {
        observeIndication(entry, about);
    } else if (entry.kind == JournalKind::NotifyDelivered &&
               entry.result == RLINK_SERVICE_AVAILABLE) {
        signal(Signal::ServiceUp);
    } else if (entry.kind == JournalKind::ErrorDelivered) {
        signal(Signal::ClientLost);
    }
}

void ModelModem::observeIndication(const JournalEntry& entry, ProfileId about) {
    arrivals.emplace_back(entry);
    signal(Signal::Arrival);
    const auto& change = arrivals.back().change;
    if (change && change->id != about) {  // it names another profile than the one that changed
        excuses.onIndicationFault(change->id, Fault::CorruptIndication);
    }
}

void ModelModem::signal(Signal signal) {
    if (std::find(signals.begin(), signals.end(), signal) == signals.end()) {
        signals.push_back(signal);
    }
}

bool ModelModem::struck(Fault fault) {
    const auto* entry = next();
    return entry != nullptr && entry->fault == fault && takeFirst(trace).fault;
}

/** What the library must have done, or got, next. */
JournalEntry ModelModem::take(JournalKind kind, std::uint32_t messageId,
                              std::optional<ProfileId> id) {
    const auto* entry = next();
    if (entry == nullptr || entry->kind != kind || entry->messageId != messageId ||
        (id && (entry->technology != id->technology || entry->index != id->index))) {
        const auto message = messageId == 0 ? "" : " \"" + velasim::messageName(messageId) + "\"";
        throw Mismatch("expected " + toString(kind) + message + (id ? " " + id->text() : "") +
                       ", not: " + (entry == nullptr ? "nothing" : entry->line()));
    }
    return takeFirst(trace);
}

ModelModem::Reply ModelModem::request(std::uint32_t messageId, std::optional<ProfileId> id,
                                      bool isValid, const std::function<void()>& effect) {
    Reply reply;
    if (client == 0) {
        return reply;  // nothing leaves the library
    }
    take(JournalKind::Request, messageId, id);
    const auto takeFaults = [&] {
        for (const auto* entry = next(); entry != nullptr && entry->fault; entry = next()) {
            reply.faults.insert(*takeFirst(trace).fault);
        }
    };
    takeFaults();
    const auto response = take(JournalKind::Response, messageId);
    const bool wasAccepted =
        response.result == RLINK_NO_ERROR && response.error == velasim::ModemError::None;
    takeFaults();

    reply.hasEffect =
        isConnected && isValid &&
        !contains(reply.faults, {Fault::SendFailure, Fault::Timeout, Fault::RestartBeforeEffect,
                                 Fault::Refuse, Fault::TableFull});
    reply.isSuccess = reply.hasEffect && !contains(reply.faults, {Fault::RestartAfterEffect,
                                                                  Fault::TimeoutAfterEffect});
    const bool restarts = contains(
        reply.faults,
        {Fault::RestartBeforeEffect, Fault::RestartAfterEffect, Fault::RestartAfterResponse});
    reply.isAnnounced = reply.hasEffect && isSubscribed() && !restarts;
    if (wasAccepted != reply.isSuccess) {
        throw Mismatch("the modem should" + std::string(reply.isSuccess ? "" : " not") +
                       " have accepted \"" + velasim::messageName(messageId) + "\"");
    }
    if (reply.hasEffect) {
        effect();
    }
    if (restarts) {
        powerCycle();
    }
    return reply;
}

void ModelModem::release(std::uint32_t& handle) {
    if (handle != 0 && take(JournalKind::Released).client != std::exchange(handle, 0U)) {
        throw Mismatch("another handle should have been released");
    }
}

void ModelModem::startNotifier() {
    release(notifier);
    isOverlooked = false;
    if (!struck(Fault::NotifierInitFailure)) {
        notifier = take(JournalKind::NotifierCreated).client;
    }
}

void ModelModem::onServiceUp() {
    if (!isUp) {
        return;
    }
    isOverlooked = struck(Fault::NoServiceInstance);
    if (isOverlooked) {
        return;
    }
    release(notifier);
    if (client != 0 || struck(Fault::ClientInitFailure)) {
        return;
    }
    client = take(JournalKind::ClientConnected).client;
    isConnected = true;
    hasErrorCallback = !struck(Fault::ErrorCallbackFailure);
    bound = 0;
    for (const auto messageId : kSubscription) {
        request(messageId, std::nullopt, true, [&] {
            subscriptions.insert(messageId);
            bound = messageId == RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01 ? home : bound;
        });
    }
    excuses.onConnect(bound == home);
}

void ModelModem::onClientLost() {
    isConnected = false;
    subscriptions.clear();
    release(client);
    startNotifier();
}

void ModelModem::startOver(int instance) {
    home = instance;
    isConnected = false;
    subscriptions.clear();
    arrivals.clear();
    signals.clear();
    auto formerNotifier = std::exchange(notifier, 0U);
    auto formerClient = std::exchange(client, 0U);
    startNotifier();
    release(formerNotifier);
    release(formerClient);
}

bool ModelModem::isCutOff() const {
    return client == 0 ? notifier == 0 : !hasErrorCallback;
}

void ModelModem::checkConnection() const {
    if (isUp && notifier != 0 && !isOverlooked) {
        throw Mismatch("nobody told the library that the service is up");
    }
    if (client != 0 && !isConnected && hasErrorCallback) {
        throw Mismatch("nobody told the library that its client is dead");
    }
}

bool ModelModem::isSubscribed() const {
    return isConnected && subscriptions.size() == std::size(kSubscription);
}

void ModelModem::serviceDown() {
    isUp = isConnected = isOverlooked = false;
    subscriptions.clear();
    excuses.onDisconnect();
    for (const auto& arrival : arrivals) {  // they outlive the connection
        if (arrival.change) {
            excuses.expectForeign(arrival.change->id);
        }
    }
}

void ModelModem::powerCycle() {
    serviceDown();
    for (auto& table : tables) {
        std::erase_if(table, [&](const auto& item) {
            const bool isVolatile = item.second.persistence_flag == 0;
            if (isVolatile && &table == &homeTable()) {
                excuses.add(item.first, kForgotten);
            }
            return isVolatile;
        });
    }
    isUp = true;
}

}  // namespace coherence
