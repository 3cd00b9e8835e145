// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <velasim/Simulator.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "profiles/Text.h"
#include "support/TempFolder.h"
#include "velactl/Velactl.h"

namespace velactl {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream in(path);
    return {std::istreambuf_iterator<char>(in), {}};
}

/** What the error says that `action` throws; nothing: it throws none. */
template <typename Action>
std::string complaintOf(Action action) {
    try {
        action();
    } catch (const ToolError& error) {
        return error.what();
    }
    return "";
}

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

// The backend that a test program is linked with: SimulatedRun.cpp or DeviceRun.cpp.

/** Runs the tool on the modem whose memory the file keeps between runs. */
ToolRun runOnModem(const std::string& file, std::vector<std::string> arguments);

/** A modem that is there without the tool; null where the tool brings its own. */
std::unique_ptr<velasim::Simulator> makeDevice();

/** What the tool says with this backend where the simulator's says `text`: a device's knows the
 * modem only by the library, and its errors by their numbers. */
std::string asToldHere(std::string text);

/** A test with a modem that is kept in a file between runs. */
class ModemFileTest : public testing::Test {
  protected:
    ToolRun run(std::vector<std::string> arguments) const {
        return runOnModem(modem, std::move(arguments));
    }

    nlohmann::json runJson(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "--json");
        return run(std::move(arguments)).json();
    }

    const velatest::TempFolder folder;
    const std::filesystem::path& directory = folder.path();
    const std::string modem = directory / "modem.json";
};

/** A test with operator files of its own making. */
class OwnOperator : public ModemFileTest {
  protected:
    ToolRun provisionOwn(const std::string& content, std::vector<std::string> arguments) const {
        const std::string file = directory / "own.xml";
        std::ofstream(file) << "<apns>" << content << "</apns>";
        arguments.insert(arguments.begin(), {"provision", "--apns", file});
        if (arguments.back() == "--all") {
            return runTool(arguments);
        }
        arguments.insert(arguments.end(), {"--plmn", "00101"});
        return run(arguments);
    }
};

}  // namespace velactl
