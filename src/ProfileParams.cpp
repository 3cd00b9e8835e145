// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/ProfileParams.h"

#include <cstddef>

#include "DumpText.h"

namespace vela {
namespace {

// The names of the set bits, lowest first. Bits without a name print nothing.
template <std::size_t Count>
std::string maskText(unsigned int mask, const char* const (&names)[Count], const char* none) {
    if (mask == 0) {
        return none;
    }
    std::string text;
    for (std::size_t bit = 0; bit < Count; ++bit) {
        if ((mask & (1U << bit)) != 0) {
            text.append(names[bit]).append("|");
        }
    }
    return text;
}

std::string apnTypesText(unsigned int mask) {
    static constexpr const char* kNames[] = {"DEFAULT", "MMS",       "SUPL", "DUN",
                                             "HIPRI",   "FOTA",      "IMS",  "CBS",
                                             "IA",      "EMERGENCY", "MCX",  "XCAP"};
    return maskText(mask, kNames, "NONE");
}

std::string criteriaText(unsigned int mask) {
    static constexpr const char* kNames[] = {"HomeIPSubset",   "RoamIPSubset",
                                             "ApnNameSubset",  "ApnTypeBitmaskSubset",
                                             "HomeIPSuperset", "RoamIPSuperset"};
    return maskText(mask, kNames, "None");
}

}  // namespace

ProfileParams::~ProfileParams() = default;

std::string ProfileParams::dump() const {
    std::optional<std::string> apnTypes;
    if (apnTypesMask) {
        apnTypes = apnTypesText(*apnTypesMask);
    }
    return DumpText(DumpText::Booleans::Words, DumpText::kProfile)
        .field("ApnName", apnName)
        .field("UserName", userName)
        .field("Password", password)
        .field("AuthType", authType)
        .field("HomeIPType", homeIPType)
        .field("RoamIPType", roamIPType)
        .field("ApnTypesMask", apnTypes)
        .field("ApnClass", apnClass)
        .field("IsClatEnabled", isClatEnabled)
        .field("MaxPdnsConnPerBlock", maxPdnsConnPerBlock)
        .field("MaxPdnConnTimer", maxPdnConnTimer)
        .field("PdnReqWaitInterval", pdnReqWaitInterval)
        .field("IsApnDisabled", isApnDisabled)
        .field("IsEmergencySupported", isEmergencySupported)
        .field("IsVelaProfile", isVelaProfile)
        .field("IsIAProfile", isIAProfile)
        .take();
}

AddProfileParams::AddProfileParams(bool persistent, TechType tech, bool iaProfile)
    : AddProfileParams(ProfileParams(), persistent, tech, iaProfile) {}

AddProfileParams::AddProfileParams(const ProfileParams& params, bool persistent, TechType tech,
                                   bool iaProfile)
    : ProfileParams(params), isPersistent(persistent), techType(tech) {
    isIAProfile = iaProfile;
}

std::string AddProfileParams::dump() const {
    DumpText text(DumpText::Booleans::Words);
    text << techType << " persist=" << isPersistent << ": ";
    std::string line = ProfileParams::dump();
    line.insert(0, text.take());  // where it has room
    return line;
}

std::string FilterProfileParams::dump() const {
    DumpText text(DumpText::Booleans::Words);
    text << criteriaText(filterMatchCriteria) << ": ";
    text.field("tech", filterByTechType).field("id", filterByProfileId);
    std::string line = ProfileParams::dump();
    line.insert(0, text.take());  // where it has room
    return line;
}

}  // namespace vela
