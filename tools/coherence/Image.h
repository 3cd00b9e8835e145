// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Settings.h>

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "vela/ProfileParams.h"

namespace coherence {

/** A profile's number in its table. */
struct ProfileId {
    velasim::Technology technology = velasim::Technology::ThreeGpp;
    int index = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): fires on the comparisons that the compiler writes
    auto operator<=>(const ProfileId&) const = default;
    bool is3gpp2() const { return technology == velasim::Technology::ThreeGpp2; }
    std::string text() const { return velasim::toString(technology) + ":" + std::to_string(index); }
};

/** What the library holds of a profile, in the order in which it prints it. */
enum class Field {
    ApnName,
    UserName,
    Password,
    AuthType,
    CommonIPType,
    ApnTypesMask,
    ApnClass,
    IsClatEnabled,
    OverrideHomeIPType,
    LteRoamIP,
    UmtsRoamIP,
    MaxPdnsConnPerBlock,
    MaxPdnConnTimer,
    PdnReqWaitInterval,
    IsApnDisabled,
    IsEmergencySupported,
    ProfileName
};

/** The values of one profile as the library is expected to hold them; absent fields are left out.
 * APN types have the modem's bits. */
struct Image {
    bool is3gpp2 = false;
    std::map<Field, std::string> texts;
    std::map<Field, std::int64_t> numbers;

    bool operator==(const Image&) const = default;

    std::optional<std::string> text(Field field) const;
    std::optional<std::int64_t> number(Field field) const;

    /** What `params` would change; all they ask for when the image is empty. */
    Image changesFor(const vela::ProfileParams& params) const;
    void apply(const Image& changes);
    bool isEmpty() const { return texts.empty() && numbers.empty(); }

    bool matches(ProfileId id, const vela::FilterProfileParams& filter) const;

    /** What a client gets. */
    vela::ProfileParams params() const;
    /** The line in the library's dump. */
    std::string text(ProfileId id) const;

    /** What the modem is told, and what it tells. */
    velasim::Settings settings() const;
    static Image of(const velasim::Settings& settings, bool is3gpp2);

    /** Whether the modem, which tells `stored`, has this profile: each field as it is here, or as
     * much of it as the modem can keep. */
    bool isStoredAs(const Image& stored) const;

    /** Texts that fill their arrays, as a modem sends them that forgets the terminator. */
    void unterminate();

    std::optional<std::int64_t> homeIPType() const;
    bool isIA() const;
    bool isVela() const;

  private:
    std::optional<std::int64_t> roamIPType() const;
    Image changedIPTypes(const vela::ProfileParams& params) const;
};

/** As APN names are kept. */
std::string lower(std::string text);

/** The same settings with enumerators that mean nothing. */
void garble(velasim::Settings& settings);

/** Writes into `stored` what `written` has. */
void merge(const velasim::Settings& written, velasim::Technology technology,
           velasim::Settings& stored);

}  // namespace coherence
