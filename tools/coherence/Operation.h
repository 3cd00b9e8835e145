// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <velasim/Fault.h>
#include <velasim/Settings.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Image.h"
#include "vela/ProfileParams.h"

namespace coherence {

/**
 * One step of a run, as data: a run is a list of these, and stays a run when any of them are left
 * out. All random choices follow from `detail`.
 */
struct Operation {
    enum class Kind {
        Add,
        Modify,
        Delete,
        Filter,
        Match,
        Drop,
        Listen,
        RefreshStart,
        RefreshEnd,
        Init,
        ForeignCreate,
        ForeignModify,
        ForeignDelete,
        SubscriptionChange,
        ProfileReady,
        ServiceDown,
        ServiceUp,
        Restart,
        DeliverOne,
        DeliverAll,
        DeliverAtOnce,
        ReleaseDelayed,
        Inject,
        SetFault,
        ClearFaults
    };

    Kind kind = Kind::DeliverAll;
    unsigned slot = 0;   // the key that is used or filled
    unsigned other = 0;  // the key that a listener drops
    std::uint64_t detail = 0;
    /** Instead of one that follows from `detail`. */
    std::optional<velasim::FaultRule> givenRule;

    vela::AddProfileParams addParams() const;
    vela::ProfileParams params() const;
    vela::FilterProfileParams filter() const;
    /** The instance of the modem that the library is started on. */
    int instance() const;
    /** Someone else changes an instance that the library was not started on. */
    bool isElsewhere() const;
    /** A profile that the modem may have. */
    ProfileId id() const;
    velasim::Settings settings() const;
    velasim::FaultRule rule() const;
    /** An indication that no modem should send. */
    std::vector<std::uint8_t> bytes() const;
    std::uint32_t messageId() const;

    /** For people. */
    std::string line() const;
};

/**
 * The run of a seed. Some seeds have no faults, and some no restarts.
 * @param mix these faults and no others, from the start to the end; empty: a few of every kind,
 * some of the time
 */
std::vector<Operation> randomOperations(std::uint64_t seed, std::size_t count,
                                        const std::vector<velasim::FaultRule>& mix = {});

}  // namespace coherence
