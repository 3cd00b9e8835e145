// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/JournalEntry.h"

namespace velasim {

std::string toString(JournalKind kind) {
    using enum JournalKind;
    // clang-format off
    switch (kind) {
        case NotifierCreated: return "notifier created";
        case ClientConnected: return "client connected";
        case Released: return "released";
        case Request: return "request";
        case Response: return "response";
        case IndicationQueued: return "indication queued";
        case IndicationDelivered: return "indication delivered";
        case IndicationDropped: return "indication dropped";
        case NotifyDelivered: return "notify delivered";
        case ErrorDelivered: return "error delivered";
        case ServiceUp: return "service up";
        case ServiceDown: return "service down";
        case PowerCycle: return "power cycle";
        case ForeignChange: return "foreign change";
        case FaultInjected: return "fault";
    }
    // clang-format on
    return "kind " + std::to_string(static_cast<int>(kind));
}

std::string JournalEntry::line() const {
    std::string out = std::to_string(sequence) + ' ' + toString(kind);
    const auto append = [&](bool present, const std::string& part) {
        if (present) {
            out += ' ' + part;
        }
    };
    append(client != 0, "client=" + std::to_string(client));
    append(instance >= 0, "modem=" + std::to_string(instance));
    append(fault.has_value(), fault ? toString(*fault) : "");
    append(messageId != 0, '"' + messageName(messageId) + '"');
    append(event != ChangeEvent::None, toString(event));
    append(technology.has_value(), technology ? toString(*technology) : "");
    append(index >= 0, "index=" + std::to_string(index));
    append(result != 0, "result=" + std::to_string(result));
    append(error != ModemError::None, "refused: " + toString(error));
    append(!text.empty(), text);
    return out;
}

}  // namespace velasim
