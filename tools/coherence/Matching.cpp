// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Image.h"

namespace coherence {

namespace {

using Criterion = vela::FilterMatchCriteria;
using vela::FilterProfileParams;

bool hasCriterion(const FilterProfileParams& filter, Criterion criterion) {
    return (filter.getFilterMatchCriteria() & toMask(criterion)) != 0;
}

/** Whether all bits of `part` are in `whole`. */
bool isWithin(std::int64_t part, std::int64_t whole) {
    return (part | whole) == whole;
}

bool matchesField(const Image& image, Field field, const Value& wanted,
                  const FilterProfileParams& filter) {
    const auto held = image.value(field);
    if (held && field == Field::ApnName && hasCriterion(filter, Criterion::ApnNameSubset)) {
        const auto& part = std::get<std::string>(wanted);
        return std::get<std::string>(*held).find(part) != std::string::npos;
    }
    if (field != Field::ApnTypesMask) {
        return held == wanted;
    }
    const auto types = modemTypesOf(std::get<std::int64_t>(wanted));
    return held == Value(types) || (held && hasCriterion(filter, Criterion::ApnTypeBitmaskSubset) &&
                                    isWithin(types, std::get<std::int64_t>(*held)));
}

bool matchesFields(const Image& image, const FilterProfileParams& filter) {
    // What 3GPP2 profiles cannot have is asked of them all the same, and not found.
    const Image asked = clientFields(filter, false);
    return std::all_of(asked.values.begin(), asked.values.end(), [&](const auto& item) {
        return matchesField(image, item.first, item.second, filter);
    });
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

bool matchesIPType(const FilterProfileParams& filter, std::optional<std::int64_t> held,
                   vela::IPType asked, Criterion subset, Criterion superset) {
    const auto wanted = static_cast<std::int64_t>(asked);
    return held && (held == wanted || (hasCriterion(filter, subset) && isWithin(wanted, *held)) ||
                    (hasCriterion(filter, superset) && isWithin(*held, wanted)));
}

bool matchesIPTypes(const Image& image, const FilterProfileParams& filter) {
    return (!filter.hasHomeIPType() ||
            matchesIPType(filter, homeIPTypeOf(image), filter.getHomeIPType(),
                          Criterion::HomeIPSubset, Criterion::HomeIPSuperset)) &&
           (!filter.hasRoamIPType() ||
            matchesIPType(filter, roamIPTypeOf(image), filter.getRoamIPType(),
                          Criterion::RoamIPSubset, Criterion::RoamIPSuperset));
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
