// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "IndicationSender.h"

#include <algorithm>
#include <utility>

#include "IndicationCodec.h"

namespace velasim {

namespace {

RlinkRuntime::Indication indicationOf(const Change& change, std::uint32_t client) {
    RlinkRuntime::Indication indication;
    indication.client = client;
    indication.messageId = RLINK_WDS_PROFILE_CHANGED_IND_V01;
    indication.instance = change.instance;
    indication.technology = change.technology;
    indication.index = change.index;
    indication.event = change.event;
    const auto type = static_cast<std::int32_t>(change.technology);
    const auto event = static_cast<std::int32_t>(change.event);
    indication.bytes =
        encodeProfileChanged({static_cast<wds_profile_type_enum_v01>(type), change.index,
                              static_cast<wds_profile_change_event_enum_v01>(event)});
    return indication;
}

const FiredFault* find(const std::vector<FiredFault>& faults, Fault fault) {
    const auto found = std::find_if(faults.begin(), faults.end(),
                                    [&](const auto& fired) { return fired.fault == fault; });
    return found == faults.end() ? nullptr : &*found;
}

std::uint32_t valueOr(const FiredFault& fault, std::uint32_t other) {
    return fault.value == 0 ? other : fault.value;
}

void truncate(std::vector<std::uint8_t>& bytes, const FiredFault& fault) {
    const auto seeded = 1 + Random(fault.random).below(bytes.size() - 1);
    const auto length = valueOr(fault, static_cast<std::uint32_t>(seeded));
    bytes.resize(std::min<std::size_t>(length, bytes.size()));
}

void corrupt(std::vector<std::uint8_t>& bytes, const FiredFault& fault) {
    Random random(fault.random);
    const auto count = std::min<std::size_t>(valueOr(fault, 1), bytes.size());
    for (std::size_t i = 0; i < count; ++i) {
        auto& byte = bytes[random.below(bytes.size())];
        byte = static_cast<std::uint8_t>(byte ^ (1 + random.below(255)));
    }
}

}  // namespace

bool IndicationSender::Outgoing::comesBeforeResponse() const {
    return find(faults, Fault::IndicationBeforeResponse) != nullptr;
}

IndicationSender::IndicationSender(Journal& journal, FaultPlan& plan, const WdsService& service,
                                   RlinkRuntime& runtime)
    : journal(journal), plan(plan), service(service), runtime(runtime) {}

std::vector<IndicationSender::Outgoing> IndicationSender::prepare(
    const std::vector<Change>& changes, std::uint32_t author, std::uint32_t cause) {
    std::vector<Outgoing> all;
    for (const auto& change : changes) {
        for (const auto client : service.audience(change, author)) {
            all.push_back({indicationOf(change, client),
                           plan.onIndication(cause, change.event, change.instance)});
        }
    }
    return all;
}

std::vector<DeliveryQueue::Ticket> IndicationSender::send(const std::vector<Outgoing>& all) {
    std::vector<DeliveryQueue::Ticket> tickets;
    for (const auto& outgoing : all) {
        sendOne(outgoing, tickets);
    }
    return tickets;
}

void IndicationSender::sendOne(const Outgoing& outgoing,
                               std::vector<DeliveryQueue::Ticket>& tickets) {
    auto indication = outgoing.indication;
    const auto& faults = outgoing.faults;
    for (const auto& fired : faults) {
        auto entry = indication;
        entry.kind = JournalKind::FaultInjected;
        entry.fault = fired.fault;
        journal.add(std::move(entry));
    }
    if (find(faults, Fault::LoseIndication) != nullptr) {
        indication.kind = JournalKind::IndicationDropped;
        return journal.add(indication);
    }
    if (const auto* fired = find(faults, Fault::TruncateIndication)) {
        truncate(indication.bytes, *fired);
    }
    if (const auto* fired = find(faults, Fault::CorruptIndication)) {
        corrupt(indication.bytes, *fired);
    }
    if (const auto* fired = find(faults, Fault::DelayIndication)) {
        return runtime.hold(indication, valueOr(*fired, 1));
    }
    const auto* duplicate = find(faults, Fault::DuplicateIndication);
    const auto count = duplicate == nullptr ? 1 : 1 + valueOr(*duplicate, 1);
    auto place = DeliveryQueue::Place::Last;
    if (outgoing.comesBeforeResponse()) {
        place = DeliveryQueue::Place::First;
    } else if (find(faults, Fault::ReorderIndication) != nullptr) {
        place = DeliveryQueue::Place::BeforeOthersOfReceiver;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        tickets.push_back(runtime.queue(indication, place));
    }
}

}  // namespace velasim
