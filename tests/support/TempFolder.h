// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace velatest {

/** A folder of its own for one test, gone with it: tests that run at once share none. */
class TempFolder {
  public:
    TempFolder() {
        std::string name = std::filesystem::path(testing::TempDir()) / "vela-test.XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), name);
        }
        folder = name;
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    const std::filesystem::path& path() const { return folder; }
    std::filesystem::path operator/(const std::string& name) const { return folder / name; }

    /** How many files are in it. */
    auto size() const { return std::distance(std::filesystem::directory_iterator(folder), {}); }

  private:
    std::filesystem::path folder;
};

}  // namespace velatest
