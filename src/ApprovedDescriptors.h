// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace vela {

/**
 * An ordered set of file descriptors that threads may query and edit without a lock: one bit per
 * descriptor that the kernel can hand out. Constant-initialised and trivially destroyed, so it is
 * there for every static object.
 */
class ApprovedDescriptors {
  public:
    bool contains(int fd) const {
        return isValid(fd) && (word(fd).load(std::memory_order_acquire) & bit(fd)) != 0;
    }

    /** @return false when `fd` is none that the kernel hands out */
    bool insert(int fd) {
        if (!isValid(fd)) {
            return false;
        }
        word(fd).fetch_or(bit(fd), std::memory_order_acq_rel);
        return true;
    }

    void erase(int fd) {
        if (isValid(fd)) {
            word(fd).fetch_and(~bit(fd), std::memory_order_acq_rel);
        }
    }

  private:
    static constexpr std::size_t kDescriptors = std::size_t{1} << 20;  // the kernel's default limit
    static constexpr std::size_t kBits = 64;

    static bool isValid(int fd) { return fd >= 0 && static_cast<std::size_t>(fd) < kDescriptors; }
    static std::uint64_t bit(int fd) {
        return std::uint64_t{1} << (static_cast<std::size_t>(fd) % kBits);
    }
    std::atomic<std::uint64_t>& word(int fd) { return words[static_cast<std::size_t>(fd) / kBits]; }
    const std::atomic<std::uint64_t>& word(int fd) const {
        return words[static_cast<std::size_t>(fd) / kBits];
    }

    std::array<std::atomic<std::uint64_t>, kDescriptors / kBits> words{};
};

}  // namespace vela
