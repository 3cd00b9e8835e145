// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Exchange.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iterator>
#include <utility>

#include "RequestSummary.h"
#include "ResponseFaults.h"
#include "SimulatedPlatform.h"

namespace velasim {

namespace {

constexpr std::uint8_t kNonsense = 0xA5;

int valueOr(const FiredFault& fault, int other) {
    return fault.value == 0 ? other : static_cast<int>(fault.value);
}

}  // namespace

Exchange::Exchange(SimulatedPlatform& platform, std::uint32_t client, std::uint32_t messageId,
                   std::span<const std::uint8_t> request, std::span<std::uint8_t> response,
                   unsigned timeoutMs)
    : platform(platform),
      client(client),
      messageId(messageId),
      request(request),
      response(response),
      timeoutMs(timeoutMs),
      reply(response.size()) {}

int Exchange::run() {
    Lock lock(platform.mutex);
    instance = platform.service.instanceOf(client);
    noteRequest();
    if (const auto failed = failBeforeEffect(lock)) {
        return finish(*failed);
    }
    carryOut();
    if (strikes(Fault::RestartAfterEffect) != nullptr) {
        platform.restartLocked();
        return finish(RLINK_ERROR_SERVICE);
    }
    return complete(lock, platform.indications.prepare(outcome.changes, client, messageId));
}

std::optional<int> Exchange::failBeforeEffect(Lock& lock) {
    if (!platform.runtime.isConnected(client)) {
        return RLINK_ERROR_SERVICE;
    }
    if (!WdsService::sizesFit(messageId, request.size(), response.size())) {
        return RLINK_ERROR_INTERNAL;
    }
    faults = platform.faults.onRequest(messageId, instance);
    if (const auto* fault = strikes(Fault::SendFailure)) {
        return valueOr(*fault, RLINK_ERROR_INTERNAL);
    }
    if (strikes(Fault::RestartBeforeEffect) != nullptr) {
        platform.restartLocked();
        return RLINK_ERROR_SERVICE;
    }
    if (strikes(Fault::Timeout) != nullptr) {
        return timeOut(lock);
    }
    return std::nullopt;
}

std::optional<ModemError> Exchange::refusal() {
    if (const auto* fault = strikes(Fault::Refuse)) {
        return static_cast<ModemError>(valueOr(*fault, static_cast<int>(ModemError::Internal)));
    }
    if (strikes(Fault::TableFull) != nullptr) {
        return ModemError::TableFull;
    }
    return std::nullopt;
}

void Exchange::carryOut() {
    if (const auto error = refusal()) {
        WdsService::refuse(*error, reply.data(), reply.size());
        outcome.error = *error;
    } else {
        outcome = platform.service.handle(client, messageId, request.data(), reply.data());
        instance = platform.service.instanceOf(client);
    }
}

int Exchange::complete(Lock& lock, Outgoing indications) {
    sendEarly(lock, indications);
    if (strikes(Fault::TimeoutAfterEffect) != nullptr) {
        platform.indications.send(indications);
        return finish(timeOut(lock));
    }
    for (const auto fault :
         {Fault::UnterminatedText, Fault::ListOverrun, Fault::GarbageEnumerators}) {
        if (const auto* fired = strikes(fault)) {
            spoilResponse(*fired, messageId, reply);
        }
    }
    std::memcpy(response.data(), reply.data(), reply.size());
    const int result = finish(RLINK_NO_ERROR);
    if (strikes(Fault::RestartAfterResponse) != nullptr) {
        platform.restartLocked();
    } else {
        platform.indications.send(indications);
    }
    return result;
}

void Exchange::sendEarly(Lock& lock, Outgoing& indications) {
    const auto isEarly = [](const auto& outgoing) { return outgoing.comesBeforeResponse(); };
    Outgoing early;
    std::copy_if(indications.begin(), indications.end(), std::back_inserter(early), isEarly);
    std::erase_if(indications, isEarly);
    if (early.empty()) {
        return;
    }
    const auto tickets = platform.indications.send(early);
    lock.unlock();  // the callbacks may call us
    for (const auto& ticket : tickets) {
        if (ticket) {
            platform.runtime.deliveries().deliver(ticket);
        }
    }
    lock.lock();
}

void Exchange::noteRequest() {
    auto entry = summarizeRequest(messageId, request);
    entry.client = client;
    entry.instance = instance;
    platform.journal.add(std::move(entry));
}

const FiredFault* Exchange::strikes(Fault fault) {
    const auto found = std::find_if(faults.begin(), faults.end(),
                                    [&](const auto& fired) { return fired.fault == fault; });
    if (found == faults.end()) {
        return nullptr;
    }
    JournalEntry entry;
    entry.kind = JournalKind::FaultInjected;
    entry.client = client;
    entry.instance = instance;
    entry.messageId = messageId;
    entry.fault = fault;
    platform.journal.add(std::move(entry));
    return &*found;
}

int Exchange::timeOut(Lock& lock) {
    if (platform.options.realTimeouts) {
        platform.changed.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                  [this] { return platform.closed; });
    }
    return RLINK_ERROR_TIMEOUT;
}

int Exchange::finish(int result) {
    if (result != RLINK_NO_ERROR) {  // a client that looks at it all the same shall notice
        std::fill(response.begin(), response.end(), kNonsense);
    }
    JournalEntry entry;
    entry.kind = JournalKind::Response;
    entry.client = client;
    entry.instance = instance;
    entry.messageId = messageId;
    entry.result = result;
    entry.error = outcome.error;
    if (!outcome.changes.empty()) {
        entry.technology = outcome.changes.front().technology;
        entry.index = outcome.changes.front().index;
    }
    platform.journal.add(std::move(entry));
    platform.changed.notify_all();
    return result;
}

}  // namespace velasim
