// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Checkup.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>

namespace {

using vela::TechType;
using velasim::JournalKind;
using velasim::Technology;

constexpr int kPatience = 100;
constexpr std::chrono::milliseconds kMoment{100};
// Indications of before may wait behind one that could not be decoded, and strike late.
constexpr int kAttempts = 8;
const char* const kName = "checkup";

/** How the library's last attempt to be connected went, as far as the journal reaches. */
enum class Connection { Made, Refused, AwaitsService };

Connection lastConnection(const velasim::Journal::Entries& entries) {
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        if (entry->fault == velasim::Fault::ClientInitFailure) {
            return Connection::Refused;
        }
        if (entry->kind == JournalKind::ClientConnected) {
            return entry->result == 0 ? Connection::Made : Connection::Refused;
        }
        if (entry->kind == JournalKind::NotifierCreated || entry->kind == JournalKind::Released) {
            return Connection::AwaitsService;
        }
    }
    return Connection::Made;
}

bool complain(bool holds, const char* complaint) {
    if (!holds) {
        std::fprintf(stderr, "soak: %s\n", complaint);
    }
    return holds;
}

}  // namespace

bool Checkup::passes() {
    watchdog.doing("waiting for the library's subscription");
    if (!complain(isConnected(), "the library has lost the service")) {
        return false;
    }
    watchdog.doing("adding, reading and deleting at rest");
    if (!complain(works(), "the library does not work at rest")) {
        return false;
    }
    watchdog.doing("comparing cache and modem");
    return complain(agrees(), "cache and modem differ after a reload") &&
           complain(simulator.openHandles() == 1, "messaging clients or notifiers leak");
}

bool Checkup::isConnected() {
    for (int i = 0; i < kPatience; ++i) {
        if (simulator.waitSubscribed(0, kMoment)) {
            return true;
        }
        connectAgain();
    }
    return false;
}

/** Nothing repeats the steps of connecting: where one has failed, the library waits, as it may. A
 * library that has seen no such failure gets no help. */
void Checkup::connectAgain() {
    switch (lastConnection(simulator.journal().snapshot())) {
        case Connection::Refused:  // by a fault, or the service went away in the middle
            library.refresh(vela::PDCRefreshStatus::RefreshCompleted);  // listeners run before
            library.init(0, false);
            ++inits;
            return;
        case Connection::Made:  // a step of the subscription failed
            simulator.restart();
            ++restarts;
            return;
        case Connection::AwaitsService:
            return;
    }
}

bool Checkup::works() {
    for (int i = 0; i < kAttempts; ++i) {
        settle();
        if (carriesOut(i % 2 == 0 ? TechType::TECH_3GPP : TechType::TECH_3GPP2)) {
            return true;
        }
    }
    return false;
}

bool Checkup::carriesOut(TechType type) {
    simulator.foreignDelete(
        0, type == TechType::TECH_3GPP ? Technology::ThreeGpp : Technology::ThreeGpp2, 100);
    settle();  // now the table is not full
    vela::AddProfileParams params(false, type, false);
    params.setApnName(kName);
    const auto key = library.addProfile(params);
    if (!key || key->getTechType() != type) {
        return false;
    }
    const auto found = library.getProfile(key);
    const bool isFound = found && found->getApnName() == kName;
    return library.deleteProfile(key) && isFound && !library.getProfile(key);
}

bool Checkup::agrees() {
    for (int i = 0; i < kAttempts; ++i) {
        settle();
        library.refresh(vela::PDCRefreshStatus::RefreshCompleted);
        settle();
        if (cached() == stored()) {
            return true;
        }
    }
    return false;
}

std::vector<Checkup::Profile> Checkup::cached() {
    std::vector<Profile> profiles;
    for (const auto& key : library.filter(vela::FilterProfileParams())) {
        const auto params = library.getProfile(key);
        profiles.emplace_back(key->getTechType() == TechType::TECH_3GPP2, key->getProfileId(),
                              params ? params->getApnName() : "none");
    }
    std::sort(profiles.begin(), profiles.end());
    return profiles;
}

std::vector<Checkup::Profile> Checkup::stored() const {
    std::vector<Profile> profiles;
    for (const auto& one : simulator.profiles(0, Technology::ThreeGpp)) {
        profiles.emplace_back(false, one.index,
                              velasim::textOf(one.settings, "apn_name").value_or("none"));
    }
    for (const auto& one : simulator.profiles(0, Technology::ThreeGpp2)) {
        profiles.emplace_back(true, one.index,
                              velasim::textOf(one.settings, "apn_string_3gpp2").value_or("none"));
    }
    return profiles;
}

/** Callbacks have been made, and the worker has handled what they signalled. */
void Checkup::settle() {
    simulator.waitIdle();
    for (int trip = 0; trip < 3; ++trip) {  // it may be past the signal in its current pass
        library.getProfile(nullptr);
    }
    watchdog.progress();
}
