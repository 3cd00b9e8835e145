// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "RequestLine.h"

#include <utility>

namespace vela {

/** One request on its way; the line cannot be closed meanwhile. */
class RequestLine::Passage {
  public:
    explicit Passage(RequestLine& line) : line(line) {
        const std::lock_guard lock(line.mutex);
        admitted = line.open;
        line.underWay += admitted ? 1 : 0;
    }
    Passage(const Passage&) = delete;
    Passage& operator=(const Passage&) = delete;
    ~Passage() {
        if (admitted) {
            const std::lock_guard lock(line.mutex);
            --line.underWay;
            line.lastPostReturned.notify_all();
        }
    }

    bool isAdmitted() const { return admitted; }

  private:
    RequestLine& line;
    bool admitted = false;
};

RequestLine::RequestLine(RequestFn pipeline) : pipeline(std::move(pipeline)) {}

std::shared_ptr<ClientResponse> RequestLine::post(std::shared_ptr<ClientRequest> request) {
    const Passage passage(*this);
    // A copy: what the request holds goes after the passage, for its destruction may close the
    // line.
    return passage.isAdmitted() ? pipeline(request) : nullptr;
}

void RequestLine::close() {
    std::unique_lock lock(mutex);
    open = false;
    lastPostReturned.wait(lock, [this] { return underWay == 0; });
}

}  // namespace vela
