// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

/** A scenario that has been read whole: every statement makes sense before the first is played. */
class Scenario {
  public:
    /** `name` stands in messages. Throws ToolError that names it and the line. */
    Scenario(std::string_view text, std::string name);

    /** Plays it, and adds the document of each statement to `played`. Throws ToolError that names
     * the line. */
    void play(Stage& stage, Json& played) const;

    std::size_t size() const { return steps.size(); }

  private:
    struct Step {
        std::size_t line;
        std::string text;
        Statement statement;
    };

    std::string name;
    std::vector<Step> steps;
};

}  // namespace velactl
