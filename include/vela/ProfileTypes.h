// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Values that describe a data profile. Every stream operator prints the name used in all dumps and
// log lines; a value outside the enumeration prints as its decimal number.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "vela/Export.h"

namespace vela {

/** Radio technology whose profile table a profile belongs to. */
enum class TechType : std::int32_t {
    TECH_3GPP = 0,
    TECH_3GPP2 = 1,
};

/** PDP/PDN type. Read as bits, V4V6 is V4 and V6 together. */
enum class IPType : std::int32_t {
    UNKNOWN = 0,
    V4 = 1,
    V6 = 2,
    V4V6 = 3,
};

/** Authentication protocol. */
enum class AuthType : std::int32_t {
    NONE = 0,
    PAP = 1,
    CHAP = 2,
    PAP_CHAP = 3,
};

/** Class of an APN; 0 is no class. */
enum class ApnClass : std::int32_t {
    IMS = 1,
    ADMN = 2,
    INET = 3,
    APP = 4,
};

/** Bits of an APN type mask (unsigned 32-bit): what traffic an APN may carry. */
enum class ApnTypes : std::uint32_t {
    DEFAULT = 1,
    MMS = 2,
    SUPL = 4,
    DUN = 8,
    HIPRI = 16,
    FOTA = 32,
    IMS = 64,
    CBS = 128,
    IA = 256,
    EMERGENCY = 512,
    MCX = 1024,
    XCAP = 2048,
};

/**
 * Bits of a filter's match criteria (unsigned 32-bit). Subset: what the filter asks for is
 * contained in the profile's value; superset: the profile's value is contained in what the filter
 * asks for. Without a bit, and for IP types also when no given bit matches, the values must be
 * equal.
 */
enum class FilterMatchCriteria : std::uint32_t {
    HomeIPSubset = 1,
    RoamIPSubset = 2,
    ApnNameSubset = 4,
    ApnTypeBitmaskSubset = 8,
    HomeIPSuperset = 16,
    RoamIPSuperset = 32,
};

/** A single bit as the number that masks are made of. */
constexpr unsigned int toMask(ApnTypes bit) {
    return static_cast<unsigned int>(bit);
}
constexpr unsigned int toMask(FilterMatchCriteria bit) {
    return static_cast<unsigned int>(bit);
}

constexpr unsigned int operator|(ApnTypes a, ApnTypes b) {
    return toMask(a) | toMask(b);
}
constexpr unsigned int operator|(unsigned int mask, ApnTypes bit) {
    return mask | toMask(bit);
}
constexpr unsigned int operator|(FilterMatchCriteria a, FilterMatchCriteria b) {
    return toMask(a) | toMask(b);
}
constexpr unsigned int operator|(unsigned int mask, FilterMatchCriteria bit) {
    return mask | toMask(bit);
}

VELA_API std::ostream& operator<<(std::ostream& out, TechType value);
VELA_API std::ostream& operator<<(std::ostream& out, IPType value);
VELA_API std::ostream& operator<<(std::ostream& out, AuthType value);
VELA_API std::ostream& operator<<(std::ostream& out, ApnClass value);

}  // namespace vela
