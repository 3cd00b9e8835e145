// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "velasim/Export.h"
#include "velasim/Fault.h"
#include "velasim/Types.h"

namespace velasim {

/** What a journal entry records. */
enum class JournalKind {
    NotifierCreated,
    ClientConnected,  // of a refused attempt only the fault is recorded
    Released,         // of a client or notifier
    Request,
    Response,  // also of a call that failed: `result` is not 0
    IndicationQueued,
    IndicationDelivered,  // written just before the callback is made
    IndicationDropped,    // the receiver has gone, or a fault has lost it
    NotifyDelivered,      // service event to a notifier; `result` is the event
    ErrorDelivered,       // error callback to a client; `result` is the error
    ServiceUp,
    ServiceDown,
    PowerCycle,
    ForeignChange,
    FaultInjected
};

/** "request", "indication queued", ... */
VELASIM_API std::string toString(JournalKind kind);

/**
 * One thing that crossed the boundary or happened behind it. Holds neither time nor address, so
 * that two runs can be compared entry for entry. What a kind does not have stays at its default.
 */
struct VELASIM_API JournalEntry {
    /** Position in the journal, from 1, never used twice. */
    std::uint64_t sequence = 0;
    JournalKind kind = JournalKind::Request;
    /** Number of the client or notifier within its simulator, from 1; 0: none. */
    std::uint32_t client = 0;
    /** Modem instance; -1: none. */
    std::int32_t instance = -1;
    std::uint32_t messageId = 0;
    std::optional<Technology> technology;
    /** Profile index; -1: none. */
    std::int32_t index = -1;
    ChangeEvent event = ChangeEvent::None;
    /** The call's result (RLINK_...), 0: success. */
    std::int32_t result = 0;
    /** Why the modem refused. */
    ModemError error = ModemError::None;
    std::optional<Fault> fault;
    /** A few words for people; never contains a password. */
    std::string text;
    /** The request's structure or the indication's encoded bytes. */
    std::vector<std::uint8_t> bytes;

    bool operator==(const JournalEntry&) const = default;

    /** The entry as one line of text. */
    std::string line() const;
};

}  // namespace velasim
