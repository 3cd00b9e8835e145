// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "SettingsField.h"
#include "velasim/Snapshot.h"

namespace velasim {

/** Reads the JSON form of a snapshot. Every member function that reads takes the path of what it
 * reads ("modems[0].3gpp[2]") and throws SnapshotReader::Problem. */
class SnapshotReader {
  public:
    /** Not the ordered kind, which copies its members as it grows: recursively, so that a deeply
     * nested text would exhaust the stack. */
    using Json = nlohmann::json;

    /** What is wrong, where. */
    struct Problem {
        std::string text;
    };

    Snapshot read(const Json& json) const;

  private:
    Snapshot::ModemImage readModem(const Json& json, const std::string& path) const;
    std::vector<StoredProfile> readTable(const Json& json, const std::string& path,
                                         Technology technology, unsigned capacity) const;
    StoredProfile readProfile(const Json& json, const std::string& path, Technology technology,
                              unsigned capacity) const;
    Settings readSettings(const Json& json, const std::string& path, Technology technology) const;
    void readText(const Json& json, const std::string& path, const SettingsField& field,
                  Settings& settings) const;
};

}  // namespace velasim
