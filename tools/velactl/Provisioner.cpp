// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Provisioner.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <optional>
#include <utility>

#include "Text.h"
#include "Words.h"

namespace velactl {

namespace {

using Kind = EntryOutcome::Kind;
using vela::ProfileParams;
using vela::TechType;

/** What the entry asks for must be there; credentials and a ban that it does not ask for must not.
 */
bool holds(const ProfileParams& profile, const ProfileParams& wanted) {
    for (const ProfileField& field : profileFields()) {
        const Json value = field.value(wanted);
        const bool isApnName = std::string_view(field.key) == "apn";  // compared by the library
        if (!value.is_null() && !isApnName && value != field.value(profile)) {
            return false;
        }
    }
    return profile.getUserName() == wanted.getUserName() &&
           profile.getPassword() == wanted.getPassword() &&
           profile.getIsApnDisabled() == wanted.getIsApnDisabled();
}

vela::FilterProfileParams named(const std::string& apnName) {
    vela::FilterProfileParams filter;
    filter.setFilterByTechType(TechType::TECH_3GPP);
    filter.setApnName(apnName);
    return filter;
}

template <typename Pick>
std::list<ProfileParams> paramsOf(const std::vector<const OperatorEntry*>& entries, Pick pick) {
    std::list<ProfileParams> list;
    for (const OperatorEntry* entry : entries) {
        if (entry->isUsable()) {
            list.push_back((entry->*pick)());
        }
    }
    return list;
}

std::string profileText(int index) {
    return "profile " + std::to_string(index);
}

}  // namespace

std::size_t ProvisionResult::count(Kind kind) const {
    return static_cast<std::size_t>(
        std::count_if(entries.begin(), entries.end(),
                      [kind](const EntryOutcome& outcome) { return outcome.kind == kind; }));
}

const OperatorEntry* Provisioner::attachEntry(const std::vector<const OperatorEntry*>& entries) {
    for (const vela::ApnTypes type : {vela::ApnTypes::IA, vela::ApnTypes::DEFAULT}) {
        for (const OperatorEntry* entry : entries) {
            if (entry->isUsable() && entry->has(type) && !entry->params.getIsApnDisabled()) {
                return entry;
            }
        }
    }
    return nullptr;
}

ProvisionResult Provisioner::run(const Operator& candidate, bool showSecrets) {
    result = {};
    made.clear();
    bench.takeTraffic();
    result.before = bench.modemProfiles();
    chooseOwners(candidate);
    setClasses();
    const OperatorEntry* attach = attachEntry(candidate.entries);
    result.attach = provideAttach(attach);
    addMissing(candidate);
    distributeTypes(candidate);
    keepAttach(attach, candidate);
    collectTraffic();
    result.after = bench.modemProfiles();
    result.changes = changesBetween(result.before, result.after, showSecrets);
    for (EntryOutcome& outcome : result.entries) {
        if (outcome.kind == Kind::Missing && outcome.text.empty()) {
            outcome = outcomeOfOwner(*outcome.entry);
        }
    }
    return std::exchange(result, {});
}

void Provisioner::chooseOwners(const Operator& candidate) {
    owners.clear();
    for (const OperatorEntry* entry : candidate.entries) {
        const bool isTaken = std::any_of(
            owners.begin(), owners.end(),
            [entry](const OperatorEntry* owner) { return owner->apnClass == entry->apnClass; });
        if (entry->isUsable() && entry->apnClass && !isTaken) {
            owners.push_back(entry);
        }
    }
}

void Provisioner::setClasses() {
    if (owners.empty()) {
        return;
    }
    policies.updateModemProfileByApnClass(paramsOf(owners, &OperatorEntry::withClass), {});
    for (const OperatorEntry* owner : owners) {
        vela::FilterProfileParams filter = named(owner->params.getApnName());
        filter.setApnClass(*owner->apnClass);
        for (const auto& key : bench.manager().filter(filter)) {
            if (!existed(key->getProfileId())) {
                made[key->getProfileId()] = owner;
            }
        }
    }
}

int Provisioner::servingAttach(const OperatorEntry& entry) {
    for (const auto& key : bench.manager().filter(named(entry.params.getApnName()))) {
        if (policies.matchLteAttachProfileId(key->getProfileId(), entry.params)) {
            return key->getProfileId();
        }
    }
    return 0;
}

std::string Provisioner::provideAttach(const OperatorEntry* entry) {
    if (entry == nullptr) {
        return "no entry of type ia or default: left as it is";
    }
    if (const int index = servingAttach(*entry); index != 0) {
        return profileText(index) + " can serve it already";
    }
    const auto key = policies.findOrCreateProfileForLteAttach(entry->params);
    if (!key) {
        return "no profile for it: " + collectTraffic();
    }
    const bool isFound = existed(key->getProfileId());
    if (!isFound) {
        made[key->getProfileId()] = entry;
    }
    return profileText(key->getProfileId()) + (isFound ? " found" : " created") +
           " for it, settings of line " + std::to_string(entry->line);
}

void Provisioner::keepAttach(const OperatorEntry* entry, const Operator& candidate) {
    constexpr int kTries = 2;
    for (int i = 0; i < kTries && entry != nullptr && servingAttach(*entry) == 0; ++i) {
        result.attach = provideAttach(entry);
        distributeTypes(candidate);
    }
}

void Provisioner::addMissing(const Operator& candidate) {
    for (const OperatorEntry* entry : candidate.entries) {
        const bool isOwner = std::find(owners.begin(), owners.end(), entry) != owners.end();
        collectTraffic();
        if (!entry->isUsable()) {
            result.entries.push_back({entry, Kind::Refused, 0, entry->refusal});
        } else if (isOwner) {
            // Its class has been set; whether that worked is seen at the end.
            result.entries.push_back({entry, Kind::Missing, 0, ""});
        } else {
            result.entries.push_back(provide(*entry));
        }
    }
}

EntryOutcome Provisioner::provide(const OperatorEntry& entry) {
    const std::string classText =
        entry.apnClass ? "; class " + word(*entry.apnClass) + " is another entry's" : "";
    if (const int index = holderOf(entry); index != 0) {
        const auto maker = made.find(index);
        if (maker == made.end()) {
            return {&entry, Kind::Held, index, "held by " + profileText(index) + classText};
        }
        const bool isOwn = maker->second == &entry;
        return {&entry, isOwn ? Kind::Added : Kind::Shared, index,
                isOwn ? "added as " + profileText(index) + ", for the attach"
                      : "shares " + profileText(index) + " with line " +
                            std::to_string(maker->second->line) + classText};
    }
    const vela::AddProfileParams params(entry.withTypes(), true, TechType::TECH_3GPP, false);
    if (const auto key = bench.manager().addProfile(params)) {
        made[key->getProfileId()] = &entry;
        return {&entry, Kind::Added, key->getProfileId(),
                "added as " + profileText(key->getProfileId()) + classText};
    }
    return {&entry, Kind::Missing, 0, "not added: " + collectTraffic()};
}

EntryOutcome Provisioner::outcomeOfOwner(const OperatorEntry& entry) const {
    const std::string text = ", class " + word(*entry.apnClass);
    for (const ProfileRecord& record : result.after) {
        if (record.tech != TechType::TECH_3GPP ||
            !sameLetters(record.params.getApnName(), entry.params.getApnName()) ||
            record.params.getApnClass() != *entry.apnClass) {
            continue;
        }
        const std::string profile = profileText(record.index);
        return existed(record.index)
                   ? EntryOutcome{&entry, Kind::Held, record.index, "held by " + profile + text}
                   : EntryOutcome{&entry, Kind::Added, record.index, "added as " + profile + text};
    }
    return {&entry, Kind::Missing, 0, "not added" + text + ": no profile of its class"};
}

void Provisioner::distributeTypes(const Operator& candidate) {
    policies.updateAPNTypeBitmaskOnModemProfile(
        paramsOf(candidate.entries, &OperatorEntry::withTypes));
}

int Provisioner::holderOf(const OperatorEntry& entry) {
    int lowest = 0;
    for (const auto& key : bench.manager().filter(named(entry.params.getApnName()))) {
        const int index = key->getProfileId();
        const auto profile = bench.manager().getProfile(key);
        if (profile && holds(*profile, entry.params) && (lowest == 0 || index < lowest)) {
            lowest = index;
        }
    }
    return lowest;
}

std::string Provisioner::collectTraffic() {
    Traffic traffic = bench.takeTraffic();
    result.writes += traffic.writes;
    std::move(traffic.refusals.begin(), traffic.refusals.end(),
              std::back_inserter(result.refusals));
    return result.refusals.empty() ? "the library did not say why" : result.refusals.back();
}

bool Provisioner::existed(int index) const {
    return findRecord(result.before, TechType::TECH_3GPP, index) != nullptr;
}

}  // namespace velactl
