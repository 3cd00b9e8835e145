// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "velasim/Settings.h"

namespace velasim {

/** One setting of a profile: where it lies in the structure, and which profiles have it. */
struct SettingsField {
    enum class Scope { Shared, ThreeGpp, ThreeGpp2 };

    std::string_view name;
    std::size_t validOffset;
    std::size_t offset;
    std::size_t size;
    bool isText;
    bool isEnum;
    Scope scope;

    /** Every setting, in the structure's order. */
    static std::span<const SettingsField> all();

    /** The setting of that name; null when there is none. */
    static const SettingsField* named(std::string_view name);

    bool belongsTo(Technology technology) const;
    bool isSecret() const;

    bool isPresent(const Settings& settings) const;
    void setPresent(Settings& settings, bool present) const;

    /** Up to the terminator or the end of the array. */
    std::string text(const Settings& settings) const;
    bool isTerminated(const Settings& settings) const;

    std::uint64_t number(const Settings& settings) const;
    std::uint64_t largestNumber() const;
    void writeNumber(Settings& settings, std::uint64_t value) const;

    /** The value's bytes, for writing. */
    char* bytes(Settings& settings) const;

    /** Copies presence and value. */
    void copy(const Settings& from, Settings& to) const;
};

}  // namespace velasim
