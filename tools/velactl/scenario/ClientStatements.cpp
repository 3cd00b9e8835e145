// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What the radio software does: operations of the library's clients, on keys held under names.

#include <algorithm>

#include "ProfileRecord.h"
#include "ToolError.h"
#include "scenario/Statement.h"

namespace velactl {

namespace {

std::string keyWords(const std::string& name, const std::shared_ptr<vela::IProfileKey>& key) {
    return name + " is " + key->dump();
}

/** Holds the result of a policy or of an add, which may be empty. The release of the key that had
 * the name is no part of the operation. */
void holdResult(Stage& stage, const std::string& name, std::shared_ptr<vela::IProfileKey> key) {
    stage.conclude(key != nullptr, key ? keyWords(name, key) : "no profile");
    stage.hold(name, std::move(key));
}

void add(Stage& stage, const Arguments& arguments) {
    const vela::AddProfileParams params(arguments.fields.params(), !arguments.isTemporary,
                                        arguments.tech(), arguments.isForAttach);
    holdResult(stage, arguments.words[0], stage.manager().addProfile(params));
}

void find(Stage& stage, const Arguments& arguments) {
    vela::FilterProfileParams filter(arguments.fields.params());
    filter.setFilterByTechType(arguments.tech());
    if (arguments.id) {
        filter.setFilterByProfileId(*arguments.id);
    }
    const auto keys = stage.manager().filter(filter);
    holdResult(stage, arguments.words[0], keys.empty() ? nullptr : keys.front());
}

void checkFields(const Arguments& arguments) {
    if (arguments.fields.isEmpty()) {
        throw badUsage("nothing to change; give at least one field, as --apn NAME");
    }
}

bool saysUnchanged(const std::vector<std::string>& log) {
    return std::any_of(log.begin(), log.end(), [](const std::string& line) {
        return line.find("profile is unchanged") != std::string::npos;
    });
}

void modify(Stage& stage, const Arguments& arguments) {
    const bool done = stage.manager().modifyProfile(
        vela::ModifyProfileParams(arguments.fields.params()), stage.held(arguments.words[0]).key);
    const Traffic traffic = stage.takeTraffic();
    const bool isVain = done && traffic.writes == 0 && !saysUnchanged(traffic.log);
    stage.conclude(traffic, done && !isVain,
                   !done    ? "the library reports failure"
                   : isVain ? "the library reports success, but does not know the profile's "
                              "settings and sent nothing"
                            : "the library reports success");
}

void remove(Stage& stage, const Arguments& arguments) {
    const bool done = stage.manager().deleteProfile(stage.held(arguments.words[0]).key);
    stage.conclude(done, done ? "deleted" : "not deleted");
}

void get(Stage& stage, const Arguments& arguments) {
    const auto profile = stage.manager().getProfile(stage.held(arguments.words[0]).key);
    stage.conclude(profile.has_value(),
                   profile ? describe(*profile, stage.showSecrets()) : "the key names no profile");
}

void match(Stage& stage, const Arguments& arguments) {
    const bool matches = stage.manager().match(vela::FilterProfileParams(arguments.fields.params()),
                                               stage.held(arguments.words[0]).key);
    stage.conclude(matches, matches ? "matches" : "does not match");
}

void drop(Stage& stage, const Arguments& arguments) {
    stage.drop(arguments.words[0]);
    stage.conclude(true, "dropped " + arguments.words[0]);
}

void listen(Stage& stage, const Arguments& arguments) {
    HeldKey& held = stage.held(arguments.words[0]);
    if (!held.expirations) {
        held.expirations = std::make_shared<ExpirationCounter>();
    }
    held.key->registerExpirationListener([counter = held.expirations] { counter->count(); });
    stage.conclude(true, arguments.words[0] + " listens");
}

void attach(Stage& stage, const Arguments& arguments) {
    holdResult(stage, arguments.words[0],
               stage.policies().findOrCreateProfileForLteAttach(arguments.fields.params()));
}

void dataCall(Stage& stage, const Arguments& arguments) {
    holdResult(stage, arguments.words[0],
               stage.policies().findOrCreateProfileForSetupDataCall(arguments.tech(),
                                                                    arguments.fields.params()));
}

void emergency(Stage& stage, const Arguments& arguments) {
    holdResult(stage, arguments.words[0],
               stage.policies().findOrCreateProfileForEmergencyDataCall(arguments.fields.params()));
}

void checkOneOf(const Arguments& arguments, const char* first, const char* second) {
    if (arguments.words[0] != first && arguments.words[0] != second) {
        throw badUsage("\"" + arguments.words[0] + "\": use " + first + " or " + second);
    }
}

void checkOnOff(const Arguments& arguments) {
    checkOneOf(arguments, "on", "off");
}

void allowUpdate(Stage& stage, const Arguments& arguments) {
    stage.policies().setProfileUpdateAllowed(arguments.words[0] == "on");
}

void checkRefresh(const Arguments& arguments) {
    checkOneOf(arguments, "started", "completed");
}

void refresh(Stage& stage, const Arguments& arguments) {
    const bool started = arguments.words[0] == "started";
    stage.manager().refresh(started ? vela::PDCRefreshStatus::RefreshStarted
                                    : vela::PDCRefreshStatus::RefreshCompleted);
    stage.setRefreshing(started);
    const Traffic traffic = stage.takeTraffic();
    const std::string failure = traffic.failedReads.empty() ? "" : traffic.failedReads.front();
    stage.conclude(traffic, failure.empty(),
                   "refresh " + arguments.words[0] + (failure.empty() ? "" : ", but " + failure));
}

}  // namespace

std::vector<StatementKind> clientStatements() {
    return {
        {"add", "KEY [fields] [--tech T] [--temporary] [--ia]", "create a profile, hold its key", 1,
         1, kFields | kTech | kLifetime, nullptr, add},
        {"find", "KEY [--id N] [fields] [--tech T]", "hold a key of the first profile that matches",
         1, 1, kFields | kTech | kSearch, nullptr, find},
        {"modify", "KEY fields", "change a profile", 1, 1, kFields, checkFields, modify},
        {"delete", "KEY", "delete a profile from the modem", 1, 1, kNoOptions, nullptr, remove},
        {"get", "KEY", "read a profile through the library", 1, 1, kNoOptions, nullptr, get},
        {"match", "KEY fields", "does the profile match?", 1, 1, kFields, nullptr, match},
        {"drop", "KEY", "let a key go", 1, 1, kNoOptions, nullptr, drop},
        {"listen", "KEY", "tell when the profile behind the key expires", 1, 1, kNoOptions, nullptr,
         listen},
        {"attach", "KEY [fields]", "find or create the profile for LTE attach", 1, 1, kFields,
         nullptr, attach},
        {"data-call", "KEY [fields] [--tech T]", "find or create the profile for a data call", 1, 1,
         kFields | kTech, nullptr, dataCall},
        {"emergency", "KEY [fields]", "find or create the profile for an emergency call", 1, 1,
         kFields, nullptr, emergency},
        {"allow-update", "on|off", "may policies change profiles that they did not create?", 1, 1,
         kNoOptions, checkOnOff, allowUpdate},
        {"refresh", "started|completed", "the modem's profile database is being replaced", 1, 1,
         kNoOptions, checkRefresh, refresh},
    };
}

}  // namespace velactl
