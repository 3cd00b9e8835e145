// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// How the library tells its observer.
#pragma once

#include <atomic>
#include <memory>

#include "vela/Observer.h"

namespace vela {

class ModemProfile;

/** Whether anybody watches. Ask before computing what only an observer wants. */
extern std::atomic<bool> observed;
inline bool isObserved() {
    return observed.load(std::memory_order_acquire);
}

/** Empty for none. */
std::shared_ptr<Observer> currentObserver();

/** Calls `tell` with the observer, if there is one. Whatever it throws stays there. */
template <typename Tell>
void tellObserver(Tell tell) noexcept {
    if (!isObserved()) {
        return;
    }
    try {
        if (const auto observer = currentObserver()) {
            tell(*observer);
        }
    } catch (...) {  // NOLINT(bugprone-empty-catch): nobody can do anything about it
    }
}

/** The profile as observers see it. */
ProfileImage imageOf(const ModemProfile& profile);

/** An entry of the cache, which may be empty, held against a filter. */
ProfileCandidate candidateOf(unsigned long token, const std::shared_ptr<ModemProfile>& profile,
                             const FilterProfileParams& filter);

/** Tells the beginning and the end of a policy call. What the call refers to must outlive it. */
class PolicyScope {
  public:
    explicit PolicyScope(const PolicyCall& call);
    PolicyScope(const PolicyScope&) = delete;
    PolicyScope& operator=(const PolicyScope&) = delete;
    ~PolicyScope();

    /** The results to tell; the key must outlive the scope. */
    const std::shared_ptr<IProfileKey>& end(const std::shared_ptr<IProfileKey>& key);
    bool end(bool matches);

  private:
    const PolicyCall call;
    PolicyResult result;
};

}  // namespace vela
