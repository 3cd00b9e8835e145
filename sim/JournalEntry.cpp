// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/JournalEntry.h"

#include <array>

namespace velasim {

std::string toString(JournalKind kind) {
    static constexpr std::array<const char*, 15> kTexts = {"notifier created",
                                                           "client connected",
                                                           "released",
                                                           "request",
                                                           "response",
                                                           "indication queued",
                                                           "indication delivered",
                                                           "indication dropped",
                                                           "notify delivered",
                                                           "error delivered",
                                                           "service up",
                                                           "service down",
                                                           "power cycle",
                                                           "foreign change",
                                                           "fault"};
    return kTexts.at(static_cast<std::size_t>(kind));
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
