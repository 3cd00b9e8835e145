// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What the library's messages to the modem have come to.
#pragma once

#include <vela/Observer.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "modem/Backend.h"

namespace velactl {

using Messages = std::vector<vela::ModemMessage>;

/** One kind of message: all that is said of it is said here. */
struct MessageWords {
    vela::ModemMessageType type;
    const char* name;     // "create_profile"
    const char* purpose;  // "create a profile"
    const char* target;   // of a fault
    /** How many the library expects once the modem has carried it out. */
    int indications = 0;
};

/** Of all messages that the library sends. */
std::span<const MessageWords> allMessages();
const MessageWords& wordsOf(vela::ModemMessageType type);

inline const char* nameOf(vela::ModemMessageType type) {
    return wordsOf(type).name;
}

/** Whether it is to create, modify or delete a profile. */
inline bool isWrite(const vela::ModemMessage& message) {
    return wordsOf(message.type).indications != 0;
}

/** Why a message failed, whole: "the modem refused to create a profile: table full". Empty for one
 * that did not. */
std::string failureOf(const vela::ModemMessage& message, const Backend& modem);

/** What the library asked the modem to change. */
struct Traffic {
    std::size_t writes = 0;
    /** The changes that failed: refused, not answered or not sent, in words. */
    std::vector<std::string> failures = {};
    /** The same for reading the modem's tables. */
    std::vector<std::string> failedReads = {};
};

Traffic trafficOf(const Messages& messages, const Backend& modem);

/** What the library's first steps with a modem have come to. */
struct Connection {
    /** Why the modem cannot be worked with; empty: it can. */
    std::string failure;
    /** What is lacking all the same, one line each. */
    std::vector<std::string> notes;
};

/** Of the messages since the library was initialised, its first reading of the tables included. */
Connection connectionOf(const Messages& messages, std::optional<vela::ServiceState> service,
                        const Backend& modem);

}  // namespace velactl
