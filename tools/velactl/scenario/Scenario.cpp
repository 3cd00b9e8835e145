// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Scenario.h"

#include <fstream>
#include <iterator>
#include <utility>

#include "Text.h"
#include "ToolError.h"

namespace velactl {

namespace {

constexpr std::streamoff kMaxFile = 1 << 20;

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
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) {
        throw refused(path + ": cannot be opened");
    }
    if (file.tellg() > kMaxFile) {
        throw refused(path + ": larger than 1 MiB, so hardly a scenario");
    }
    file.seekg(0);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (file.bad()) {
        throw refused(path + ": cannot be read");
    }
    return {text, path};
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
