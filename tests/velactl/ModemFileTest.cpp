// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The file of a simulated modem: who may use it when, and what is left of it.
#include <velasim/SnapshotFile.h>

#include <cstdlib>

#include "ToolRun.h"

namespace velactl {
namespace {

class ModemFile : public ModemFileTest {};

TEST_F(ModemFile, TwentyAtOnceLoseNothing) {
    run({"--capacity", "40", "add", "--apn", "first"});
    const std::string each = VELACTL_COMMAND " --wait 600 --modem " + modem +
                             " add --apn a >/dev/null || touch " + modem;
    std::string all;
    for (int i = 0; i < 20; ++i) {
        all += '(' + each + ".failed) & ";
    }
    ASSERT_EQ(std::system((all + "wait").c_str()), 0);
    const auto profiles = runJson({"list"})["profiles"];
    ASSERT_EQ(profiles.size(), 21U);
    EXPECT_EQ(profiles.back()["index"], 21);
    EXPECT_EQ(folder.size(), 1);
}

TEST_F(ModemFile, WhoeverMustWaitTooLongSaysForWhom) {
    velasim::SnapshotFile other(modem);
    ASSERT_EQ(other.open(velasim::SnapshotFile::Use::Change), "");
    const ToolRun result = run({"--wait", "0", "add", "--apn", "a"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, AllOf(HasSubstr("modem.json: in use by another program (pid "),
                                  HasSubstr(") for 0 s; --wait SECONDS waits longer")));
}

TEST_F(ModemFile, AnEmptyOneIsNewAndOneThatIsNotChangedStaysUnmade) {
    EXPECT_EQ(run({"emergency", "--apn"}).status, 2);
    EXPECT_EQ(run({"show", "7"}).status, 1);
    EXPECT_EQ(run({"list"}).status, 0);
    EXPECT_EQ(folder.size(), 0);
    std::ofstream(modem) << "{}";
    EXPECT_EQ(run({"add", "--apn", "lost"}).status, 1);
    EXPECT_EQ(std::filesystem::file_size(modem), 2U);
    std::ofstream(modem).flush();
    EXPECT_THAT(run({"add", "--apn", "a"}).err, HasSubstr("created, a new modem"));
}

TEST_F(ModemFile, ACapacityThatIsTooSmallIsRefused) {
    run({"add"});
    run({"add"});
    run({"add"});
    run({"delete", "1"});
    run({"delete", "2"});
    EXPECT_THAT(run({"--capacity", "2", "list"}).err,
                HasSubstr("modem.json holds profile 3, a number more than --capacity 2"));
    run({"--capacity", "3", "list"});
    EXPECT_EQ(run({"add"}).status + run({"add"}).status, 0);
    EXPECT_EQ(run({"add"}).status, 1);  // the capacity is kept
}

TEST_F(ModemFile, SaysThatWhatItCannotWriteIsLost) {
    run({"add", "--apn", "a"});
    std::filesystem::permissions(modem, std::filesystem::perms::owner_read);
    const ToolRun result = run({"add", "--apn", "b"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("Permission denied; what has changed is lost"));
    EXPECT_EQ(run({"list"}).status, 0);
}

TEST_F(ModemFile, KeepsTheWorkWhenItsOutputCannotBeWritten) {
    std::ostream out(nullptr);
    std::ostringstream err;
    EXPECT_EQ(runVelactl({"--modem", modem, "add", "--apn", "kept"}, {out, err}), 1);
    EXPECT_THAT(err.str(), HasSubstr("velactl: the output could not be written"));
    EXPECT_EQ(runJson({"list"})["profiles"].size(), 1U);
}

TEST_F(ModemFile, TellsThatWhatItMadeIsGone) {
    EXPECT_THAT(runTool({"add", "--apn", "a"}).out, HasSubstr("is gone now"));
    EXPECT_THAT(run({"add", "--apn", "a"}).out, Not(HasSubstr("gone")));
    EXPECT_THAT(runTool({"list"}).out, Not(HasSubstr("gone")));
}

}  // namespace
}  // namespace velactl
