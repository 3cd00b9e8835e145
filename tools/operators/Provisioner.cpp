// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "operators/Provisioner.h"

#include <vela/Util.h>

#include <algorithm>
#include <iterator>
#include <list>
#include <map>
#include <set>
#include <utility>

#include "profiles/Text.h"

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

using Entries = std::vector<const OperatorEntry*>;

std::list<ProfileParams> requestsOf(const Entries& entries, bool hasTypes, bool hasClass) {
    std::list<ProfileParams> list;
    for (const OperatorEntry* entry : entries) {
        list.push_back(entry->profile(hasTypes, hasClass));
    }
    return list;
}

const ProfileRecord* recordIn(const ProfileRecords& records, int index) {
    return findRecord(records, TechType::TECH_3GPP, index);
}

class Provisioner {
  public:
    Provisioner(Workbench& bench, const Operator& candidate)
        : bench(bench), candidate(candidate), attachEntry(candidate.attachEntry()) {}

    Provisioned run() {
        bench.takeTraffic();
        result.before = bench.modemProfiles();
        sift();
        if (!owners.empty()) {
            policies.updateModemProfileByApnClass(requestsOf(owners, false, true), {});
        }
        if (attachEntry != nullptr && !findAttach()) {
            provideAttach();
        }
        for (const OperatorEntry* entry : distinct) {
            if (!isOwner(*entry)) {
                holders[entry] = provide(*entry);
            }
        }
        distributeTypes();
        if (attachEntry != nullptr) {
            keepAttach();
        }
        collectTraffic();
        result.after = bench.modemProfiles();
        settle();
        tell();
        return std::move(result);
    }

  private:
    using Key = std::shared_ptr<vela::IProfileKey>;
    /** The 3GPP profile that holds something; 0, and the reason: none does. */
    struct Holder {
        int index = 0;
        std::string reason = {};
    };

    /** Repetitions need nothing of their own, and a class has the first entry that asks for it as
     * its owner. */
    void sift() {
        std::map<std::string, const OperatorEntry*> known;
        std::set<Json> classes{Json()};
        for (const OperatorEntry& entry : candidate.entries) {
            if (!entry.isUsable()) {
                continue;
            }
            first[&entry] = known.emplace(entry.wanted(true, true).dump(), &entry).first->second;
            if (first[&entry] == &entry) {
                distinct.push_back(&entry);
                if (classes.insert(entry.apnClass).second) {
                    owners.push_back(&entry);
                }
            }
        }
    }

    void distributeTypes() {
        policies.updateAPNTypeBitmaskOnModemProfile(requestsOf(distinct, true, false));
    }

    static vela::FilterProfileParams named(const OperatorEntry& entry) {
        vela::FilterProfileParams filter;
        filter.setFilterByTechType(TechType::TECH_3GPP);
        filter.setApnName(entry.apnName());
        return filter;
    }

    /** Whether the library finds a profile that can serve the attach. */
    bool findAttach() {
        const auto keys = bench.manager().filter(named(*attachEntry));
        const auto found = std::find_if(keys.begin(), keys.end(), [this](const Key& key) {
            return policies.matchLteAttachProfileId(key->getProfileId(),
                                                    attachEntry->profile(false, false));
        });
        canServe = found != keys.end();
        if (canServe && attach.index == 0) {
            attach.index = (*found)->getProfileId();
            attachOutcome = "serves";
        }
        return canServe;
    }

    void provideAttach() {
        const ProfileRecords old = bench.modemProfiles();
        attach =
            holderOf(policies.findOrCreateProfileForLteAttach(attachEntry->profile(false, false)));
        attachOutcome = recordIn(old, attach.index) != nullptr ? "found" : "created";
    }

    /** Of a profile that somebody else made with an odd mix of IP types, any change can change how
     * it roams, and with that whether it serves the attach. */
    void keepAttach() {
        constexpr int kTries = 2;
        const bool isThere = attach.index != 0;
        for (int i = 0; !findAttach() && isThere && i < kTries; ++i) {
            provideAttach();
            distributeTypes();
        }
    }

    /** The profile with the lowest index that has the entry's settings, or a new one. */
    Holder provide(const OperatorEntry& entry) {
        for (const ProfileRecord& record : bench.libraryProfiles(named(entry))) {
            if (isHeldBy(record.fields, entry.fields)) {
                return {record.index};
            }
        }
        return holderOf(bench.manager().addProfile(
            {entry.profile(true, false), true, TechType::TECH_3GPP, false}));
    }

    Holder holderOf(const Key& key) {
        return key ? Holder{key->getProfileId()} : Holder{0, collectTraffic()};
    }

    /** Counts what has been sent, and says why the last of it that failed did. */
    std::string collectTraffic() {
        Traffic traffic = bench.takeTraffic();
        writes += traffic.writes;
        std::move(traffic.failures.begin(), traffic.failures.end(), std::back_inserter(refusals));
        return refusals.empty() ? "the library did not say why" : refusals.back();
    }

    bool isOwner(const OperatorEntry& entry) const {
        return std::find(owners.begin(), owners.end(), &entry) != owners.end();
    }

