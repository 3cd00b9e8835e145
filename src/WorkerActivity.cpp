// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "WorkerActivity.h"

#include "DumpText.h"

namespace vela {

std::string WorkerActivity::dump(std::uint32_t message) const {
    const std::int32_t type = request.load(std::memory_order_relaxed);
    DumpText text;
    text << "busy for " << now() - since.load(std::memory_order_relaxed) << " ms with ";
    if (type == kNone) {
        text << "an event";
    } else {
        text << static_cast<ReqRespType>(type);
    }
    if (message == 0) {
        text << ", no message to the modem under way";
    } else {
        text << ", message " << message << " to the modem under way";
    }
    return text.take();
}

}  // namespace vela
