// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velasim/Export.h"
#include "velasim/StoredProfile.h"

namespace velasim {

struct SnapshotResult;

/**
 * The persistent memory of the simulated modems: what a power cycle leaves. Kept in a file as
 * indented JSON that people can read and edit:
 *
 *     {"format": "velasim-modems", "version": 1, "modems": [{"capacity": 16,
 *      "3gpp": [{"index": 1, "settings": {"apn_name": "internet", "pdp_type": 3}}], "3gpp2": []}]}
 *
 * Settings have the names of Settings.h; absent ones are left out, and so is the persistence flag.
 * Texts that are not UTF-8 are written as {"hex": "..."}. A plain value.
 */
class VELASIM_API Snapshot {
  public:
    static constexpr std::string_view kFormat = "velasim-modems";
    static constexpr int kVersion = 1;
    /** Not written: everything in a snapshot is persistent. */
    static constexpr std::string_view kPersistenceField = "persistence_flag";

    struct ModemImage {
        /** Profiles per technology, 1 to 255. */
        unsigned capacity = 16;
        std::vector<StoredProfile> threeGpp;
        std::vector<StoredProfile> threeGpp2;

        std::vector<StoredProfile>& profiles(Technology technology) {
            return technology == Technology::ThreeGpp2 ? threeGpp2 : threeGpp;
        }
        const std::vector<StoredProfile>& profiles(Technology technology) const {
            return technology == Technology::ThreeGpp2 ? threeGpp2 : threeGpp;
        }
    };

    /** One image per modem instance. */
    std::vector<ModemImage> modems;

    /** Reads JSON text. `name` stands for the text in error messages. Never throws. */
    static SnapshotResult parse(std::string_view text, std::string_view name);

    /** Reads a file, as SnapshotFile does. */
    static SnapshotResult load(const std::string& path);

    /** The JSON text. */
    std::string toJson() const;

    /** Writes a file, as SnapshotFile does. Returns one line that names the file and what went
     * wrong; empty on success. */
    std::string save(const std::string& path) const;
};

/** A snapshot, or one line that says what is wrong where. */
struct SnapshotResult {
    std::optional<Snapshot> snapshot;
    std::string error;
};

}  // namespace velasim
