// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ClientFields.h"

#include <algorithm>

#include "Value.h"

namespace coherence {

namespace {

using Params = vela::ProfileParams;

struct TextField {
    Field field;
    bool (Params::*has)() const;
    std::string (Params::*get)() const;
    void (Params::*set)(std::string);
};

constexpr TextField kTexts[] = {
    {Field::ApnName, &Params::hasApnName, &Params::getApnName, &Params::setApnName},
    {Field::UserName, &Params::hasUserName, &Params::getUserName, &Params::setUserName},
    {Field::Password, &Params::hasPassword, &Params::getPassword, &Params::setPassword},
};

enum class Scope { Both, Only3gpp };

struct NumberField {
    Field field;
    Scope scope;
    bool (Params::*has)() const;
    std::int64_t (*get)(const Params& params);
    void (*set)(Params& params, std::int64_t value);
};

template <auto Get, auto Set>
constexpr NumberField number(Field field, bool (Params::*has)() const, Scope scope = Scope::Both) {
    return {field, scope, has,
            [](const Params& params) { return static_cast<std::int64_t>((params.*Get)()); },
            [](Params& params, std::int64_t value) {
                (params.*Set)(static_cast<decltype((params.*Get)())>(value));
            }};
}

constexpr NumberField kNumbers[] = {
    number<&Params::getAuthType, &Params::setAuthType>(Field::AuthType, &Params::hasAuthType),
    number<&Params::getApnTypesMask, &Params::setApnTypesMask>(Field::ApnTypesMask,
                                                               &Params::hasApnTypesMask),
    number<&Params::getApnClass, &Params::setApnClass>(Field::ApnClass, &Params::hasApnClass),
    number<&Params::getIsClatEnabled, &Params::setIsClatEnabled>(Field::IsClatEnabled,
                                                                 &Params::hasIsClatEnabled),
    number<&Params::getMaxPdnsConnPerBlock, &Params::setMaxPdnsConnPerBlock>(
        Field::MaxPdnsConnPerBlock, &Params::hasMaxPdnsConnPerBlock, Scope::Only3gpp),
    number<&Params::getMaxPdnConnTimer, &Params::setMaxPdnConnTimer>(
        Field::MaxPdnConnTimer, &Params::hasMaxPdnConnTimer, Scope::Only3gpp),
    number<&Params::getPdnReqWaitInterval, &Params::setPdnReqWaitInterval>(
        Field::PdnReqWaitInterval, &Params::hasPdnReqWaitInterval, Scope::Only3gpp),
    number<&Params::getIsApnDisabled, &Params::setIsApnDisabled>(
        Field::IsApnDisabled, &Params::hasIsApnDisabled, Scope::Only3gpp),
    number<&Params::getIsEmergencySupported, &Params::setIsEmergencySupported>(
        Field::IsEmergencySupported, &Params::hasIsEmergencySupported, Scope::Only3gpp),
};

}  // namespace

Image clientFields(const Params& params, bool is3gpp2) {
    Image image{is3gpp2, {}, {}};
    for (const auto& row : kTexts) {
        if ((params.*row.has)()) {
            const auto text = (params.*row.get)();
            image.texts[row.field] =
                row.field == Field::ApnName ? lower(text.substr(0, kApnLimit)) : text;
        }
    }
    for (const auto& row : kNumbers) {
        if ((params.*row.has)() && !(is3gpp2 && row.scope == Scope::Only3gpp)) {
            image.numbers[row.field] = row.get(params);
        }
    }
    return image;
}

std::int64_t asClient(Field field, std::int64_t kept) {
    return field == Field::ApnTypesMask ? clientTypesOf(kept) : kept;
}

void tellFields(const Image& image, Params& params) {
    for (const auto& row : kTexts) {
        if (const auto text = image.text(row.field)) {
            (params.*row.set)(*text);
        }
    }
    for (const auto& row : kNumbers) {
        if (const auto number = image.number(row.field)) {
            row.set(params, asClient(row.field, *number));
        }
    }
}

}  // namespace coherence
