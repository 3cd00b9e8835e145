// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

#include "vela/Requests.h"

namespace vela {

/** What the worker thread is busy with, for others to look at while it is. */
class WorkerActivity {
  public:
    /** Worker thread: looks for what there is to do. */
    void beginPass() {
        since.store(now(), std::memory_order_relaxed);
        request.store(kNone, std::memory_order_relaxed);
    }

    /** Worker thread: a request of a client or a key. */
    void beginRequest(ReqRespType type) {
        request.store(static_cast<std::int32_t>(type), std::memory_order_relaxed);
    }

    /** Since when and with what, in one line; what is not known any more by then may be mixed.
     * `message` is the number of the message to the modem that is under way; 0: none. Any thread.
     */
    std::string dump(std::uint32_t message) const;

  private:
    static constexpr std::int32_t kNone = -1;

    static std::int64_t now() {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }

    std::atomic<std::int64_t> since{0};
    std::atomic<std::int32_t> request{kNone};
};

}  // namespace vela