    /** Lets go of profiles that are gone, finds those of the owners, and whom each is for. */
    void settle() {
        for (const OperatorEntry* owner : owners) {
            holders[owner] = holderOfClass(*owner);
            makers.emplace(holders[owner].index, owner);
        }
        const auto letGo = [this](Holder& holder) {
            if (recordIn(result.after, holder.index) == nullptr && holder.index != 0) {
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
    Holder holderOfClass(const OperatorEntry& entry) const {
        for (const ProfileRecord& record : result.after) {
            if (record.tech == TechType::TECH_3GPP &&
                record.fields.value("class", Json()) == entry.apnClass &&
                sameLetters(record.apnName(), entry.apnName())) {
                return {record.index};
            }
        }
        return {0, "no profile of its class"};
    }

    void tell() {
        Json entries = Json::array();
        for (const OperatorEntry& entry : candidate.entries) {
            entries.push_back(entryAsJson(entry));
        }
        Json profiles = Json::array();
        for (const ProfileRecord& record : result.after) {
            profiles.push_back(profileAsJson(record, entries));
        }
        result.document = {{"operator", candidate.name()}, {"carrier", candidate.carrier()},
                           {"entries", entries},           {"attach", attachAsJson()},
                           {"profiles", profiles},         {"requests", writes},
                           {"refusals", refusals}};
    }

    Json entryAsJson(const OperatorEntry& entry) const {
        const bool isUsable = entry.isUsable();
        const OperatorEntry& asked = isUsable ? *first.at(&entry) : entry;
        const Holder holder = isUsable ? holders.at(&asked) : Holder{0, entry.refusal};
        const std::string outcome = isUsable ? outcomeOf(entry, holder.index) : "refused";
        const bool isOwned = isOwner(asked);
        return {{"line", entry.line},
                {"carrier", entry.carrier},
                {"outcome", outcome},
                {"index", valueOrNull(holder.index)},
                {"shared_with_line",
                 outcome == "shared" ? Json(makers.at(holder.index)->line) : Json()},
                {"reason", valueOrNull(holder.reason)},
                {"owns_class", isOwner(entry)},
                {"class_is_taken", isUsable && !entry.apnClass.is_null() && !isOwned},
                {"differences", differences(entry, holder.index, isOwned)},
                {"wanted", toJson(entry.wanted(true, true), true)},
                {"notes", entry.notes},
                {"not_sent", entry.notSent}};
    }

    std::string outcomeOf(const OperatorEntry& entry, int index) const {
        if (index == 0) {
            return "missing";
        }
        const ProfileRecord* old = recordIn(result.before, index);
        if (old == nullptr) {
            return makers.at(index) == &entry ? "added" : "shared";
        }
        Json changes =
            differencesOf(old->fields, recordIn(result.after, index)->fields, "old", "new");
        changes.erase("types");  // which are all entries' affair
        return changes.empty() ? "held" : "rewritten";
    }

    Json attachAsJson() const {
        const bool isAsked = attachEntry != nullptr;
        return {{"outcome", isAsked && attach.index == 0 ? "missing" : attachOutcome},
                {"line", isAsked ? Json(attachEntry->line) : Json()},
                {"index", valueOrNull(attach.index)},
                {"reason", valueOrNull(attach.reason)},
                {"can_serve", isAsked ? Json(canServe) : Json()},
                {"differences",
                 isAsked ? differences(*attachEntry, attach.index, false) : Json::object()}};
    }

    /** What a profile is not that it is to be for an entry: with the types of all entries that
     * share it, and with a class that is another entry's only if it has that. */
    Json differences(const OperatorEntry& entry, int index, bool ownsClass) const {
        const ProfileRecord* record = recordIn(result.after, index);
        if (record == nullptr) {
            return Json::object();
        }
        const bool hasClass = record->fields.value("class", Json()) == entry.apnClass;
        const auto served = servedTypes.find(index);
        OperatorEntry all = entry;
        all.types |= served == servedTypes.end() ? 0U : served->second;
        return differencesBetween(record->fields, all.wanted(true, ownsClass || hasClass));
    }

    Json profileAsJson(const ProfileRecord& record, const Json& entries) const {
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

    Workbench& bench;
    const Operator& candidate;
    Provisioned result;
    vela::Util policies;

    /** Of all usable entries that ask for the same the first, by each of them. */
    std::map<const OperatorEntry*, const OperatorEntry*> first;
    /** Those, in the file's order; and of them the first that ask for a class each. */
    Entries distinct;
    Entries owners;
    std::map<const OperatorEntry*, Holder> holders;

    const OperatorEntry* const attachEntry;  // whose settings the attach is to have
    Holder attach;
    std::string attachOutcome = "not asked for";
    bool canServe = false;  // whether the library finds that a profile can serve the attach

    std::size_t writes = 0;
    std::vector<std::string> refusals;

    // By index: the entry that a new profile was made for, the types of all that it serves.
    std::map<int, const OperatorEntry*> makers;
    std::map<int, unsigned int> servedTypes;
};

}  // namespace

Provisioned provisionModem(Workbench& bench, const Operator& candidate) {
    return Provisioner(bench, candidate).run();
}

}  // namespace velactl
