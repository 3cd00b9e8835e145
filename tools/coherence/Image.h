// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Settings.h>

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>

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

/** A text, or a number: a count, a flag, an enumerator, bits. */
using Value = std::variant<std::string, std::int64_t>;

/** The values of one profile as the library is expected to hold them; absent fields are left out.
 * APN types have the modem's bits. */
struct Image {
    bool is3gpp2 = false;
    std::map<Field, Value> values;

    std::optional<Value> value(Field field) const;
    std::optional<std::int64_t> number(Field field) const;

    /** What `params` would change; all they ask for when the image is empty. */
    Image changesFor(const vela::ProfileParams& params) const;
    void apply(const Image& changes);

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

/** The fields of `params` that clients and profiles of the technology have in common, as a client
 * means them; IP types and selectors are none of them. */
Image clientFields(const vela::ProfileParams& params, bool is3gpp2);

/** The same settings with enumerators that mean nothing. */
void garble(velasim::Settings& settings);

// ---- Values, as the modem, the library's dump and clients have them (Value.cpp)

inline constexpr std::size_t kApnLimit = 150;

// IP types that mean more than themselves.
inline constexpr std::int64_t kUnknown = 0;
inline constexpr std::int64_t kV4V6 = 3;

/** What a value is: this decides how it is told to the modem and how it is printed. */
enum class ValueKind {
    Text,
    Count,
    Flag,
    ApnTypes,
    ApnClass,
    AuthType,
    CommonIPType,
    HomeIPType,
    RoamIPType
};

/** Whether the modem has an enumeration of its own for it. */
bool isEnumerator(ValueKind kind, bool is3gpp2);

/** What the modem is told of a value; what does not fit is lost on the way. */
std::uint64_t toModem(ValueKind kind, bool is3gpp2, std::int64_t value);

/** What is understood of the modem's value; empty: as if it had not been told. */
std::optional<std::int64_t> fromModem(ValueKind kind, bool is3gpp2, std::uint64_t value);

/** As the library's dump prints it. */
std::string printed(ValueKind kind, std::int64_t value);

/** APN types from the clients' bits to the modem's, which is how a profile keeps them, and back. */
std::int64_t modemTypesOf(std::int64_t clientTypes);
std::int64_t clientTypesOf(std::int64_t modemTypes);

}  // namespace coherence
