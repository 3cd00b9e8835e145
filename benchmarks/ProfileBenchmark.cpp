// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What happens to one profile on the worker.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

#include "LogWrapper.h"
#include "Modem3gppProfile.h"
#include "vela/ProfileParams.h"

namespace {

vela::ProfileParams fullRecord() {
    vela::ProfileParams params;
    params.setApnName("Internet.Operator.Example");
    params.setUserName("user");
    params.setPassword("password");
    params.setAuthType(vela::AuthType::PAP_CHAP);
    params.setHomeIPType(vela::IPType::V4);
    params.setRoamIPType(vela::IPType::V6);
    params.setApnTypesMask(vela::ApnTypes::DEFAULT | vela::ApnTypes::MMS | vela::ApnTypes::XCAP);
    params.setApnClass(vela::ApnClass::INET);
    return params;
}

/** The limit of building a message: zeroing as many bytes. */
void zeroCreateMessage(benchmark::State& state) {
    wds_create_profile_req_msg_v01 message;
    for ([[maybe_unused]] const auto _ : state) {
        std::memset(&message, 0, sizeof(message));
        benchmark::DoNotOptimize(message);
    }
}
BENCHMARK(zeroCreateMessage);

void constructCreateMessage(benchmark::State& state) {
    vela::ProfileParams params = fullRecord();
    vela::Modem3gppProfile profile(params);
    for ([[maybe_unused]] const auto _ : state) {
        benchmark::DoNotOptimize(profile.constructAddRequest());
    }
}
BENCHMARK(constructCreateMessage);

void matchFullFilter(benchmark::State& state) {
    vela::ProfileParams params = fullRecord();
    vela::Modem3gppProfile profile(params);
    vela::FilterProfileParams filter(params);
    for ([[maybe_unused]] const auto _ : state) {
        benchmark::DoNotOptimize(profile.match(filter));
    }
}
BENCHMARK(matchFullFilter);

/** The limit of a log line: formatting it. */
void formatLine(benchmark::State& state) {
    char line[512];
    for ([[maybe_unused]] const auto _ : state) {
        std::snprintf(line, sizeof(line), "Manager::%s > %s", "filter", "Filter params: None: ");
        benchmark::DoNotOptimize(line);
    }
}
BENCHMARK(formatLine);

void logNotice(benchmark::State& state) {
    for ([[maybe_unused]] const auto _ : state) {
        vela::log(vela::LogLevel::Notice, "Manager::%s > %s", "filter", "Filter params: None: ");
    }
}
BENCHMARK(logNotice);

}  // namespace
