// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/SnapshotFile.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <thread>
#include <vector>

#include "support/TempFolder.h"

namespace velasim {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using Use = SnapshotFile::Use;
namespace fs = std::filesystem;

Snapshot snapshotOf(std::size_t modems) {
    Snapshot snapshot;
    snapshot.modems.resize(modems);
    return snapshot;
}

class SnapshotFileTest : public testing::Test {
  protected:
    std::string openError(Use use) const {
        SnapshotFile other(file);
        std::string error = other.open(use, 0ms);
        EXPECT_EQ(other.isBusy(), !error.empty());
        return error;
    }

    const velatest::TempFolder folder;
    const std::string file = folder / "modem.json";
};

TEST_F(SnapshotFileTest, OneWhoChangesItIsAloneUntilDone) {
    const fs::path link = folder / "link.json";
    fs::create_symlink("modem.json", link);
    {
        SnapshotFile writer(link);
        ASSERT_EQ(writer.open(Use::Change), "");
        EXPECT_TRUE(writer.isNew());
        const auto held = HasSubstr("modem.json: in use by another program (pid " +
                                    std::to_string(getpid()) + ") for 0 s");
        EXPECT_THAT(openError(Use::Change), held);
        for (std::size_t modems = 1; modems < 3; ++modems) {  // the new file is locked as the old
            ASSERT_EQ(writer.save(snapshotOf(modems)), "");
            EXPECT_THAT(openError(Use::Look), held);
            EXPECT_EQ(writer.load().snapshot.value().modems.size(), modems);
        }
        EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    }
    SnapshotFile reader(file);
    ASSERT_EQ(reader.open(Use::Look), "");
    EXPECT_EQ(openError(Use::Look), "");
    EXPECT_NE(openError(Use::Change), "");
    EXPECT_EQ(reader.load().snapshot.value().modems.size(), 2U);
    EXPECT_EQ(openError(Use::Change), "");  // it has been read
    EXPECT_EQ(folder.size(), 2);
}

TEST_F(SnapshotFileTest, NothingIsLeftOfAFileThatWasNotSaved) {
    {
        SnapshotFile looking(file);
        EXPECT_EQ(looking.open(Use::Look), "");
        EXPECT_TRUE(looking.isNew());
        SnapshotFile changing(file);
        EXPECT_EQ(changing.open(Use::Change), "");
        EXPECT_EQ(folder.size(), 1);
    }
    EXPECT_EQ(folder.size(), 0);
    std::ofstream(file).close();  // somebody else's, or a dead process's
    {
        SnapshotFile changing(file);
        EXPECT_EQ(changing.open(Use::Change), "");
        EXPECT_TRUE(changing.isNew());
    }
    EXPECT_EQ(folder.size(), 1);
}

TEST_F(SnapshotFileTest, ThoseWhoWaitChangeWhatTheOthersHaveSaved) {
    constexpr int kWriters = 8;
    constexpr int kChanges = 5;
    const auto addModems = [this] {
        for (int i = 0; i < kChanges; ++i) {
            SnapshotFile changing(file);
            ASSERT_EQ(changing.open(Use::Change, 60s), "");
            const std::size_t modems =
                changing.isNew() ? 0 : changing.load().snapshot.value().modems.size();
            ASSERT_EQ(changing.save(snapshotOf(modems + 1)), "");
        }
    };
    {
        std::vector<std::jthread> writers;
        for (int i = 0; i < kWriters; ++i) {
            writers.emplace_back(addModems);
        }
    }
    EXPECT_EQ(Snapshot::load(file).snapshot.value().modems.size(), kWriters * kChanges);
    EXPECT_EQ(folder.size(), 1);
}

/** Killed at any moment, in the middle of a save or between two. */
TEST_F(SnapshotFileTest, AKilledSaveLosesNothingAndIsClearedAway) {
    ASSERT_EQ(snapshotOf(200).save(file), "");
    for (int saves = 1; saves <= 20; ++saves) {
        int saved[2];
        ASSERT_EQ(pipe(saved), 0);
        const pid_t child = fork();
        if (child == 0) {
            SnapshotFile writer(file);
            static_cast<void>(writer.open(Use::Change));
            for (std::size_t modems = 200;; modems ^= 1U) {
                static_cast<void>(writer.save(snapshotOf(modems)));
                static_cast<void>(!write(saved[1], "x", 1));
            }
        }
        char byte = 0;
        for (int i = 0; i < saves; ++i) {
            ASSERT_EQ(read(saved[0], &byte, 1), 1);
        }
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(saved[0]);
        close(saved[1]);
        EXPECT_GE(Snapshot::load(file).snapshot.value().modems.size(), 200U);
    }
    std::ofstream(file + ".velasim-new") << "half a passw";
    EXPECT_EQ(openError(Use::Look), "");
    EXPECT_EQ(folder.size(), 2);
    EXPECT_EQ(openError(Use::Change), "");
    EXPECT_EQ(folder.size(), 1);
}

}  // namespace
}  // namespace velasim
