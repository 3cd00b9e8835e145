// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Mutex.h"
#include "ProfileKey.h"

namespace vela {

/**
 * The way by which keys reach their pipeline. Keys share it and may outlive the pipeline, which
 * closes the line before it goes; from then on every request comes back empty.
 */
class RequestLine {
  public:
    using DumpFn = std::function<std::vector<std::string>()>;

    using RestFn = std::function<void()>;

    explicit RequestLine(RequestFn pipeline, DumpFn dumpPipeline = {}, RestFn awaitPipeline = {});
    RequestLine(const RequestLine&) = delete;
    RequestLine& operator=(const RequestLine&) = delete;

    /** Carries a request to the pipeline. Any thread. Empty once the line is closed. */
    std::shared_ptr<ClientResponse> post(std::shared_ptr<ClientRequest> request);

    /** What the pipeline dumps. Any thread. Empty once the line is closed. */
    std::vector<std::string> dump();

    /** Returns when the pipeline rests, at once when the line is closed. Any thread. */
    void awaitRest();

    /** Refuses further requests and waits until those under way have been answered. */
    void close();

    /** Keeps the line from being closed while something is under way. */
    class Passage {
      public:
        explicit Passage(RequestLine& line);
        Passage(const Passage&) = delete;
        Passage& operator=(const Passage&) = delete;
        ~Passage();

        /** False once the line is closed, and in a forked child. */
        bool isAdmitted() const { return admitted; }

      private:
        RequestLine& line;
        bool admitted = false;
    };

  private:
    const RequestFn pipeline;
    const DumpFn dumpPipeline;
    const RestFn awaitPipeline;

    Mutex mutex;
    Condition lastPostReturned;
    bool open VELA_GUARDED_BY(mutex) = true;
    int underWay VELA_GUARDED_BY(mutex) = 0;
};

}  // namespace vela
