// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/time.h>

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "AdbWriter.h"
#include "DiagWriter.h"
#include "LineFormat.h"
#include "LocalLogBuffer.h"
#include "LogCapture.h"
#include "support/DeathTests.h"
#include "velasim/DiagLog.h"

namespace {

timeval now{1000000000, 7999};
std::string androidLog;

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the linker's names
extern "C" __attribute__((visibility("default"))) int __wrap_gettimeofday(timeval* time,
                                                                          void* /*zone*/) {
    *time = now;
    return 0;
}

extern "C" __attribute__((visibility("default"), format(printf, 3, 4))) int
__wrap___android_log_print(int priority, const char* tag, const char* format, ...) {
    std::array<char, 100> text{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    androidLog += std::to_string(priority) + "|" + tag + "|" + text.data() + ";";
    return 0;
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace vela {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

TEST(LocalLogBuffer, SettlesAtOneLineMoreThanItsSize) {
    for (const std::size_t size : {0U, 1U, 200U}) {
        LocalLogBuffer buffer("B", static_cast<int>(size));
        for (int i = 1; i <= 250; ++i) {
            buffer.addLogWithTimestamp("line" + std::to_string(i));
        }
        const std::vector<std::string> lines = buffer.getLogs();
        ASSERT_THAT(lines, SizeIs(size + 1));
        EXPECT_TRUE(lines.front().ends_with("]line" + std::to_string(250 - size)));
        EXPECT_TRUE(lines.back().ends_with("]line250"));
        buffer.flush();
        EXPECT_THAT(buffer.getLogs(), IsEmpty());
    }
}

TEST(LocalLogBuffer, LineCarriesLocalTimeAndName) {
    setenv("TZ", "XXX-5:30", 1);
    tzset();
    LocalLogBuffer buffer("NAME", 1);
    buffer.addLogWithTimestamp(" text");
    EXPECT_THAT(buffer.getLogs(), ElementsAre("    2001-09-09 07:16:40.007 [NAME] text"));
    const timeval former = std::exchange(now, {now.tv_sec + 1, 999'999});
    buffer.addLogWithTimestamp("");
    EXPECT_EQ(buffer.getLogs().back(), "    2001-09-09 07:16:41.999 [NAME]");
    now = former;
    EXPECT_EQ(buffer.getName(), "NAME");
}

/** Whether a line, in however much room, is what vsnprintf() makes of it. */
bool isAsPrintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
bool isAsPrintf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    bool isSame = true;
    for (std::size_t room = 1; room < 600; ++room) {
        std::string ours(room, '?');
        std::string theirs(room, '?');
        va_list again;
        va_copy(again, arguments);
        std::vsnprintf(theirs.data(), room, format, again);
        va_end(again);
        va_copy(again, arguments);
        isSame = isSame && formatLine(ours.data(), room, format, again) == theirs.c_str();
        va_end(again);
    }
    va_end(arguments);
    return isSame;
}

TEST(LineFormat, IsThatOfPrintf) {
    const std::string longText(599, 'x');
    EXPECT_TRUE(isAsPrintf("%d|%d|%lu %x%x", INT_MIN, 4711, ULONG_MAX, ~0U, 0U));
    EXPECT_TRUE(isAsPrintf("%s%p, %s.", "%d", static_cast<const void*>(""), longText.c_str()));
    EXPECT_TRUE(isAsPrintf("%s %p", "text", static_cast<const void*>(nullptr)));
    EXPECT_TRUE(isAsPrintf("100%%: %s %d", "", 5));
    EXPECT_TRUE(isAsPrintf("%s 0%lo %5d", "text", 8UL, 7));
}

TEST(LogWrapper, KeepsErrorsAndNoticesInTheLocalBuffer) {
    LocalLogBuffer& buffer = LocalLogBuffer::getInstance();
    for (const bool withWriter : {false, true}) {
        const auto capture = withWriter ? std::make_unique<LogCapture>() : nullptr;
        buffer.flush();
        for (int level = 0; level <= 6; ++level) {
            log(static_cast<LogLevel>(level), "level %d", level);
        }
        const std::vector<std::string> kept = buffer.getLogs();
        ASSERT_THAT(kept, SizeIs(2));
        EXPECT_TRUE(kept[0].ends_with("[VELA]level 3"));
        EXPECT_TRUE(kept[1].ends_with("[VELA]level 5"));
        if (capture) {
            EXPECT_THAT(capture->take(), SizeIs(7));
        }
    }
    EXPECT_EQ(buffer.getName(), "VELA");
}

TEST(LogWrapper, CutsLongLinesAndTakesTextsLiterally) {
    LogCapture capture;
    const std::string longText(600, 'x');
    log(LogLevel::Notice, "%s", longText.c_str());
    logText(LogLevel::Notice, longText);
    logText(LogLevel::Error, "%n%s%100000d");
    LogWrapper::getInstance().log(LogLevel::Info, "OTHER", "%d", 7);
    EXPECT_THAT(capture.take(), ElementsAre(Pair(LogLevel::Notice, std::string(511, 'x')),
                                            Pair(LogLevel::Notice, std::string(511, 'x')),
                                            Pair(LogLevel::Error, "%n%s%100000d"),
                                            Pair(LogLevel::Info, "OTHER: 7")));
    EXPECT_TRUE(LocalLogBuffer::getInstance().getLogs().back().ends_with("[VELA]%n%s%100000d"));
}

TEST(LogWriters, HaveTheirOwnPriorities) {
    AdbWriter adb;
    DiagWriter diag;
    std::vector<int> adbPriorities;
    std::vector<int> diagMasks;
    for (int level = 0; level <= 6; ++level) {
        adbPriorities.push_back(adb.convertPrio(static_cast<LogLevel>(level)));
        diagMasks.push_back(diag.convertPrio(static_cast<LogLevel>(level)));
    }
    EXPECT_THAT(adbPriorities, ElementsAre(2, 3, 4, 6, 7, 4, 4));
    EXPECT_THAT(diagMasks, ElementsAre(1, 1, 1, 4, 16, 4, 1));
    adb.write(LogLevel::Error, "TAG", "100%s");
    EXPECT_EQ(androidLog, "6|TAG|100%s;");
}

// The descriptor is filled once in a process, so each case needs a process of its own.
void writeThroughDiagLog(const std::vector<LogLevel>& levels, std::uint32_t expectedMask) {
    velasim::DiagLog& diagLog = velasim::DiagLog::instance();
    const unsigned before = diagLog.registrations();
    {
        DiagWriter writer;
        const bool registered = diagLog.registrations() == before + 1;
        for (const LogLevel level : levels) {
            writer.write(level, "TAG", "100%s");
        }
        const velasim::DiagLog::Line expected{expectedMask, 63, 116, "src/LocalLogBuffer",
                                              "|TAG| 100%s"};
        if (!registered ||
            diagLog.lines() != std::vector<velasim::DiagLog::Line>(levels.size(), expected)) {
            std::exit(1);
        }
    }
    std::exit(diagLog.registrations() == before ? 0 : 1);
}

TEST(LogWritersDeathTest, DiagLogKeepsTheMaskOfTheFirstMessage) {
    runDeathTestsAfresh();
    EXPECT_EXIT(writeThroughDiagLog({LogLevel::Error, LogLevel::Debug, LogLevel::Fatal}, 4),
                testing::ExitedWithCode(0), "");
    EXPECT_EXIT(writeThroughDiagLog({LogLevel::Verbose, LogLevel::Error}, 1),
                testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vela
