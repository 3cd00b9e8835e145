// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "RequestLine.h"

#include <utility>

#include "ForkedChild.h"

namespace vela {

RequestLine::Passage::Passage(RequestLine& line) : line(line) {
    if (isForkedChild()) {
        return;
    }
    const MutexLock lock(line.mutex);
    admitted = line.open;
    line.underWay += admitted ? 1 : 0;
}

RequestLine::Passage::~Passage() {
    if (admitted) {
        const MutexLock lock(line.mutex);
        --line.underWay;
        line.lastPostReturned.notifyAll();
    }
}

RequestLine::RequestLine(RequestFn pipeline, DumpFn dumpPipeline, RestFn awaitPipeline)
    : pipeline(std::move(pipeline)),
      dumpPipeline(std::move(dumpPipeline)),
      awaitPipeline(std::move(awaitPipeline)) {}

std::shared_ptr<ClientResponse> RequestLine::post(std::shared_ptr<ClientRequest> request) {
    const Passage passage(*this);
    // Not moved: `request` then dies after `passage`. What it holds may end the manager when it
    // dies, and that waits until nothing passes any more.
    return passage.isAdmitted() ? pipeline(request) : nullptr;
}

std::vector<std::string> RequestLine::dump() {
    const Passage passage(*this);
    return passage.isAdmitted() ? dumpPipeline() : std::vector<std::string>();
}

void RequestLine::awaitRest() {
    const Passage passage(*this);
    if (passage.isAdmitted()) {
        awaitPipeline();
    }
}

void RequestLine::close() {
    MutexLock lock(mutex);
    open = false;
    while (underWay != 0) {
        lastPostReturned.wait(lock);
    }
}

}  // namespace vela
