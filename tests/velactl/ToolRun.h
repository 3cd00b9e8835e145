// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "Velactl.h"

namespace velactl {

/** What one run of the tool has said. */
struct ToolRun {
    int status = -1;
    std::string out;
    std::string err;

    nlohmann::json json() const { return nlohmann::json::parse(out); }
};

/** Runs the tool in this process. */
inline ToolRun runTool(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = runVelactl(arguments, {out, err});
    return {status, out.str(), err.str()};
}

/** A test with a modem that is kept in a file between runs. */
class ModemFileTest : public testing::Test {
  public:
    ~ModemFileTest() override { std::filesystem::remove_all(directory); }

  protected:
    ModemFileTest() { std::filesystem::create_directories(directory); }

    ToolRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--modem", modem});
        return runTool(arguments);
    }

    nlohmann::json runJson(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "--json");
        return run(std::move(arguments)).json();
    }

    const std::filesystem::path directory =
        std::filesystem::path(testing::TempDir()) /
        ("velactl." + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
    const std::string modem = directory / "modem.json";
};

}  // namespace velactl
