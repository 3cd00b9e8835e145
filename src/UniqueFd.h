// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <utility>

namespace vela {

/** Owns one file descriptor and closes it. Empty is -1. */
class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd(fd) {}
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    UniqueFd(UniqueFd&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(fd, other.fd);
        return *this;
    }
    ~UniqueFd() { reset(); }

    int get() const { return fd; }
    bool isOpen() const { return fd >= 0; }

    void reset() {
        if (isOpen()) {
            ::close(std::exchange(fd, -1));
        }
    }

  private:
    int fd = -1;
};

}  // namespace vela
