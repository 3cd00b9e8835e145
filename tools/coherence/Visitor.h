// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "vela/IProfileKey.h"

namespace coherence {

/**
 * A key of no profile, by which something is done while the library's worker is at work: the worker
 * asks each key that it is given for its dump.
 */
class Visitor : public vela::IProfileKey {
  public:
    /** @param visit is called once, on the worker */
    explicit Visitor(std::function<void()> visit) : visit(std::move(visit)) {}

    bool hasVisited() const { return !visit; }

    int getProfileId() const override { return 0; }
    vela::TechType getTechType() const override { return vela::TechType::TECH_3GPP; }
    void registerExpirationListener(std::function<void()> /*callback*/) override {}
    std::string dump() const override {
        if (visit && std::this_thread::get_id() != owner) {
            std::exchange(visit, nullptr)();
        }
        return "visitor";
    }

  private:
    const std::thread::id owner = std::this_thread::get_id();
    mutable std::function<void()> visit;  // while the owner waits for the worker
};

}  // namespace coherence
