// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velasim/Export.h"
#include "velasim/Types.h"

namespace velasim {

/** What can go wrong. `value` is FaultRule::value; where 0 has a special meaning it is the default.
 */
enum class Fault {
    // On a request.
    SendFailure,           // the call fails with result `value` (0: internal error), without effect
    Timeout,               // the call times out, without effect
    TimeoutAfterEffect,    // the modem carries the request out, the call times out
    Refuse,                // the response refuses with modem error `value` (0: internal)
    TableFull,             // a create is refused because the table is full
    RestartBeforeEffect,   // the modem restarts instead of carrying the request out
    RestartAfterEffect,    // the modem restarts after the effect, before it responds
    RestartAfterResponse,  // the response arrives, then the modem restarts, without indications
    UnterminatedText,      // list and read: the texts fill their arrays, without terminators
    ListOverrun,           // list: the count says `value` (0: 1000) whatever the list contains
    GarbageEnumerators,    // read: enumerators become `value` (0: seeded numbers that mean nothing)
    // On an indication.
    LoseIndication,
    DelayIndication,  // until `value` (0: 1) further indications for the client have been queued
    DuplicateIndication,       // `value` (0: 1) further copies
    ReorderIndication,         // it overtakes the indications of its client that still wait
    IndicationBeforeResponse,  // the callback has returned before the response arrives
    TruncateIndication,  // only the first `value` bytes arrive; 0: a seeded length, at least 1
    CorruptIndication,   // `value` (0: 1) seeded bytes are changed
    // On connecting.
    NotifierInitFailure,  // creating a notifier fails with `value` (0: internal error)
    NoServiceInstance,    // no instance of the service is found
    ClientInitFailure,    // connecting a client fails with `value` (0: internal error)
    ErrorCallbackFailure  // registering an error callback fails with `value` (0: internal error)
};

/** Where a fault strikes. */
enum class FaultPoint { Request, Indication, Connect };

VELASIM_API FaultPoint pointOf(Fault fault);

/** The enumerator's name as scenarios and journals write it: "time-out", "lose-indication", ... */
VELASIM_API std::string toString(Fault fault);

/** The fault of that name; empty when there is none. */
VELASIM_API std::optional<Fault> faultNamed(std::string_view name);

/** Every fault, in the order of the enumeration. */
VELASIM_API std::vector<Fault> allFaults();

/** Whether the fault means anything for this request, or for an indication that it causes:
 * ListOverrun, for one, only for the list, and a fault on connecting for none. */
VELASIM_API bool appliesTo(Fault fault, std::uint32_t messageId);

/** As a rule's message: every message, and for indications every cause. */
inline constexpr std::uint32_t kAnyMessage = 0xFFFFFFFF;
/** As an indication rule's message: changes made by someone else. */
inline constexpr std::uint32_t kForeignChange = 0;

/**
 * When a fault strikes. Occurrences are the requests, indications or connection attempts that match
 * the rule, counted from 1; the rule is due at occurrence `first`, `first` + `every`, and so on,
 * strikes then with `probability`, and at most `count` times. The defaults strike once, at the
 * first.
 */
struct FaultRule {
    Fault fault = Fault::Timeout;
    /** Request rules: the request. Indication rules: the request that caused the indication. */
    std::uint32_t messageId = kAnyMessage;
    std::uint32_t first = 1;
    std::uint32_t every = 1;
    /** 0: without limit. */
    std::uint32_t count = 1;
    double probability = 1.0;
    /** See the enumerators of Fault. */
    std::uint32_t value = 0;
    /** Only this modem instance. */
    std::optional<std::int32_t> instance{};
    /** Indication rules: only indications of this event. */
    std::optional<ChangeEvent> event{};

    bool operator==(const FaultRule&) const = default;
};

}  // namespace velasim
