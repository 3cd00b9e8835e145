// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/JournalEntry.h>

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Excuses.h"
#include "Expect.h"
#include "Image.h"

namespace coherence {

template <typename Item>
Item takeFirst(std::deque<Item>& queue) {
    Item first = std::move(queue.front());
    queue.pop_front();
    return first;
}

/** The library's numbers for what an indication says has happened. */
enum class Event { Create, Delete, Modify, SubscriptionChange, ProfileReady };

/** What is told of a profile that was created. */
inline const std::vector<Event> kCreation{Event::Create, Event::Modify};

/** The profiles of one modem instance. */
using Table = std::map<ProfileId, velasim::Settings>;

/** The lowest free number; 0: none. */
int freeIndex(const Table& table, velasim::Technology technology, unsigned capacity);

/** Makes or changes a profile: writes what `settings` has. */
void store(Table& table, ProfileId id, const velasim::Settings& settings);

/** What an indication says, or is expected to say. */
struct Change {
    ProfileId id;
    Event event = Event::Create;

    bool operator==(const Change&) const = default;
    std::string text() const;
};

/** An indication as it arrives at the library. */
struct Arrival {
    explicit Arrival(const velasim::JournalEntry& entry);

    bool isKnown = false;  // of the message's kind
    bool isDecodable = false;
    std::optional<Change> change;  // empty when it says nothing
};

/**
 * The far side of the boundary as it should be: the tables of the modem's instances, and the
 * library's connection to one of them. Takes from the journal which faults struck and what was
 * indicated, and predicts the rest: which requests the library sends, what they do and how they
 * end.
 */
class ModelModem {
  public:
    static constexpr int kInstances = 2;
    const unsigned capacity;  // of each table

    struct Reply {
        bool isSuccess = false;    // as the library is told
        bool hasEffect = false;    // on the modem
        bool isAnnounced = false;  // by indications
        std::set<velasim::Fault> faults;
    };

    ModelModem(unsigned capacity, Excuses& excuses) : capacity(capacity), excuses(excuses) {}

    /** Stands for a request about no profile in particular. */
    static ProfileId anyOf(velasim::Technology technology) { return {technology, -1}; }

    /** The journal of what is to be predicted next. */
    void witness(const std::vector<velasim::JournalEntry>& entries);
    /** Takes note of what happened before the next thing that has to be predicted. */
    void lookAhead() { next(); }
    /** Fails when the journal tells of something that was not predicted. */
    void finish();

    // ---- the library's side

    /** A request that the library must have sent, if it has a client. The modem can carry it out
     * if `isValid`; `effect` happens if it does. */
    Reply request(std::uint32_t messageId, std::optional<ProfileId> id, bool isValid,
                  const std::function<void()>& effect);
    /** The library starts on an instance; the new connection is begun before the former is given
     * up. */
    void startOver(int instance);
    /** What the library does about what it has been told of, but for the arrivals. */
    void onServiceUp();
    void onClientLost();

    /** Whether indications reach the library. */
    bool isSubscribed() const;
    /** Nothing but a new start connects the library again. */
    bool isCutOff() const;
    /** Fails when the library should have been told of the service, or of its loss; for when no
     * callback waits. */
    void checkConnection() const;

    /** What the library's requests work on: the first instance's, until another is bound. */
    Table& table() { return tableOf(bound); }
    /** What its cache is to agree with. */
    const Table& homeTable() const { return tableOf(home); }

    // ---- someone else's

    Table& tableOf(int instance) { return tables.at(static_cast<std::size_t>(instance)); }
    const Table& tableOf(int instance) const {
        return tables.at(static_cast<std::size_t>(instance));
    }
    bool isHome(int instance) const { return instance == home; }
    void serviceDown();
    void serviceUp() { isUp = true; }
    void powerCycle();

    std::deque<Arrival> arrivals;  // what the library has not handled yet

    /** What the library has been signalled and has not looked at yet, in order. */
    enum class Signal { Arrival, ServiceUp, ClientLost };
    std::deque<Signal> signals;

  private:
    const velasim::JournalEntry* next();
    void observe(const velasim::JournalEntry& entry);
    void observeIndication(const velasim::JournalEntry& entry, ProfileId about);
    void signal(Signal signal);
    bool struck(velasim::Fault fault);
    void release(std::uint32_t& handle);
    void startNotifier();
    velasim::JournalEntry take(velasim::JournalKind kind, std::uint32_t messageId = 0,
                               std::optional<ProfileId> id = {});

    Excuses& excuses;
    std::deque<velasim::JournalEntry> trace;

    std::array<Table, kInstances> tables;
    int home = 0;   // the instance that the library was started on
    int bound = 0;  // the one that its client works on
    bool isUp = true;
    bool isOverlooked = false;              // the library found no service although there is one
    std::uint32_t notifier = 0;             // 0: none
    std::uint32_t client = 0;               // 0: none
    bool hasErrorCallback = false;          // the library learns when the client dies
    bool isConnected = false;               // the client is not dead
    std::set<std::uint32_t> subscriptions;  // what the modem has granted to the client
};

}  // namespace coherence
