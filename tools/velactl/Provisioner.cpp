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
bool differs(const ProfileField& field, const ProfileParams& profile, const ProfileParams& wanted) {
    const std::string_view key = field.key;
    if (key == "apn") {
        return !sameLetters(profile.getApnName(), wanted.getApnName());
    }
    if (const Json value = field.value(wanted); !value.is_null()) {
        return value != field.value(profile);
    }
    return (key == "user" && !profile.getUserName().empty()) ||
           (key == "password" && !profile.getPassword().empty()) ||
           (key == "disabled" && profile.getIsApnDisabled());
}

bool holds(const ProfileParams& profile, const ProfileParams& wanted) {
    const auto& fields = profileFields();
    return std::none_of(fields.begin(), fields.end(),
                        [&](const ProfileField& field) { return differs(field, profile, wanted); });
}

/** "disabled=yes, home_ip=IPv6 instead of IPv4" */
std::string differencesText(const ProfileParams& profile, const ProfileParams& wanted,
                            bool showSecrets) {
    std::vector<std::string> parts;
    for (const ProfileField& field : profileFields()) {
        if (differs(field, profile, wanted)) {
            const bool isAsked = !field.value(wanted).is_null();
            const bool isHeld = !field.value(profile).is_null();
            parts.push_back(
                std::string(field.key) + '=' +
                (isHeld ? fieldText(field, profile, showSecrets) : "(absent)") +
                (isAsked ? " instead of " + fieldText(field, wanted, showSecrets) : ""));
        }
    }
    return join(parts, ", ");
}

/** Whether more than its types has changed: those are all entries' affair. */
bool isRewritten(const ProvisionResult& result, int index) {
    return std::any_of(
        result.changes.begin(), result.changes.end(), [index](const ProfileChange& change) {
            return change.kind == ProfileChange::Kind::Changed && change.record.index == index &&
                   change.record.tech == TechType::TECH_3GPP &&
                   std::any_of(change.fields.begin(), change.fields.end(),
                               [](const auto& field) { return field.key != "types"; });
        });
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

std::vector<std::string> ProvisionResult::failures() const {
    if (attach.kind == AttachOutcome::Kind::Missing) {
        return {"attach: " + attach.text};
    }
    if (refusals.empty() || count(Kind::Missing) != 0) {
        return {};
    }
    return {counted(refusals.size(), "request") + " in vain: " + refusals.back()};
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
        judge(outcome, showSecrets);
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

AttachOutcome Provisioner::provideAttach(const OperatorEntry* entry) {
    using Attach = AttachOutcome::Kind;
    if (entry == nullptr) {
        return {Attach::NotAsked, "no entry of type ia or default: left as it is"};
    }
    if (const int index = servingAttach(*entry); index != 0) {
        return {Attach::Serves, profileText(index) + " can serve it already"};
    }
    const auto key = policies.findOrCreateProfileForLteAttach(entry->params);
    if (!key) {
        return {Attach::Missing, "no profile for it: " + collectTraffic()};
    }
    const bool isFound = existed(key->getProfileId());
    if (!isFound) {
        made[key->getProfileId()] = entry;
    }
    return {isFound ? Attach::Found : Attach::Created,
            profileText(key->getProfileId()) + (isFound ? " found" : " created") +
                " for it, settings of line " + std::to_string(entry->line)};
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
        collectTraffic();
        if (!entry->isUsable()) {
            result.entries.push_back({entry, Kind::Refused, 0, entry->refusal});
        } else if (isOwner(*entry)) {
            // Its class has been set; whether that worked is seen at the end.
            result.entries.push_back({entry, Kind::Missing, 0, ""});
        } else {
            result.entries.push_back(provide(*entry));
        }
    }
}

EntryOutcome Provisioner::provide(const OperatorEntry& entry) {
    if (const int index = holderOf(entry); index != 0) {
        const auto maker = made.find(index);
        if (maker == made.end()) {
            return {&entry, Kind::Held, index, "held by " + profileText(index)};
        }
        const bool isOwn = maker->second == &entry;
        return {&entry, isOwn ? Kind::Added : Kind::Shared, index,
                isOwn ? "added as " + profileText(index) + ", for the attach"
                      : "shares " + profileText(index) + " with line " +
                            std::to_string(maker->second->line)};
    }
    const vela::AddProfileParams params(entry.withTypes(), true, TechType::TECH_3GPP, false);
    if (const auto key = bench.manager().addProfile(params)) {
        made[key->getProfileId()] = &entry;
        return {&entry, Kind::Added, key->getProfileId(),
                "added as " + profileText(key->getProfileId())};
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

bool Provisioner::isOwner(const OperatorEntry& entry) const {
    return std::find(owners.begin(), owners.end(), &entry) != owners.end();
}

void Provisioner::judge(EntryOutcome& outcome, bool showSecrets) const {
    const OperatorEntry& entry = *outcome.entry;
    const bool isOwned = isOwner(entry);
    if (entry.isUsable() && entry.apnClass && !isOwned) {
        outcome.oddities.push_back("class " + word(*entry.apnClass) + " is another entry's");
    }
    if (outcome.index == 0) {
        return;
    }
    if (outcome.kind == Kind::Held && isRewritten(result, outcome.index)) {
        outcome.kind = Kind::Rewritten;
        outcome.text = "rewritten: " + profileText(outcome.index) +
                       (isOwned ? ", class " + word(*entry.apnClass) : "");
    }
    const ProfileRecord* profile = findRecord(result.after, TechType::TECH_3GPP, outcome.index);
    if (profile == nullptr) {
        outcome.oddities.push_back(profileText(outcome.index) + " is no longer there");
    } else if (!holds(profile->params, entry.params)) {
        outcome.oddities.push_back("but " + profileText(outcome.index) + " has " +
                                   differencesText(profile->params, entry.params, showSecrets));
    }
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
    std::move(traffic.failures.begin(), traffic.failures.end(),
              std::back_inserter(result.refusals));
    return result.refusals.empty() ? "the library did not say why" : result.refusals.back();
}

bool Provisioner::existed(int index) const {
    return findRecord(result.before, TechType::TECH_3GPP, index) != nullptr;
}

}  // namespace velactl
