// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "EventFd.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "LogWrapper.h"

namespace vela {

EventFd::EventFd() : fd(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (!fd.isOpen()) {
        log(LogLevel::Error, "Cannot create eventfd instance");
        std::abort();
    }
}

bool EventFd::signal(ssize_t& written) const {
    const std::uint64_t one = 1;
    written = ::write(fd.get(), &one, sizeof(one));
    return written == static_cast<ssize_t>(sizeof(one));
}

bool EventFd::drain(int fd, std::size_t chunk) {
    std::array<char, 256> buffer{};
    ssize_t count = 0;
    do {
        count = ::read(fd, buffer.data(), std::min(chunk, buffer.size()));
    } while (count > 0);
    return count == 0 || errno == EAGAIN;
}

}  // namespace vela
