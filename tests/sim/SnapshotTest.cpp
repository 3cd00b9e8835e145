// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "RandomSettings.h"
#include "SimClient.h"
#include "support/TempFolder.h"
#include "velasim/Simulator.h"

namespace velasim {
namespace {

constexpr auto k3gpp = Technology::ThreeGpp;
constexpr auto k3gpp2 = Technology::ThreeGpp2;

class SnapshotTest : public testing::Test {
  protected:
    const velatest::TempFolder own;
    const std::filesystem::path& folder = own.path();
    const std::string file = folder / "modem.json";
};

TEST_F(SnapshotTest, EverythingPersistentSurvivesTheFile) {
    Simulator simulator({.capacity = 255});
    Random random(11);
    for (int index = 1; index <= 100; ++index) {
        const auto technology = random.chance(0.5) ? k3gpp : k3gpp2;
        simulator.storeProfile(1, technology, randomSettings(random, technology), index);
    }
    simulator.restart();  // forgets the volatile ones, as the file does
    ASSERT_EQ(simulator.snapshot().save(file), "");
    ASSERT_EQ(simulator.snapshot().save(file), "");
    EXPECT_EQ(own.size(), 1);

    const auto loaded = Snapshot::load(file);
    ASSERT_TRUE(loaded.snapshot) << loaded.error;
    Simulator restored;
    ASSERT_EQ(restored.restore(*loaded.snapshot), "");
    for (const auto technology : {k3gpp, k3gpp2}) {
        const auto before = simulator.profiles(1, technology);
        const auto after = restored.profiles(1, technology);
        ASSERT_EQ(after.size(), before.size());
        for (std::size_t i = 0; i < before.size(); ++i) {
            EXPECT_EQ(after[i].index, before[i].index);
            auto expected = before[i].settings;
            setNumber(expected, "persistence_flag", 1);  // any other number that is not 0
            EXPECT_TRUE(sameSettings(after[i].settings, expected, technology));
        }
    }
    EXPECT_TRUE(restored.profiles(0, k3gpp).empty());
}

TEST_F(SnapshotTest, ErrorsNameTheFileThePlaceAndTheReason) {
    const auto modem = [](const std::string& table) {
        return R"({"format":"velasim-modems","version":1,"modems":[{"capacity":4,"3gpp":[)" +
               table + R"(],"3gpp2":[]}]})";
    };
    const auto settings = [&](const std::string& members) {
        return modem(R"({"index":1,"settings":{)" + members + "}}");
    };
    const std::pair<std::string, std::string> cases[] = {
        {"", "parse error at line 1, column 1"},
        {"{\n\"format\": velasim}", "parse error at line 2"},
        {"\"\xff\"", "parse error"},
        {"[]", "must be an object, not array"},
        {R"({"format":"velasim-modems","version":1})", "member \"modems\" is missing"},
        {R"({"format":"x","version":1,"modems":[]})", "format: not a snapshot"},
        {R"({"format":"velasim-modems","version":2,"modems":[]})", "only version 1 is understood"},
        {R"({"format":"velasim-modems","version":1,"modems":[7]})",
         "modems[0]: must be an object, not number"},
        {modem(R"({"index":5,"settings":{}})"), "3gpp[0].index: must be a number from 1 to 4"},
        {modem(R"({"index":-1,"settings":{}})"), "3gpp[0].index: must be a number from 1 to 4"},
        {modem(R"({"index":1,"settings":{}},{"index":1,"settings":{}})"),
         "modems[0].3gpp[1].index: index 1 is there already"},
        {modem(R"({"index":1,"settings":{},"name":1})"), "3gpp[0]: unknown member \"name\""},
        {settings(R"("apn":"a")"), "settings: unknown setting \"apn\""},
        {settings(R"("user_id":"a")"), "settings: unknown setting \"user_id\""},
        {settings(R"("apn_name":3)"), "settings.apn_name: must be a text, not number"},
        {settings(R"("apn_name":{"hex":"0"})"), "settings.apn_name.hex: pairs of hex"},
        {settings(R"("apn_name":{"hex":"6100"})"), "must not contain a zero byte"},
        {settings(R"("apn_name":")" + std::string(151, 'a') + '"'),
         "settings.apn_name: text of 151 bytes, at most 150 fit"},
        {settings("\"apn_class\":" + std::string(200000, '[') + std::string(200000, ']')),
         "settings.apn_class: must be a number from 0 to 255, not array"},
        {settings(R"("apn_class":256)"), "settings.apn_class: must be a number from 0 to 255"},
        {settings(R"("pdp_type":"IP")"),
         "settings.pdp_type: must be a number from 0 to 4294967295"},
    };
    for (const auto& [text, reason] : cases) {
        std::ofstream(file) << text;
        const auto result = Snapshot::load(file);
        EXPECT_FALSE(result.snapshot);
        EXPECT_EQ(result.error.rfind(file + ": ", 0), 0U) << result.error;
        EXPECT_NE(result.error.find(reason), std::string::npos) << result.error;
        EXPECT_EQ(result.error.find('\n'), std::string::npos);
    }
    EXPECT_NE(Snapshot::load(folder / "none").error.find("No such file"), std::string::npos);
    EXPECT_NE(Snapshot::load(folder).error, "");
    EXPECT_NE(Snapshot().save(folder / "none" / "x").find("No such file"), std::string::npos);
}

TEST_F(SnapshotTest, AFileIsReplacedAsWhatItIs) {
    namespace fs = std::filesystem;
    const auto modeOf = [](const fs::path& path) { return fs::status(path).permissions(); };
    constexpr auto kShared = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    constexpr auto kReadOnly = fs::perms::owner_read | fs::perms::group_read;
    const fs::path link = folder / "link.json";
    fs::create_symlink("modem.json", link);
    ASSERT_EQ(Snapshot().save(link), "");  // the link leads nowhere yet
    fs::permissions(file, kShared);
    Snapshot snapshot;
    snapshot.modems.resize(3);
    ASSERT_EQ(snapshot.save(link), "");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(modeOf(file), kShared);
    EXPECT_EQ(Snapshot::load(file).snapshot.value().modems.size(), 3U);

    fs::permissions(file, kReadOnly);
    EXPECT_NE(Snapshot().save(link).find("Permission denied"), std::string::npos);
    EXPECT_EQ(Snapshot::load(file).snapshot.value().modems.size(), 3U);
    EXPECT_NE(Snapshot().save(folder).find("Is a directory"), std::string::npos);
    EXPECT_NE(Snapshot::load(folder).error.find("Is a directory"), std::string::npos);
    EXPECT_NE(Snapshot().save("/dev/null"), "");
    EXPECT_EQ(own.size(), 2);
}

TEST_F(SnapshotTest, ASnapshotThatDoesNotFitChangesNothing) {
    Simulator simulator({.instances = 1});
    simulator.storeProfile(0, k3gpp, settingsWithApn("a"));
    Snapshot snapshot;
    snapshot.modems.resize(2);
    EXPECT_NE(simulator.restore(snapshot), "");
    snapshot.modems.resize(1);
    snapshot.modems[0].threeGpp.push_back({17, {}});
    EXPECT_NE(simulator.restore(snapshot), "");
    EXPECT_EQ(simulator.profiles(0, k3gpp).size(), 1U);
}

}  // namespace
}  // namespace velasim
