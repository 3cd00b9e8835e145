// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "modem/Workbench.h"

namespace velactl {

/** A decision's document, told for people. */
Names storyOf(const Json& document);

/** A name of the document's own in words: "not_sent" as "not sent". */
std::string wordsOf(const Json& name);

/**
 * The record of one run of a policy: what was asked and answered, every candidate, what was sent
 * and what that changed, from what the observer is told and from the modem's own tables where they
 * can be seen. One object at a time; the workbench must outlive it.
 */
class Decision : private vela::Observer {
  public:
    /** All that happens from here on counts. `operation` is for people, as "data call". */
    Decision(Workbench& bench, const std::string& operation);
    ~Decision() override { bench.tell(nullptr); }

    /** The policy has come back. */
    void end();

    /** The caller has dropped its key. */
    void release();

    /** Whether it came to the end that its caller wants; nothing failed, nor the release. */
    bool isDone() const { return document["done"].get<bool>(); }

    /** What the policy has not yielded, and why; empty when it has. */
    std::string refusal() const;

    /** Each message that the modem has not carried out and each request that the library has
     * refused, with its reason. */
    const std::vector<std::string>& failures() const { return reasons; }

    /** The whole record, as docs/decisions.md describes it. */
    Json toJson(bool showSecrets) const { return masked(document, showSecrets); }

    /** The story of that for people. */
    std::vector<std::string> lines(bool showSecrets) const { return storyOf(toJson(showSecrets)); }

  private:
    void onRequest(const vela::ClientRequest& request) override;
    void onResponse(const vela::ClientRequest& request, const vela::ClientResponse* response,
                    std::chrono::nanoseconds duration) override;
    void onSearch(const vela::ClientRequest& request,
                  const std::vector<vela::ProfileCandidate>& candidates) override;
    void onMessage(const vela::ModemMessage& message) override;
    void onIndication(const vela::ModemIndication& indication) override;
    void onService(vela::ServiceState state) override;
    void onPolicyBegin(const vela::PolicyCall& policy) override;
    void onPolicyEnd(const vela::PolicyCall& policy, const vela::PolicyResult& result) override;

    Json take();
    void conclude(bool isReleased, Json releaseSteps);
    Json stepOf(const vela::ClientRequest& request) const;
    Json knownOf(const Json& place) const;
    Json changesSince();
    void noteOthersChanges();
    void passOver(const char* kind);

    Workbench& bench;
    /** The modem's table when the steps began, and as it was last seen; empty where it cannot be
     * seen. */
    std::optional<ProfileRecords> before;
    std::optional<ProfileRecords> table;
    /** All that has been taken, secrets in clear. */
    Json document;
    Json steps = Json::array();
    /** Requests that have not come back. */
    std::map<const vela::ClientRequest*, Json> open;
    std::vector<std::string> reasons;
    int depth = 0;
    /** The place of the policy's profile; null when there is none. */
    Json yielded;
    bool matches = false;
};

}  // namespace velactl
