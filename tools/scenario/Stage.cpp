// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "scenario/Stage.h"

#include <utility>

#include "profiles/Text.h"
#include "scenario/Option.h"

namespace velactl {

Workbench& Stage::workbench() {
    if (!bench) {
        bench.emplace(setting.modem);
        last = bench->modemProfiles();
        bench->takeTraffic();
    }
    return *bench;
}

void Stage::begin(const std::string& operation) {
    reason.clear();
    if (!setting.isVerb) {
        document() = {{"operation", Json()}, {"status", 0}, {"error", Json()}};
    }
    document()["operation"] = operation;
}

Json Stage::takeDocument(Exit status, const std::string& error) {
    document()["status"] = static_cast<int>(status);
    document()["error"] = error.empty() ? Json() : Json(error);
    return std::exchange(document(), Json::object());
}

void Stage::hold(const std::string& name, Key key) {
    if (key) {
        document()["technology"] = word(key->getTechType());
        document()["index"] = key->getProfileId();
    }
    if (name.empty()) {
        tellChanges("changes");
        key.reset();
        const auto failures = workbench().takeTraffic().failures;
        reason += (reason.empty() || failures.empty() ? "" : "; ") + join(failures, "; ");
        tellChanges("released", "Once its key is let go:");
        return;
    }
    keys.erase(name);
    if (key) {
        keys[name].key = std::move(key);
    }
}

HeldKey& Stage::held(const std::string& name) {
    if (keys.count(name) == 0) {
        throw velactl::refused(
            "no key is held as " + inQuotes(name) + "; " +
            (keys.empty() ? "none is held" : "held are " + join(keyNames(), ", ")));
    }
    return keys[name];
}

Names Stage::keyNames() const {
    return namesIn(keys, [](const auto& each) { return each.first; });
}

KeyName Stage::profileOf(const std::string& word, vela::TechType tech) {
    if (keys.count(word) == 0 && wrongNumber(word, 0, kMaxIndex).empty()) {
        return {tech, std::stoi(word)};
    }
    const Key& key = held(word).key;
    return {key->getTechType(), key->getProfileId()};
}

Key Stage::keyOf(const std::string& word, vela::TechType tech) {
    const KeyName name = profileOf(word, tech);
    if (keys.count(word) != 0) {
        return held(word).key;
    }
    try {
        return workbench().find(name.tech, name.index);
    } catch (const ToolError& error) {
        conclude(false, error.what());
        return nullptr;
    }
}

void Stage::conclude(const Traffic& traffic, bool succeeded, const std::string& words) {
    refused = !succeeded || !traffic.failures.empty();
    reason = !*refused ? "" : traffic.failures.empty() ? words : join(traffic.failures, "; ");
    document().emplace("changes", Json::array());
    document()["failures"] = traffic.failures;
    if (!setting.isVerb || !*refused) {
        tell(traffic.failures);
        if (!words.empty()) {
            details().line(words);
        }
    }
}

void Stage::tell(const Names& lines) {
    for (const std::string& line : lines) {
        details().line(line);
    }
}

void Stage::tellChanges(const char* key, const char* heading) {
    if (!bench || (isRefreshing && !bench->modem().modemProfiles())) {
        return;
    }
    const Json changes = takeChanges();
    if (changes.empty()) {
        return;
    }
    if (heading != nullptr) {
        details().line(heading);
    }
    details().changes(changes);
    std::copy(changes.begin(), changes.end(), std::back_inserter(document()[key]));
}

Json Stage::takeChanges() {
    const ProfileRecords now = workbench().modemProfiles();
    Json changes = changesBetween(std::exchange(last, now), now, showSecrets());
    hasChanged = hasChanged || !changes.empty();
    return changes;
}

void Stage::settle() {
    if (!bench) {
        return;
    }
    bench->settle();
    tell(bench->takeTraffic().failures);
    for (auto& [name, key] : keys) {
        for (; key.toldExpirations < *key.expirations; ++key.toldExpirations) {
            details().line("expired: " + name);
        }
    }
    tellChanges("changes");
}

bool Stage::tellAgreement() {
    const auto modem = bench ? bench->modem().modemProfiles() : std::nullopt;
    if (!modem) {
        return true;
    }
    const auto differences = bench->disagreements();
    details().line(differences.empty()
                       ? "Library and modem agree on " + counted(modem->size(), "profile") + '.'
                       : "LIBRARY AND MODEM DISAGREE:");
    tell(namesIn(differences, [](const auto& line) { return "  " + line; }));
    tell(bench->uncompared());
    document()["disagreements"] = differences;
    return differences.empty();
}

void Stage::save() {
    if (!bench) {
        return;
    }
    bench->settle();
    try {
        bench->modem().save();
    } catch (const ToolError& error) {
        throw velactl::refused(error.what() + std::string("; what has changed is lost"));
    }
}

}  // namespace velactl
