// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Util.h>

#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "modem/Workbench.h"
#include "operators/OperatorFile.h"

namespace velactl {

/**
 * Brings one modem in line with one operator's entries: APN classes, attach profile, a profile for
 * each entry that the modem does not hold, type masks.
 *
 * The order and what each step leaves alone make a second run change nothing. A class has one
 * owner, the first entry that asks for it. An attach profile is looked for only while the library
 * finds no profile that can serve the attach. An entry is held by a profile with its settings,
 * types and class apart. And types are written last, for all profiles at once, by the one policy
 * that knows how entries of one name share them.
 */
class Provisioner {
  public:
    Provisioner(Workbench& bench, const Operator& candidate)
        : bench(bench), candidate(candidate), attachEntry(candidate.attachEntry()) {}

    /** Once for each object. Afterwards the modem's table before and after, and as a JSON document
     * all else, secrets in clear: what became of each entry and of the attach, and what each
     * profile is there for. */
    void run();
    Json document() const;

    ProfileRecords before;
    ProfileRecords after;

  private:
    using Key = std::shared_ptr<vela::IProfileKey>;
    using Entries = std::vector<const OperatorEntry*>;
    /** The 3GPP profile that holds something; 0, and the reason: none does. */
    struct Holder {
        int index = 0;
        std::string reason = {};
    };

    void sift();
    bool findAttach();
    void provideAttach();
    /** Of a profile that somebody else made with an odd mix of IP types, any change can change how
     * it roams, and with that whether it serves the attach. */
    void keepAttach();
    /** The profile with the lowest index that has the entry's settings, or a new one. */
    Holder provide(const OperatorEntry& entry);
    void distributeTypes();
    std::list<Key> profilesNamed(const OperatorEntry& entry);
    Holder holderOf(const Key& key);
    Holder holderOfClass(const OperatorEntry& entry) const;
    /** Counts what has been sent, and says why the last of it that failed did. */
    std::string collectTraffic();

    // What became of it, as the modem is in the end.
    void settle();
    Json entryAsJson(const OperatorEntry& entry) const;
    std::string outcomeOf(const OperatorEntry& entry, int index) const;
    bool isRewritten(int index) const;
    Json attachAsJson() const;
    Json profileAsJson(const ProfileRecord& record, const Json& entries) const;
    Json differences(const OperatorEntry& entry, int index, bool ownsClass) const;
    bool isOwner(const OperatorEntry& entry) const;

    Workbench& bench;
    const Operator& candidate;
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

}  // namespace velactl
