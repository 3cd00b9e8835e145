// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Scenario.h"

#include <utility>

#include "FileText.h"
#include "Text.h"
#include "ToolError.h"

namespace velactl {

namespace {

constexpr std::size_t kMaxFile = 1U << 20U;

}  // namespace

Scenario::Scenario(std::string_view text, std::string scenarioName)
    : name(std::move(scenarioName)) {
    for (ScenarioLine& line : readScenarioText(text, name)) {
        try {
            Statement statement(line.words);
            steps.push_back({std::move(line), std::move(statement)});
        } catch (const ToolError& error) {
            throw atLine(name, line.number, error);
        }
    }
}

Scenario Scenario::load(const std::string& path) {
    return {readText(path, kMaxFile, "a scenario"), path};
}

void Scenario::play(Stage& stage) const {
    for (const Step& step : steps) {
        if (step.line.words.front().text != "say") {
            stage.out() << "> " << printable(joinStatement(step.line.words, stage.showSecrets()))
                        << '\n';
        }
        try {
            step.statement.run(stage);
            stage.settle();
        } catch (const ToolError& error) {
            throw atLine(name, step.line.number, error);
        }
    }
}

}  // namespace velactl
