// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace vela {

/**
 * An ordered set of file descriptors that threads may query and edit without a lock: one bit per
 * descriptor that the kernel can hand out, in pages of which all but the first are made when they
 * are needed. Constant-initialised and never destroyed, so it is there for every static object.
 */
class ApprovedDescriptors {
  public:
    bool contains(int fd) const {
        const Page* page = existingPage(fd);
        return page != nullptr &&
               ((*page)[word(fd)].load(std::memory_order_acquire) & bit(fd)) != 0;
    }

    /** @return false when `fd` is none that the kernel hands out */
    bool insert(int fd) {
        if (!isValid(fd)) {
            return false;
        }
        madePage(fd)[word(fd)].fetch_or(bit(fd), std::memory_order_acq_rel);
        return true;
    }

    void erase(int fd) {
        if (Page* page = existingPage(fd)) {
            (*page)[word(fd)].fetch_and(~bit(fd), std::memory_order_acq_rel);
        }
    }

  private:
    static constexpr std::size_t kDescriptors = std::size_t{1} << 20;  // the kernel's default limit
    static constexpr std::size_t kPageDescriptors = 8192;
    static constexpr std::size_t kBits = 64;
    using Page = std::array<std::atomic<std::uint64_t>, kPageDescriptors / kBits>;

    static bool isValid(int fd) { return fd >= 0 && static_cast<std::size_t>(fd) < kDescriptors; }
    static std::size_t pageNumber(int fd) {
        return static_cast<std::size_t>(fd) / kPageDescriptors;
    }
    static std::size_t word(int fd) {
        return static_cast<std::size_t>(fd) % kPageDescriptors / kBits;
    }
    static std::uint64_t bit(int fd) {
        return std::uint64_t{1} << (static_cast<std::size_t>(fd) % kBits);
    }

    Page* existingPage(int fd) const {
        return isValid(fd) ? pages[pageNumber(fd)].load(std::memory_order_acquire) : nullptr;
    }
    /** The first thread that comes makes the page; it stays for as long as the process. */
    Page& madePage(int fd) {
        std::atomic<Page*>& place = pages[pageNumber(fd)];
        Page* page = place.load(std::memory_order_acquire);
        if (page == nullptr) {
            auto fresh = std::make_unique<Page>();
            while (page == nullptr) {
                if (place.compare_exchange_weak(page, fresh.get(), std::memory_order_acq_rel)) {
                    page = fresh.release();
                }
            }
        }
        return *page;
    }

    Page first{};  // of which nearly every process needs no more
    std::array<std::atomic<Page*>, kDescriptors / kPageDescriptors> pages{{&first}};
};

}  // namespace vela
