// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/Util.h>

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "modem/Workbench.h"
#include "profiles/Output.h"
#include "profiles/Text.h"

namespace velactl {

class SimulatedModem;
using Key = std::shared_ptr<vela::IProfileKey>;

/** A key that a scenario holds under a name. */
struct HeldKey {
    Key key;
    /** Calls of its listener, which are made on the library's worker thread. */
    std::shared_ptr<std::atomic<int>> expirations = std::make_shared<std::atomic<int>>(0);
    int toldExpirations = 0;
};

/** Where operations are played, and to whom that is told. */
struct Setting {
    ModemOptions modem;
    const OutputOptions& form;
    /** What is asked to be shown, and what operations bring about. */
    Output& story;
    Output& details;
    /** The progress of long work; columns 0: nobody watches. */
    std::ostream& err;
    std::size_t errColumns = 0;
    /** One operation that the command line asks for: whoever plays it tells why it was refused. */
    bool isVerb = false;
};

/**
 * Where operations are played: a modem, the library, and the keys held under names. The modem is
 * opened when the first operation needs it. Callbacks of a simulated one are delivered one by one
 * after each statement, unless they are held back, so that the same statements give the same run.
 */
class Stage {
  public:
    vela::Util policies;
    /** Whether policies may change what the library did not make, unless told otherwise. */
    bool isUpdateAllowed = false;
    /** From the start of a refresh to its completion the library answers nothing. */
    bool isRefreshing = false;
    /** Whoever types statements asks for no more. */
    bool isOver = false;

    explicit Stage(Setting setting) : setting(std::move(setting)) {}
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    /** Drops the keys while the modem is there. */
    ~Stage() { keys.clear(); }

    /** Opens the modem at the first call; throws ToolError. */
    Workbench& workbench();
    vela::Manager& manager() { return workbench().manager(); }
    Output& story() { return setting.story; }
    Output& details() { return setting.details; }
    const Setting& options() const { return setting; }
    bool showSecrets() const { return setting.story.showSecrets(); }

    /** Begins another statement: nothing has been told of it yet. */
    void begin(const std::string& operation);

    /** The fields of the statement's JSON document. */
    Json& document() { return setting.details.document(); }

    /** That document, whole: with how the statement ended. */
    Json takeDocument(Exit status, const std::string& error);

    /** Holds a key under a name, in place of the one that had it; an empty one leaves the name
     * without. Without a name it is let go at once, and what that did is told. */
    void hold(const std::string& name, Key key);

    /** Throws ToolError that lists the names there are. */
    HeldKey& held(const std::string& name);
    Names keyNames() const;

    /** The profile that a word means: the one of the key that is held under it, else that of the
     * number. Throws ToolError. */
    KeyName profileOf(const std::string& word, vela::TechType tech);
    /** The same with a key to it; empty, and noted as a refusal, when the library has none. */
    Key keyOf(const std::string& word, vela::TechType tech);

    /** Notes how an operation with this traffic ended, tells it and what failed. */
    void conclude(const Traffic& traffic, bool succeeded, const std::string& words);
    void conclude(bool succeeded, const std::string& words) {
        conclude(workbench().takeTraffic(), succeeded, words);
    }
    /** Why the current statement was refused; empty: it was not. */
    const std::string& refusal() const { return reason; }
    /** Of the last operation; empty before the first. */
    std::optional<bool> wasRefused() const { return refused; }

    /** Lets everything that was announced arrive, and tells whose listeners were called and what
     * has changed in the modem. */
    void settle();

    /** What has changed in the modem since the last call; whoever takes it tells it. */
    Json takeChanges();

    /** Tells whether library and modem agree, where both can be seen; false when they do not. */
    bool tellAgreement();

    /** Keeps the modem's memory. Throws ToolError that says what is lost. */
    void save();

    /** Whether the modem has changed, and is forgotten with the stage. */
    bool isForgotten() { return hasChanged && !bench->modem().keepsMemory(); }

  private:
    void tell(const Names& lines);
    void tellChanges(const char* key, const char* heading = nullptr);

    const Setting setting;
    std::optional<Workbench> bench;
    std::map<std::string, HeldKey> keys;
    ProfileRecords last;
    bool hasChanged = false;
    std::string reason;
    std::optional<bool> refused;
};

/** The stage's modem, where there is a simulator; throws ToolError when it is a device. */
SimulatedModem& simulatedModem(Stage& stage);

}  // namespace velactl
