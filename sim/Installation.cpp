// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Installation.h"

#include <algorithm>

namespace velasim {

namespace {

// Handles look like addresses of objects: aligned, and not next to null.
constexpr SimulatedPlatform::Handle kHandleStep = 16;

}  // namespace

Installation& Installation::process() {
    static auto* const installation = new Installation;
    return *installation;
}

void Installation::add(std::shared_ptr<SimulatedPlatform> platform) {
    const std::lock_guard lock(mutex);
    entries.push_back({++lastSerial, std::move(platform)});
}

void Installation::remove(const SimulatedPlatform* platform) {
    const std::lock_guard lock(mutex);
    std::erase_if(entries, [&](const Entry& entry) { return entry.platform.get() == platform; });
}

std::shared_ptr<SimulatedPlatform> Installation::newest() {
    const std::lock_guard lock(mutex);
    return entries.empty() ? nullptr : entries.back().platform;
}

std::shared_ptr<SimulatedPlatform> Installation::bySerial(std::uint64_t serial) {
    const std::lock_guard lock(mutex);
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& entry) { return entry.serial == serial; });
    return found == entries.end() ? nullptr : found->platform;
}

std::shared_ptr<SimulatedPlatform> Installation::ownerOf(SimulatedPlatform::Handle handle) {
    const std::lock_guard lock(mutex);
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
        return entry.platform->runtime.owns(handle);
    });
    return found == entries.end() ? nullptr : found->platform;
}

std::uint64_t Installation::serialOf(const SimulatedPlatform* platform) {
    const std::lock_guard lock(mutex);
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
        return entry.platform.get() == platform;
    });
    return found == entries.end() ? 0 : found->serial;
}

SimulatedPlatform::Handle Installation::newHandle() {
    const std::lock_guard lock(mutex);
    lastHandle += kHandleStep;
    return lastHandle;
}

}  // namespace velasim
