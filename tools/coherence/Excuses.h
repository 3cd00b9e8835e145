// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Fault.h>

#include <map>
#include <set>

#include "Image.h"

namespace coherence {

// Why the cache may differ from the modem, deliberately; docs/coherence.md tells each story.
inline constexpr const char* kNeverRead = "nothing has been read since the start";
inline constexpr const char* kListFailed = "a list could not be read";
inline constexpr const char* kReadFailed = "a failed read leaves an empty entry";
inline constexpr const char* kReadGarbled = "the modem told nonsense";
inline constexpr const char* kUnheard = "nobody told the library of the change";
inline constexpr const char* kForgotten = "a power cycle forgets silently";
inline constexpr const char* kSwallowed = "a foreign change looks like an own one that is pending";
inline constexpr const char* kOvertaken = "an indication arrives when the profile is another";
inline constexpr const char* kElsewhere = "the library works on another instance";
inline constexpr const char* kIndicationFault = "the indication was lost, late, wrong or double";

/**
 * Keeps, for each profile, why the cache need not equal the modem's table at the moment. Excuses
 * are claimed generously, never withheld: the cache itself is predicted exactly all the same.
 */
class Excuses {
  public:
    void add(ProfileId id, const char* reason) { reasons.emplace(id, reason); }
    /** The library knows no profile of the technology any more. */
    void addAll(velasim::Technology technology, const char* reason) {
        unread[technology] = reason;
        std::erase_if(known, [&](const auto& id) { return id.technology == technology; });
    }
    /** The library has learnt of `id` since. */
    void onLearnt(ProfileId id) { known.insert(id); }

    /** Indications that look like someone else's change of `id` are on their way. */
    void expectForeign(ProfileId id) { underWay.insert(id); }

    /** The library changed `id` with success. */
    void onOwnChange(ProfileId id) {
        if (underWay.count(id) != 0 || held.count(id) != 0) {
            add(id, kOvertaken);
        }
    }

    void onIndicationFault(ProfileId id, velasim::Fault fault) {
        add(id, kIndicationFault);
        (fault == velasim::Fault::DelayIndication ? held : underWay).insert(id);
    }

    void onConnect(bool isHome) {
        isElsewhere = !isHome;
        hasBeenElsewhere |= isElsewhere;
    }

    /** What was under way is lost. */
    void onDisconnect() {
        for (const auto& id : underWay) {
            add(id, kUnheard);
        }
        underWay.clear();
        held.clear();
    }

    void onDelayedReleased() {
        underWay.insert(held.begin(), held.end());
        held.clear();
    }

    /** Everything under way has arrived. */
    void onSettled() { underWay.clear(); }

    /** The cache is read anew: this heals all but what indications under way will do to it. */
    void onReload() {
        reasons.clear();
        unread.clear();
        hasBeenElsewhere = isElsewhere;
        for (const auto& ids : {underWay, held}) {
            for (const auto& id : ids) {
                add(id, kOvertaken);
            }
        }
    }

    /** Why; null: there is no reason. */
    const char* reasonFor(ProfileId id) const {
        if (hasBeenElsewhere) {
            return kElsewhere;
        }
        const auto reason = reasons.find(id);
        if (reason != reasons.end()) {
            return reason->second;
        }
        const auto whole = unread.find(id.technology);
        return whole == unread.end() || known.count(id) != 0 ? nullptr : whole->second;
    }

  private:
    std::map<velasim::Technology, const char*> unread{{velasim::Technology::ThreeGpp, kNeverRead},
                                                      {velasim::Technology::ThreeGpp2, kNeverRead}};
    std::map<ProfileId, const char*> reasons;
    std::set<ProfileId> known;
    std::set<ProfileId> underWay;
    std::set<ProfileId> held;
    bool isElsewhere = false;
    bool hasBeenElsewhere = false;  // since the cache was read
};

}  // namespace coherence
