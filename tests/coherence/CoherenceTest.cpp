// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <wds_service_v01.h>

#include <map>
#include <set>

#include "Campaign.h"
#include "Driver.h"
#include "Watchdog.h"

namespace coherence {
namespace {

using Kind = Operation::Kind;
using velasim::Fault;
using velasim::FaultPoint;

TEST(Coherence, FixedSeeds) {
    Campaign campaign;
    campaign.seeds = 60;
    campaign.steps = 120;
    ASSERT_TRUE(campaign.run());
}

TEST(Coherence, SameSeedSameJournal) {
    for (std::uint64_t seed = 1001; seed <= 1006; ++seed) {
        const auto operations = randomOperations(seed, 150);
        const auto journal = Driver(seed, true).run(operations).journal;
        EXPECT_FALSE(journal.empty());
        EXPECT_EQ(Driver(seed, true).run(operations).journal, journal) << "seed " << seed;
    }
}

// A script that has every request and every indication, a listener, a temporary profile with two
// keys, a foreign change, a reload, and an outage.
std::vector<Operation> script() {
    std::vector<Operation> steps;
    const auto step = [&](Kind kind, unsigned slot = 0, std::uint64_t detail = 0) {
        steps.push_back({kind, slot, slot + 1, detail, {}});
    };
    // The details are picked: two temporary profiles and a persistent one, of both technologies.
    std::uint64_t temporary = 1;
    std::uint64_t persistent = 1;
    const auto isFit = [](std::uint64_t detail, bool wantPersistent, int technology) {
        const auto params = Operation{Kind::Add, 0, 0, detail, {}}.addParams();
        return params.getIsPersistent() == wantPersistent && params.hasApnName() &&
               static_cast<int>(params.getTechType()) == technology;
    };
    while (!isFit(temporary, false, 0)) {
        ++temporary;
    }
    while (!isFit(persistent, true, 1)) {
        ++persistent;
    }
    step(Kind::Init, 0, 1);  // on the instance that is not the modem's first
    step(Kind::DeliverAll);
    step(Kind::Add, 0, temporary);
    step(Kind::Add, 2, persistent);
    step(Kind::DeliverAll);
    step(Kind::Listen, 0);
    step(Kind::Modify, 0, 7);
    step(Kind::Filter, 0, 3);
    step(Kind::DeliverAll);
    step(Kind::ForeignModify, 0, 11);
    step(Kind::ForeignCreate, 0, 12);
    step(Kind::DeliverAtOnce);
    step(Kind::ForeignCreate, 0, 9);  // on the modem's other instance
    step(Kind::ProfileReady, 0, 1);
    step(Kind::DeliverAll);
    step(Kind::Add, 4, temporary);
    step(Kind::Listen, 4);
    step(Kind::Modify, 4, 9);
    step(Kind::Drop, 4);
    step(Kind::DeliverAll);
    step(Kind::Add, 6, temporary);
    step(Kind::Restart);
    step(Kind::DeliverAtOnce);
    step(Kind::DeliverAll);
    step(Kind::RefreshStart);
    step(Kind::Drop, 2);
    step(Kind::RefreshEnd);
    step(Kind::Add, 5, persistent);
    step(Kind::Delete, 5);
    step(Kind::DeliverAll);
    return steps;
}

/** Every fault at every occurrence of what it can strike, until it strikes no more. */
class Sweep : public testing::TestWithParam<Fault> {};

TEST_P(Sweep, OneFaultAtEveryBoundary) {
    const Watchdog watchdog(std::chrono::seconds(300), "the sweep of " + toString(GetParam()));
    const auto steps = script();
    ASSERT_EQ(Driver(1).run(steps).failure, "");
    std::uint32_t places = 0;
    for (bool hasStruck = true; hasStruck; ++places) {
        Operation fault{Kind::SetFault, 0, 0, 0, velasim::FaultRule{}};
        fault.givenRule->fault = GetParam();
        fault.givenRule->first = places + 1;
        auto faulty = steps;
        faulty.insert(faulty.begin(), fault);
        const auto outcome = Driver(1).run(faulty);
        ASSERT_EQ(outcome.failure, "")
            << fault.line() << ", step " << outcome.step << ": "
            << (outcome.step < faulty.size() ? faulty[outcome.step].line() : "the end");
        hasStruck = outcome.faults != 0;
    }
    // The connection is made once at the start and once more after the restart.
    EXPECT_GT(places, pointOf(GetParam()) == FaultPoint::Connect ? 2U : 3U);
}

std::string caseName(const testing::TestParamInfo<Fault>& info) {
    std::string name = toString(info.param);
    std::erase(name, '-');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Coherence, Sweep, testing::ValuesIn(velasim::allFaults()), caseName);

}  // namespace
}  // namespace coherence
