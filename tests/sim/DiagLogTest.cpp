// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/DiagLog.h"

#include <diag_log.h>
#include <gtest/gtest.h>

namespace velasim {
namespace {

TEST(DiagLogTest, LinesOfRegisteredProcessesAreKeptAndHandedOn) {
    auto& log = DiagLog::instance();
    log.clear();
    std::vector<std::string> handedOn;
    log.setSink([&](const DiagLog::Line& line) { handedOn.push_back(line.text); });
    const diag_log_descriptor descriptor{116, 63, DIAG_LOG_MASK_HIGH, "|%s| %d", "a/file"};
    diagLogPrintf(&descriptor, "lost", 0);
    ASSERT_TRUE(diagLogInit(nullptr));
    ASSERT_TRUE(diagLogInit(nullptr));
    ASSERT_TRUE(diagLogDeinit());
    EXPECT_EQ(log.registrations(), 1U);
    const std::string longText(3000, 'x');
    diagLogPrintf(&descriptor, longText.c_str(), 7);
    log.setSink({});
    diagLogPrintf(&descriptor, "%n", 8);
    ASSERT_TRUE(diagLogDeinit());
    EXPECT_FALSE(diagLogDeinit());

    const std::string first = '|' + longText + "| 7";
    EXPECT_EQ(handedOn, std::vector<std::string>{first});
    EXPECT_EQ(log.lines(), (std::vector<DiagLog::Line>{{4, 63, 116, "a/file", first},
                                                       {4, 63, 116, "a/file", "|%n| 8"}}));
    EXPECT_TRUE(log.waitFor([](const auto& line) { return line.text == "|%n| 8"; }));
}

}  // namespace
}  // namespace velasim
