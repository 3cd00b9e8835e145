// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Image.h"

namespace coherence {

namespace {

using vela::FilterMatchCriteria;
using vela::FilterProfileParams;

bool hasCriterion(const FilterProfileParams& filter, FilterMatchCriteria criterion) {
    return (filter.getFilterMatchCriteria() & toMask(criterion)) != 0;
}

/** Whether all bits of `part` are in `whole`. */
bool isWithin(std::int64_t part, std::int64_t whole) {
    return (part | whole) == whole;
}

bool matchesField(const Image& image, Field field, const Value& wanted, bool isPartEnough) {
    const auto held = image.value(field);
    if (!held || (field != Field::ApnName && field != Field::ApnTypesMask)) {
        return held == wanted;
    }
    if (field == Field::ApnName) {
        const auto& part = std::get<std::string>(wanted);
        return held == wanted ||
               (isPartEnough && std::get<std::string>(*held).find(part) != std::string::npos);
    }
    const auto types = modemTypesOf(std::get<std::int64_t>(wanted));
    return held == Value(types) || (isPartEnough && isWithin(types, std::get<std::int64_t>(*held)));
}

bool matchesFields(const Image& image, const FilterProfileParams& filter) {
    // What 3GPP2 profiles cannot have is asked of them all the same, and not found.
    const Image asked = clientFields(filter, false);
    const bool isNamePart = hasCriterion(filter, FilterMatchCriteria::ApnNameSubset);
    const bool isMaskPart = hasCriterion(filter, FilterMatchCriteria::ApnTypeBitmaskSubset);
    return std::all_of(asked.values.begin(), asked.values.end(), [&](const auto& item) {
        return matchesField(image, item.first, item.second,
                            item.first == Field::ApnName ? isNamePart : isMaskPart);
    });
}

struct IPCriteria {
    bool isPartEnough;
    bool isWholeEnough;
};

bool matchesIPType(std::optional<std::int64_t> held, vela::IPType asked, IPCriteria criteria) {
    const auto wanted = static_cast<std::int64_t>(asked);
    return held && (held == wanted || (criteria.isPartEnough && isWithin(wanted, *held)) ||
                    (criteria.isWholeEnough && isWithin(*held, wanted)));
}

/** A 3GPP2 profile always has one. */
std::optional<std::int64_t> homeIPTypeOf(const Image& image) {
    const auto home = image.homeIPType();
    return image.is3gpp2 ? home.value_or(kUnknown) : home;
}

/** A profile without roaming types roams with its common one; a UMTS type alone that is missing
 * counts as UNKNOWN. */
std::optional<std::int64_t> roamIPTypeOf(const Image& image) {
    const auto lte = image.number(Field::LteRoamIP);
    const auto umts = image.number(Field::UmtsRoamIP);
    if (image.is3gpp2) {
        return std::nullopt;
    }
    if (!lte && !umts) {
        return image.number(Field::CommonIPType);
    }
    return lte == umts.value_or(kUnknown) ? lte : std::nullopt;
}

bool matchesIPTypes(const Image& image, const FilterProfileParams& filter) {
    const IPCriteria home{hasCriterion(filter, FilterMatchCriteria::HomeIPSubset),
                          hasCriterion(filter, FilterMatchCriteria::HomeIPSuperset)};
    const IPCriteria roam{hasCriterion(filter, FilterMatchCriteria::RoamIPSubset),
                          hasCriterion(filter, FilterMatchCriteria::RoamIPSuperset)};
    return (!filter.hasHomeIPType() ||
            matchesIPType(homeIPTypeOf(image), filter.getHomeIPType(), home)) &&
           (!filter.hasRoamIPType() ||
            matchesIPType(roamIPTypeOf(image), filter.getRoamIPType(), roam));
}

bool matchesSelectors(const Image& image, ProfileId id, const FilterProfileParams& filter) {
    const bool isAsked3gpp2 = filter.getFilterByTechType() == vela::TechType::TECH_3GPP2;
    return (!filter.hasFilterByTechType() || isAsked3gpp2 == image.is3gpp2) &&
           (!filter.hasFilterByProfileId() || filter.getFilterByProfileId() == id.index) &&
           (!filter.hasFilterByIsIAProfile() ||
            (!image.is3gpp2 && filter.getIsIAProfile() == image.isIA())) &&
           (!filter.hasFilterByIsVelaProfile() ||
            (!image.is3gpp2 && filter.getIsVelaProfile() == image.isVela()));
}

}  // namespace

bool Image::matches(ProfileId id, const FilterProfileParams& filter) const {
    return matchesSelectors(*this, id, filter) && matchesFields(*this, filter) &&
           matchesIPTypes(*this, filter);
}

}  // namespace coherence
