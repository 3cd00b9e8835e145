// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Stands before the library and its platform: every log line is garbled before anybody sees it.
#include <diag_log.h>
#include <dlfcn.h>
#include <vela/Manager.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ToolRun.h"

namespace {

/** What the program would find if this file were not there. */
template <typename Function>
Function following(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

constexpr const char* kGarbled = "#?!";

}  // namespace

extern "C" [[gnu::visibility("default")]] void diagLogPrintf(const diag_log_descriptor* descriptor,
                                                             ...) {
    static const auto print = following<decltype(&diagLogPrintf)>("diagLogPrintf");
    thread_local diag_log_descriptor garbled;  // it must outlive the call
    garbled = *descriptor;
    garbled.format = kGarbled;
    print(&garbled);
}

namespace vela {

/** The log buffer is the end of the dump. */
std::vector<std::string> Manager::dump() {
    static const auto dumpOf =
        following<std::vector<std::string> (*)(Manager*)>("_ZN4vela7Manager4dumpB5cxx11Ev");
    auto lines = dumpOf(this);
    const auto heading = std::find(lines.begin(), lines.end(), "Logs:");
    std::fill(heading == lines.end() ? heading : heading + 1, lines.end(), kGarbled);
    return lines;
}

}  // namespace vela

namespace velactl {
namespace {

/** Otherwise the other tests would prove nothing. */
TEST(GarbledLog, IsAllThatReadersGet) {
    const ToolRun logged = runTool({"--log", "add", "--apn", "a"});
    EXPECT_THAT(logged.err, testing::StartsWith("log: #?!\nlog: #?!\n"));
    EXPECT_THAT(logged.err, Not(HasSubstr("addProfile")));
    const std::string dump = runTool({"dump"}).out;
    EXPECT_THAT(dump, HasSubstr("Logs:\n#?!\n"));
    EXPECT_THAT(dump, Not(HasSubstr("Manager::")));
}

}  // namespace
}  // namespace velactl
