// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Util.h>

#include <map>
#include <string>
#include <vector>

#include "OperatorFile.h"
#include "Workbench.h"

namespace velactl {

/** What has become of one entry of the operator. */
struct EntryOutcome {
    enum class Kind { Added, Held, Rewritten, Shared, Missing, Refused };

    const OperatorEntry* entry = nullptr;
    Kind kind = Kind::Refused;
    /** The 3GPP profile that serves it; 0: none. */
    int index = 0;
    /** In words. */
    std::string text;
    /** Where the profile is not what the entry asks for. */
    std::vector<std::string> oddities = {};
};

/** What has become of the attach profile. */
struct AttachOutcome {
    enum class Kind { NotAsked, Serves, Found, Created, Missing };

    Kind kind = Kind::NotAsked;
    /** In words. */
    std::string text;
};

struct ProvisionResult {
    ProfileRecords before;
    ProfileRecords after;
    std::vector<ProfileChange> changes;
    std::vector<EntryOutcome> entries;
    AttachOutcome attach;
    /** Requests to change something, and those that the modem refused. */
    std::size_t writes = 0;
    std::vector<std::string> refusals;

    std::size_t count(EntryOutcome::Kind kind) const;
    /** What went wrong, apart from entries without a profile. */
    std::vector<std::string> failures() const;
    bool isDone() const { return count(EntryOutcome::Kind::Missing) == 0 && failures().empty(); }
};

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
    explicit Provisioner(Workbench& bench) : bench(bench) {}

    ProvisionResult run(const Operator& candidate, bool showSecrets);

    /** The entry whose settings the attach uses: of type ia, else default; null when there is none.
     */
    static const OperatorEntry* attachEntry(const std::vector<const OperatorEntry*>& entries);

  private:
    void chooseOwners(const Operator& candidate);
    void setClasses();
    AttachOutcome provideAttach(const OperatorEntry* entry);
    /** Of a profile that somebody else made with an odd mix of IP types, any change can change how
     * it roams, and with that whether it serves the attach. */
    void keepAttach(const OperatorEntry* entry, const Operator& candidate);
    /** The profile that serves the attach as it is; 0: none. */
    int servingAttach(const OperatorEntry& entry);
    void addMissing(const Operator& candidate);
    void distributeTypes(const Operator& candidate);

    EntryOutcome provide(const OperatorEntry& entry);
    EntryOutcome outcomeOfOwner(const OperatorEntry& entry) const;
    /** Compares what was decided on the way with what the modem holds in the end. */
    void judge(EntryOutcome& outcome, bool showSecrets) const;
    bool isOwner(const OperatorEntry& entry) const;
    /** The lowest index of a profile that has the entry's settings; 0: none. */
    int holderOf(const OperatorEntry& entry);
    bool existed(int index) const;
    /** Counts what has been sent, and says why the modem refused the last of it. */
    std::string collectTraffic();

    Workbench& bench;
    vela::Util policies;
    ProvisionResult result;
    std::vector<const OperatorEntry*> owners;
    std::map<int, const OperatorEntry*> made;  // who a new profile was made for
};

}  // namespace velactl
