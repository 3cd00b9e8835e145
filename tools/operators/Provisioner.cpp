// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "operators/Provisioner.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "profiles/ProfileRecord.h"
#include "profiles/Text.h"
#include "profiles/Words.h"

namespace velactl {

namespace {

using vela::ProfileParams;
using vela::TechType;

bool saysNothing(const Json& value) {
    return value.empty() || value == Json("") || value == "none" || value == false || value == 0;
}

template <typename Value>
Json valueOrNull(const Value& value) {
    return value == Value() ? Json() : Json(value);
}

/** By field: what a profile holds and what it is asked for, null being nothing. The fields that are
 * asked for and held otherwise, and those that are held without being asked for, unless they say
 * nothing: no, 0, none or empty. Who made the profile does not count. */
Json differencesBetween(const Json& held, const Json& asked) {
    using Scope = ProfileField::Scope;
    Json result = differencesOf(shownFields(held), asked, "held", "asked");
    for (const ProfileField& field : profileFields()) {
        const bool isOfMaker = field.scope == Scope::Filter || field.scope == Scope::Profile;
        if (isOfMaker || (field.of(asked).is_null() && saysNothing(field.of(held)))) {
            result.erase(field.key);
        }
    }
    return result;
}

/** Whether a profile will do: it has what is asked for, and neither credentials nor a ban beyond
 * that. */
bool isHeldBy(const Json& held, const Json& asked) {
    static const std::set<std::string> unwanted{"user", "password", "disabled"};
    const Json differences = differencesBetween(held, asked);
    const auto all = differences.items();
    return std::none_of(all.begin(), all.end(), [](const auto& item) {
        return !item.value()["asked"].is_null() || unwanted.count(item.key()) != 0;
    });
}

std::list<ProfileParams> requestsOf(const std::vector<const OperatorEntry*>& entries, bool hasTypes,
                                    bool hasClass) {
    std::list<ProfileParams> list;
    for (const OperatorEntry* entry : entries) {
        list.push_back(entry->profile(hasTypes, hasClass));
    }
    return list;
}

}  // namespace

void Provisioner::run() {
    bench.takeTraffic();
    before = bench.modemProfiles();
    sift();
    if (!owners.empty()) {
        policies.updateModemProfileByApnClass(requestsOf(owners, false, true), {});
    }
    if (!findAttach()) {
        provideAttach();
    }
    for (const OperatorEntry* entry : distinct) {
        if (!isOwner(*entry)) {
            holders[entry] = provide(*entry);
        }
    }
    distributeTypes();
    keepAttach();
    collectTraffic();
    after = bench.modemProfiles();
    settle();
}

/** Repetitions need nothing of their own, and a class has the first entry that asks for it as its
 * owner. */
void Provisioner::sift() {
    std::map<std::string, const OperatorEntry*> known;
    for (const OperatorEntry& entry : candidate.entries) {
        if (!entry.isUsable()) {
            continue;
        }
        first[&entry] = known.emplace(entry.wanted(true, true).dump(), &entry).first->second;
        if (first[&entry] != &entry) {
            continue;
        }
        distinct.push_back(&entry);
        const bool isTaken = std::any_of(owners.begin(), owners.end(), [&](const auto* owner) {
            return owner->apnClass == entry.apnClass;
        });
        if (!entry.apnClass.is_null() && !isTaken) {
            owners.push_back(&entry);
        }
    }
}

void Provisioner::distributeTypes() {
    policies.updateAPNTypeBitmaskOnModemProfile(requestsOf(distinct, true, false));
}

auto Provisioner::profilesNamed(const OperatorEntry& entry) -> std::list<Key> {
    vela::FilterProfileParams filter;
    filter.setFilterByTechType(TechType::TECH_3GPP);
    filter.setApnName(entry.apnName());
    return bench.manager().filter(filter);
}

bool Provisioner::findAttach() {
    canServe = false;
    if (attachEntry == nullptr) {
        return false;
    }
    for (const Key& key : profilesNamed(*attachEntry)) {
        if (policies.matchLteAttachProfileId(key->getProfileId(),
                                             attachEntry->profile(false, false))) {
            canServe = true;
            if (attach.index == 0) {
                attach.index = key->getProfileId();
                attachOutcome = "serves";
            }
            return true;
        }
    }
    return false;
}

void Provisioner::provideAttach() {
    if (attachEntry == nullptr) {
        return;
    }
    const ProfileRecords old = bench.modemProfiles();
    attach = holderOf(policies.findOrCreateProfileForLteAttach(attachEntry->profile(false, false)));
    const bool isFound = findRecord(old, TechType::TECH_3GPP, attach.index) != nullptr;
    attachOutcome = isFound ? "found" : "created";
}

void Provisioner::keepAttach() {
    constexpr int kTries = 2;
    const bool isThere = attach.index != 0;
    for (int i = 0; !findAttach() && isThere && i < kTries; ++i) {
        provideAttach();
        distributeTypes();
    }
}

auto Provisioner::provide(const OperatorEntry& entry) -> Holder {
    int lowest = 0;
    for (const Key& key : profilesNamed(entry)) {
        const auto params = bench.manager().getProfile(key);
        const int index = key->getProfileId();
        if (params && (lowest == 0 || index < lowest) &&
            isHeldBy(fieldsOf(*params), entry.fields)) {
            lowest = index;
        }
    }
    return lowest != 0 ? Holder{lowest}
                       : holderOf(bench.manager().addProfile(
                             {entry.profile(true, false), true, TechType::TECH_3GPP, false}));
}

auto Provisioner::holderOf(const Key& key) -> Holder {
    return key ? Holder{key->getProfileId()} : Holder{0, collectTraffic()};
}

std::string Provisioner::collectTraffic() {
    Traffic traffic = bench.takeTraffic();
    writes += traffic.writes;
    std::move(traffic.failures.begin(), traffic.failures.end(), std::back_inserter(refusals));
    return refusals.empty() ? "the library did not say why" : refusals.back();
}

bool Provisioner::isOwner(const OperatorEntry& entry) const {
    return std::find(owners.begin(), owners.end(), &entry) != owners.end();
}

/** Lets go of profiles that are gone, finds those of the owners, and whom each is for. */
void Provisioner::settle() {
    for (const OperatorEntry* owner : owners) {
        holders[owner] = holderOfClass(*owner);
        makers.emplace(holders[owner].index, owner);
    }
    const auto letGo = [this](Holder& holder) {
        if (findRecord(after, TechType::TECH_3GPP, holder.index) == nullptr && holder.index != 0) {
            holder = {0, "profile " + std::to_string(holder.index) + " is no longer there"};
        }
    };
    letGo(attach);
    if (attachOutcome == "created") {
        makers.emplace(attach.index, attachEntry);
    }
    for (const OperatorEntry* entry : distinct) {
        letGo(holders[entry]);
        makers.emplace(holders[entry].index, entry);
        servedTypes[holders[entry].index] |= entry->types;
    }
}

/** The profile of its name and class. */
auto Provisioner::holderOfClass(const OperatorEntry& entry) const -> Holder {
    for (const ProfileRecord& record : after) {
        if (record.tech == TechType::TECH_3GPP &&
            record.fields.value("class", Json()) == entry.apnClass &&
            sameLetters(record.apnName(), entry.apnName())) {
            return {record.index};
        }
    }
    return {0, "no profile of its class"};
}

Json Provisioner::document() const {
    Json entries = Json::array();
    for (const OperatorEntry& entry : candidate.entries) {
        entries.push_back(entryAsJson(entry));
    }
    Json profiles = Json::array();
    for (const ProfileRecord& record : after) {
        profiles.push_back(profileAsJson(record, entries));
    }
    return {{"operator", candidate.name()}, {"carrier", candidate.carrier()}, {"entries", entries},
            {"attach", attachAsJson()},     {"profiles", profiles},           {"requests", writes},
            {"refusals", refusals}};
}

Json Provisioner::entryAsJson(const OperatorEntry& entry) const {
    const bool isUsable = entry.isUsable();
    const OperatorEntry& asked = isUsable ? *first.at(&entry) : entry;
    const Holder holder = isUsable ? holders.at(&asked) : Holder{0, entry.refusal};
    const std::string outcome = isUsable ? outcomeOf(entry, holder.index) : "refused";
    const bool isOwned = isOwner(asked);
    return {
        {"line", entry.line},
        {"carrier", entry.carrier},
        {"outcome", outcome},
        {"index", valueOrNull(holder.index)},
        {"shared_with_line", outcome == "shared" ? Json(makers.at(holder.index)->line) : Json()},
        {"reason", valueOrNull(holder.reason)},
        {"owns_class", isOwner(entry)},
        {"class_is_taken", isUsable && !entry.apnClass.is_null() && !isOwned},
        {"differences", differences(entry, holder.index, isOwned)},
        {"wanted", toJson(entry.wanted(true, true), true)},
        {"notes", entry.notes},
        {"not_sent", entry.notSent}};
}

std::string Provisioner::outcomeOf(const OperatorEntry& entry, int index) const {
    if (index == 0) {
        return "missing";
    }
    if (findRecord(before, TechType::TECH_3GPP, index) != nullptr) {
        return isRewritten(index) ? "rewritten" : "held";
    }
    return makers.at(index) == &entry ? "added" : "shared";
}

/** Whether more than the profile's types has changed: those are all entries' affair. */
bool Provisioner::isRewritten(int index) const {
    const auto changes = changesBetween(before, after, true);
    return std::any_of(changes.begin(), changes.end(), [index](const Json& change) {
        const Json& fields = change["fields"];
        return change["technology"] == "3GPP" && change["index"] == index &&
               fields.size() > fields.count("types");
    });
}

Json Provisioner::attachAsJson() const {
    const bool isAsked = attachEntry != nullptr;
    return {
        {"outcome", isAsked && attach.index == 0 ? "missing" : attachOutcome},
        {"line", isAsked ? Json(attachEntry->line) : Json()},
        {"index", valueOrNull(attach.index)},
        {"reason", valueOrNull(attach.reason)},
        {"can_serve", isAsked ? Json(canServe) : Json()},
        {"differences", isAsked ? differences(*attachEntry, attach.index, false) : Json::object()}};
}

/** What a profile is not that it is to be for an entry: with the types of all entries that share
 * it, and with a class that is another entry's only if it has that. */
Json Provisioner::differences(const OperatorEntry& entry, int index, bool ownsClass) const {
    const ProfileRecord* record = findRecord(after, TechType::TECH_3GPP, index);
    if (record == nullptr) {
        return Json::object();
    }
    const bool hasClass = record->fields.value("class", Json()) == entry.apnClass;
    const auto served = servedTypes.find(index);
    OperatorEntry all = entry;
    all.types |= served == servedTypes.end() ? 0U : served->second;
    return differencesBetween(record->fields, all.wanted(true, ownsClass || hasClass));
}

Json Provisioner::profileAsJson(const ProfileRecord& record, const Json& entries) const {
    const bool is3gpp = record.tech == TechType::TECH_3GPP;
    const bool isForAttach = is3gpp && attach.index == record.index;
    Json lines = Json::array();
    for (const Json& entry : entries) {
        if (is3gpp && entry["index"] == record.index) {
            lines.push_back(entry["line"]);
        }
    }
    const bool isUnused = !isForAttach && lines.empty();
    const auto like = std::find_if(distinct.begin(), distinct.end(), [&](const auto* entry) {
        return isUnused && is3gpp && isHeldBy(record.fields, entry->fields);
    });
    const Json name{{"apn", record.fields.value("apn", Json())}};
    return {{"technology", word(record.tech)},
            {"index", record.index},
            {"apn", record.apnName()},
            {"lines", lines},
            {"attach", isForAttach},
            {"like_line", like == distinct.end() ? Json() : Json((*like)->line)},
            {"left_over", isUnused ? differencesBetween(record.fields, name) : Json::object()}};
}

}  // namespace velactl
