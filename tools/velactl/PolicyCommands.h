// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The verbs that run a policy: attach, match-attach, data-call, emergency, apn-class, type-mask.
#pragma once

#include <vela/Util.h>

#include <list>
#include <memory>
#include <vector>

#include "Command.h"
#include "OperatorOptions.h"
#include "ProfileAddress.h"
#include "ProfileOptions.h"

namespace velactl {

/** Runs one policy and tells what it decided and what that did to the modem. */
class PolicyCommand : public Command {
  public:
    PolicyCommand(const char* name, const char* description, const char* purpose)
        : Command(name, description), purpose(purpose) {}
    Exit run(const Context& context) final;

  protected:
    using Requests = std::list<vela::ProfileParams>;
    using Entries = std::vector<const OperatorEntry*>;

    struct Decision {
        /** Whether the policy came to an end that the caller wants. */
        bool isDone = true;
        /** What a policy that yields a profile has yielded. */
        std::shared_ptr<vela::IProfileKey> key;
        bool yieldsProfile = false;

        static Decision of(std::shared_ptr<vela::IProfileKey> key) {
            return {key != nullptr, key, true};
        }
    };

    void addOptions(CLI::App& app) override;

    /** Reads the verb's own options; throws ToolError. */
    virtual void check() {}
    /** The entries of an operator that the policy is run for. */
    virtual Entries pick(const Operator& candidate) const = 0;
    virtual Decision decide(vela::Util& policies, const Requests& requests) = 0;

    ProfileOptions fields;

  private:
    Requests requests() const;
    Exit report(const Context& context, Workbench& bench, const Requests& asked,
                const ProfileRecords& before, Decision decision);

    const char* purpose;
    OperatorOptions source;
    bool isUpdateAllowed = false;
};

class AttachCommand : public PolicyCommand {
  public:
    AttachCommand()
        : PolicyCommand("attach", "find or create the profile for the LTE attach", "LTE attach") {}

  protected:
    Entries pick(const Operator& candidate) const override;
    Decision decide(vela::Util& policies, const Requests& requests) override;
};

class MatchAttachCommand : public PolicyCommand {
  public:
    MatchAttachCommand()
        : PolicyCommand("match-attach", "whether a profile can serve the LTE attach",
                        "LTE attach with a given profile") {}

  protected:
    void addOptions(CLI::App& app) override;
    Entries pick(const Operator& candidate) const override;
    Decision decide(vela::Util& policies, const Requests& requests) override;

  private:
    int index = 0;
};

class DataCallCommand : public PolicyCommand {
  public:
    DataCallCommand()
        : PolicyCommand("data-call", "find or create the profile for a data call", "data call") {}

  protected:
    void addOptions(CLI::App& app) override;
    void check() override { address.tech(); }
    Entries pick(const Operator& candidate) const override;
    Decision decide(vela::Util& policies, const Requests& requests) override;

  private:
    ProfileAddress address;
};

class EmergencyCommand : public PolicyCommand {
  public:
    EmergencyCommand()
        : PolicyCommand("emergency", "find or create the profile for an emergency call",
                        "emergency call") {}

  protected:
    Entries pick(const Operator& candidate) const override;
    Decision decide(vela::Util& policies, const Requests& requests) override;
};

class ApnClassCommand : public PolicyCommand {
  public:
    ApnClassCommand()
        : PolicyCommand("apn-class", "bring the profiles of APN classes in line", "APN classes") {}

  protected:
    void addOptions(CLI::App& app) override;
    void check() override { address.tech(); }
    Entries pick(const Operator& candidate) const override { return candidate.entries; }
    Decision decide(vela::Util& policies, const Requests& requests) override;

  private:
    ProfileAddress address;
};

class TypeMaskCommand : public PolicyCommand {
  public:
    TypeMaskCommand()
        : PolicyCommand("type-mask", "distribute APN types over the profiles of each APN name",
                        "APN types") {}

  protected:
    Entries pick(const Operator& candidate) const override { return candidate.entries; }
    Decision decide(vela::Util& policies, const Requests& requests) override;
};

}  // namespace velactl
