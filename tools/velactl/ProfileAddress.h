// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/App.hpp>
#include <string>

#include "Limits.h"
#include "NumberOption.h"
#include "Words.h"

namespace velactl {

/** Which profile a verb is about: ID and --tech. */
class ProfileAddress {
  public:
    void addTo(CLI::App& app) {
        addNumber(app, "id", index, "index of the profile", 0, kMaxIndex)->required();
        addTechTo(app);
    }

    /** For verbs that need the technology only. */
    void addTechTo(CLI::App& app) {
        app.add_option("--tech", techName, "3GPP (the default) or 3GPP2");
    }

    vela::TechType tech() const { return readTech("--tech", techName); }

    int index = 0;

  private:
    std::string techName = "3GPP";
};

}  // namespace velactl
