// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "scenario/ScenarioText.h"
#include "scenario/Stage.h"
#include "scenario/Statement.h"

namespace velactl {

/** A scenario that has been read whole: every statement makes sense before the first is played. */
class Scenario {
  public:
    /** `name` stands in messages. Throws ToolError that starts with "name:line: ". */
    Scenario(std::string_view text, std::string name);

    /** Reads a file. Throws ToolError. */
    static Scenario load(const std::string& path);

    /** Plays it. Throws ToolError that names the line. */
    void play(Stage& stage) const;

    std::size_t size() const { return steps.size(); }

  private:
    struct Step {
        ScenarioLine line;
        Statement statement;
    };

    std::string name;
    std::vector<Step> steps;
};

}  // namespace velactl
