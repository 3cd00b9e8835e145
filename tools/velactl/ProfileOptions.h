// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/ProfileParams.h>

#include <CLI/App.hpp>
#include <optional>
#include <string>

namespace velactl {

/** The options that describe a profile, one per field. */
class ProfileOptions {
  public:
    void addTo(CLI::App& app);

    /** Sets the fields that were given; throws ToolError for a value that no profile can hold. */
    void applyTo(vela::ProfileParams& params) const;

    vela::ProfileParams params() const;

    bool isEmpty() const;

  private:
    std::optional<std::string> apn;
    std::optional<std::string> user;
    std::optional<std::string> password;
    std::optional<std::string> auth;
    std::optional<std::string> homeIp;
    std::optional<std::string> roamIp;
    std::optional<std::string> types;
    std::optional<std::string> apnClass;
    std::optional<bool> clat;
    std::optional<bool> emergency;
    std::optional<bool> disabled;
    std::optional<int> maxConns;
    std::optional<int> maxConnsTime;
    std::optional<int> waitTime;
};

}  // namespace velactl
