// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ToolRun.h"

namespace velactl {

ToolRun runOnModem(const std::string& file, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--modem", file});
    return runTool(arguments);
}

std::unique_ptr<velasim::Simulator> makeDevice() {
    return nullptr;
}

std::string asToldHere(std::string text) {
    return text;
}

}  // namespace velactl
