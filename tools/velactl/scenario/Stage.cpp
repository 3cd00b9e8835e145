// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Stage.h"

#include <utility>

#include "Text.h"
#include "ToolError.h"

namespace velactl {

void ExpirationCounter::count() {
    const std::lock_guard lock(mutex);
    ++number;
}

int ExpirationCounter::calls() const {
    const std::lock_guard lock(mutex);
    return number;
}

Stage::Stage(const ModemOptions& options, bool showSecrets, Telling telling, LogSink sink)
    : telling(telling),
      showsSecrets(showSecrets),
      bench(options, std::move(sink)),
      simulated(dynamic_cast<SimulatedModem&>(bench.modem())) {}

Stage::~Stage() {
    keys.clear();
}

void Stage::hold(const std::string& name, std::shared_ptr<vela::IProfileKey> key) {
    keys.erase(name);
    if (key) {
        keys.emplace(name, HeldKey{std::move(key), nullptr, 0});
    }
}

HeldKey& Stage::held(const std::string& name) {
    const auto found = keys.find(name);
    if (found == keys.end()) {
        const auto names = keyNames();
        throw velactl::refused("no key is held as " + inQuotes(name) + "; " +
                               (names.empty() ? "none is held" : "held are " + join(names, ", ")));
    }
    return found->second;
}

void Stage::drop(const std::string& name) {
    held(name);
    keys.erase(name);
}

std::vector<std::string> Stage::keyNames() const {
    std::vector<std::string> names;
    for (const auto& [name, key] : keys) {
        names.push_back(name);
    }
    return names;
}

Traffic Stage::takeTraffic() {
    Traffic traffic = bench.takeTraffic();
    logLines.insert(logLines.end(), traffic.log.begin(), traffic.log.end());
    return traffic;
}

void Stage::conclude(const Traffic& traffic, bool succeeded, const std::string& words) {
    refused = !succeeded || !traffic.failures.empty();
    tell(traffic.failures);
    out() << "  " << words << '\n';
}

void Stage::tell(const std::vector<std::string>& failures) {
    for (const std::string& failure : failures) {
        out() << "  " << failure << '\n';
    }
}

std::vector<std::string> Stage::journalLines() {
    const auto entries = simulator().journal().snapshot();
    std::vector<std::string> lines;
    if (!entries.empty() && entries.front().sequence > 1) {
        lines.push_back("the first " + counted(entries.front().sequence - 1, "entry") +
                        " are gone: the journal is limited");
    }
    for (const velasim::JournalEntry& entry : entries) {
        lines.push_back(printable(entry.line()));
    }
    return lines;
}

void Stage::settle() {
    bench.settle();
    tell(takeTraffic().failures);
    for (auto& [name, key] : keys) {
        const int calls = key.expirations ? key.expirations->calls() : 0;
        for (; key.toldExpirations < calls; ++key.toldExpirations) {
            out() << "  expired: " << name << '\n';
        }
    }
}

}  // namespace velactl
