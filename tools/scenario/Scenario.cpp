// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Scenario.h"

#include <algorithm>
#include <utility>

#include "profiles/Text.h"
#include "profiles/ToolError.h"

namespace velactl {

Scenario::Scenario(std::string_view text, std::string scenarioName)
    : name(std::move(scenarioName)) {
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        try {
            const ScenarioWords words = splitStatement(line);
            if (!words.empty()) {
                steps.push_back({number, std::string(line), Statement(words)});
            }
        } catch (const ToolError& error) {
            throw atLine(name, number, error);
        }
    }
    if (steps.empty()) {
        throw refused(name + ": a scenario without a statement; it proves nothing");
    }
}

Scenario Scenario::load(const std::string& path) {
    constexpr std::size_t kMaxFile = 1U << 20U;
    return {readText(path, kMaxFile, "a scenario"), path};
}

void Scenario::play(Stage& stage, Json& played) const {
    for (const Step& step : steps) {
        if (step.statement.operation().name != std::string_view("say")) {
            stage.details().line("> " + shownStatement(step.text, stage.showSecrets()));
        }
        const auto keep = [&](Exit status, const std::string& error) {
            played.push_back(stage.takeDocument(status, error));
            played.back()["line"] = step.line;
        };
        try {
            step.statement.play(stage);
            keep(stage.refusal().empty() ? Exit::Done : Exit::Refused, stage.refusal());
        } catch (const ToolError& error) {
            keep(error.status(), error.what());
            throw atLine(name, step.line, error);
        }
    }
}

}  // namespace velactl
