// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// What shows something and changes nothing, and what the radio software does with single profiles.
#include "scenario/Operation.h"
#include "scenario/Stage.h"

namespace velactl {

namespace {

/** Tells of profiles under a heading, and in the document under a key. */
void tell(Stage& stage, const std::string& heading, const char* key,
          const ProfileRecords& records) {
    stage.story().profiles(heading, records);
    stage.document()[key] = stage.story().toJson(records);
}

void list(Stage& stage, const Arguments& arguments) {
    tell(stage,
         "Profiles of modem instance " + std::to_string(stage.options().modem.instance) + ':',
         "profiles", stage.workbench().libraryProfiles(arguments.filter()));
}

void show(Stage& stage, const Arguments& arguments) {
    Workbench& bench = stage.workbench();
    Output& output = stage.story();
    if (arguments.words.empty()) {
        tell(stage, "The modem:", "modem", bench.modemProfiles());
        return stage.isRefreshing
                   ? output.line("The library: answers nothing until refresh completed")
                   : tell(stage, "The library:", "library", bench.libraryProfiles());
    }
    const KeyName profile = stage.profileOf(arguments.word(), arguments.tech());
    const ProfileRecords all = bench.libraryProfiles();
    const ProfileRecord* record = findRecord(all, profile.tech, profile.index);
    if (record == nullptr) {
        bench.find(profile.tech, profile.index);  // says why there is none
        throw refused("profile " + arguments.word() + " has come only now; ask again");
    }
    output.line(title(*record) + ':');
    const Json shown = shownFields(record->fields);
    auto fields = profileFields();
    std::erase_if(fields, [&](const auto& each) { return !shown.contains(each.key); });
    Table table;
    table.add("FIELD", namesIn(fields, &ProfileField::key));
    table.add("VALUE", namesIn(fields, [&](const auto& each) {
                  return valueText(each, each.of(shown), output.showSecrets());
              }));
    output.table(table);
    stage.document().update(toJson(*record, output.showSecrets()));
}

void dump(Stage& stage, const Arguments& /*arguments*/) {
    Json& lines = stage.document()["lines"] = Json::array();
    for (const std::string& line : stage.manager().dump()) {
        const std::string shown = stage.showSecrets() ? line : withoutPassword(line);
        stage.story().line(printable(shown));
        lines.push_back(shown);
    }
}

void keys(Stage& stage, const Arguments& /*arguments*/) {
    for (const std::string& name : stage.keyNames()) {
        stage.story().line(name + " is " + stage.held(name).key->dump());
        stage.document()["keys"].push_back(name);
    }
}

void say(Stage& stage, const Arguments& arguments) {
    stage.story().line(printable(join(arguments.words, " ")));
}

/** Tells of a key, which may be empty, and holds it. The release of the key that had the name
 * is no part of the operation. */
void yield(Stage& stage, const Arguments& arguments, Key key, const char* nothing) {
    const std::string name = arguments.word();
    stage.conclude(key != nullptr, !key           ? nothing
                                   : name.empty() ? word(key->getTechType()) + " profile " +
                                                        std::to_string(key->getProfileId())
                                                  : name + " is " + key->dump());
    stage.hold(name, std::move(key));
}

/** The operation on the profile that the first word means; without one it is refused. */
template <void (*operate)(Stage&, const Arguments&, const Key&)>
void onProfile(Stage& stage, const Arguments& arguments) {
    const Key key = stage.keyOf(arguments.word(), arguments.tech());
    stage.workbench().takeTraffic();
    if (key) {
        operate(stage, arguments, key);
    }
}

void checkAdd(const Arguments& arguments) {
    if (arguments.has("--ia") && arguments.tech() != vela::TechType::TECH_3GPP) {
        throw badUsage("--ia: only 3GPP profiles serve the LTE attach; leave --tech out");
    }
    requireKept(arguments.fields(), arguments.tech());
}

void add(Stage& stage, const Arguments& arguments) {
    const vela::AddProfileParams params(paramsOf(arguments.fields()), !arguments.has("--temporary"),
                                        arguments.tech(), arguments.has("--ia"));
    yield(stage, arguments, stage.manager().addProfile(params), "the library reports failure");
}

void find(Stage& stage, const Arguments& arguments) {
    vela::FilterProfileParams filter = arguments.filter();
    filter.setFilterByTechType(arguments.tech());
    const auto keys = stage.manager().filter(filter);
    yield(stage, arguments, keys.empty() ? nullptr : keys.front(), "no profile matches");
}

void modify(Stage& stage, const Arguments& arguments, const Key& key) {
    requireKept(arguments.fields(), key->getTechType());
    const bool done =
        stage.manager().modifyProfile(vela::ModifyProfileParams(paramsOf(arguments.fields())), key);
    const Traffic traffic = stage.workbench().takeTraffic();
    const bool isSilent = done && traffic.writes == 0;
    // The library compares with what it has read; without that it cannot know what to send.
    const bool isVain = isSilent && !stage.manager().getProfile(key);
    stage.workbench().takeTraffic();
    stage.conclude(traffic, done && !isVain,
                   !done    ? "the library reports failure"
                   : isVain ? "the library reports success, but does not know the profile's "
                              "settings and sent nothing"
                   : isSilent
                       ? "the library reports success, and sent nothing: it found nothing to "
                         "change"
                       : "the library reports success");
}

void remove(Stage& stage, const Arguments& /*arguments*/, const Key& key) {
    const bool done = stage.manager().deleteProfile(key);
    stage.conclude(done, done ? "deleted" : "the library reports failure");
}

void get(Stage& stage, const Arguments& /*arguments*/, const Key& key) {
    const auto profile = stage.manager().getProfile(key);
    stage.conclude(profile.has_value(), profile ? describe(fieldsOf(*profile), stage.showSecrets())
                                                : "the key names no profile");
    if (profile) {
        stage.document()["profile"] = toJson(*profile, stage.showSecrets());
    }
}

void matchOne(Stage& stage, const Arguments& arguments, const Key& key) {
    const bool matches = stage.manager().match(arguments.filter(), key);
    stage.conclude(matches, matches ? "matches" : "does not match");
}

void match(Stage& stage, const Arguments& arguments) {
    if (!arguments.words.empty()) {
        return onProfile<matchOne>(stage, arguments);
    }
    const ProfileRecords records = stage.workbench().libraryProfiles(arguments.filter());
    stage.document()["profiles"] = stage.story().toJson(records);
    stage.conclude(!records.empty(), records.empty() ? "no profile matches" : "");
    if (!records.empty()) {
        const char* verb = records.size() == 1 ? " matches:" : " match:";
        stage.story().profiles(counted(records.size(), "profile") + verb, records);
    }
}

void drop(Stage& stage, const Arguments& arguments) {
    stage.held(arguments.word());
    stage.hold(arguments.word(), nullptr);
    stage.conclude(true, "dropped " + arguments.word());
}

void listen(Stage& stage, const Arguments& arguments) {
    HeldKey& held = stage.held(arguments.word());
    held.key->registerExpirationListener([counter = held.expirations] { ++*counter; });
    stage.conclude(true, arguments.word() + " listens");
}

void refresh(Stage& stage, const Arguments& arguments) {
    const bool started = arguments.word() == "started";
    stage.manager().refresh(started ? vela::PDCRefreshStatus::RefreshStarted
                                    : vela::PDCRefreshStatus::RefreshCompleted);
    stage.isRefreshing = started;
    const Traffic traffic = stage.workbench().takeTraffic();
    const std::string failure = traffic.failedReads.empty() ? "" : traffic.failedReads.front();
    stage.conclude(traffic, failure.empty(),
                   "refresh " + arguments.word() + (failure.empty() ? "" : ", but " + failure));
}

void init(Stage& stage, const Arguments& arguments) {
    const auto instance =
        static_cast<int>(arguments.number("--instance", stage.options().modem.instance));
    const std::string failure = stage.workbench().connect(instance).failure;
    stage.takeChanges();
    stage.conclude(failure.empty(),
                   failure.empty() ? "initialised for modem instance " + std::to_string(instance)
                                   : "the modem does not answer: " + failure);
}

}  // namespace

Operations profileOperations() {
    constexpr unsigned kLook = kEverywhere | kLooking;
    return {
        sectionOf("Looking"),
        {"list", "the profiles, as the library sees them", list, kTech, kLook},
        {"show [KEY|ID]",
         "one profile, field by field; without a word the modem's table and the library's", show,
         kTech, kLook},
        {"dump", "the library's own dump: cache, expected indications, log", dump, kNoOptions,
         kLook},
        {"keys", "the keys that are held", keys},
        {"say [TEXT...]", "tell the reader", say, kFreeText},

        sectionOf("Profiles"),
        {"add [KEY]", "create a profile and hold its key", add, kFields | kTech | kLifetime,
         kEverywhere, checkAdd},
        {"find [KEY]", "hold the key of the first profile that the library finds", find,
         kSearch | kTech},
        {"modify KEY|ID", "change the given fields of a profile", onProfile<modify>,
         kSomeField | kTech, kEverywhere},
        {"delete KEY|ID", "delete a profile from the modem", onProfile<remove>, kTech, kEverywhere},
        {"get KEY|ID", "read a profile through the library", onProfile<get>, kTech},
        {"match [KEY|ID]",
         "whether the profile has these fields; without a word the profiles that have them", match,
         kSearch | kTech, kEverywhere | kLooking},
        {"drop KEY", "let the key go", drop},
        {"listen KEY", "register an expiration listener; its calls are told as `expired: KEY`",
         listen},
        {"init", "initialise the library again; keys from before name nothing any more", init,
         kInstance},
        {"refresh started|completed",
         "tell the library that the modem's profiles are being replaced; in between it answers "
         "nothing",
         refresh},
    };
}

}  // namespace velactl
