// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "velasim/Settings.h"
#include "velasim/StoredProfile.h"
#include "velasim/Types.h"

namespace velasim {

/**
 * One modem instance's memory: a table of profiles per technology. No threads, no clock, no
 * clients; it is told what happens and says what a modem would say. Takes no lock: its owner,
 * SimulatedPlatform, calls it under its own.
 */
class Modem {
  public:
    using Table = std::map<std::uint8_t, Settings>;

    struct Creation {
        ModemError error = ModemError::None;
        std::uint8_t index = 0;
    };

    /** `capacity`: profiles per technology, 1 to 255; others are brought into that range. */
    explicit Modem(unsigned capacity);

    /** Stores a new profile under the lowest free index, from 1. Settings of the other technology
     * are left out; without a persistence flag the profile is persistent. */
    Creation create(Technology technology, const Settings& settings);

    /** Replaces the settings that are present; the others stay. */
    ModemError modify(Technology technology, int index, const Settings& settings);

    ModemError remove(Technology technology, int index);

    /** Stores a profile under a given index of the table, whether it is free or not. */
    ModemError store(Technology technology, int index, const Settings& settings);

    /** Why there is no such profile; None when there is. */
    ModemError check(Technology technology, int index) const;

    /** Null when there is no such profile. */
    const Settings* find(Technology technology, int index) const;

    /** Empty for an unknown technology. */
    std::vector<StoredProfile> profiles(Technology technology) const;

    unsigned getCapacity() const { return capacity; }

    /** Forgets the volatile profiles. */
    void powerCycle();

  private:
    template <typename Self>
    static auto table(Self& self, Technology technology) -> decltype(&self.threeGpp);
    Table* table(Technology technology) { return table(*this, technology); }
    const Table* table(Technology technology) const { return table(*this, technology); }
    std::optional<std::uint8_t> freeIndex(const Table& table) const;

    unsigned capacity;
    Table threeGpp;
    Table threeGpp2;
};

}  // namespace velasim
