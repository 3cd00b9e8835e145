// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

#include "ProfileKey.h"

namespace vela {

/**
 * The way by which keys reach their pipeline. Keys share it and may outlive the pipeline, which
 * closes the line before it goes; from then on every request comes back empty.
 */
class RequestLine {
  public:
    explicit RequestLine(RequestFn pipeline);
    RequestLine(const RequestLine&) = delete;
    RequestLine& operator=(const RequestLine&) = delete;

    /** Carries a request to the pipeline. Any thread. Empty once the line is closed. */
    std::shared_ptr<ClientResponse> post(std::shared_ptr<ClientRequest> request);

    /** Refuses further requests and waits until those under way have been answered. */
    void close();

  private:
    class Passage;

    const RequestFn pipeline;

    std::mutex mutex;
    std::condition_variable lastPostReturned;
    bool open = true;  // guarded by mutex
    int underWay = 0;  // guarded by mutex
};

}  // namespace vela
