// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Command.h"

#include "LogMask.h"
#include "Text.h"

namespace velactl {

LogSink Context::logSink() const {
    if (!options.log) {
        return {};
    }
    return [&stream = err, showSecrets = options.showSecrets](std::string_view line) {
        // One write per line: the lines come on several threads.
        stream << "log: " + printable(showSecrets ? std::string(line) : withoutPassword(line)) +
                      '\n';
    };
}

bool Context::tellAgreement(Workbench& bench) const {
    const auto modem = bench.modem().modemProfiles();
    if (!modem) {
        return true;
    }
    const auto differences = bench.disagreements();
    output.line(differences.empty()
                    ? "Library and modem agree on " + counted(modem->size(), "profile") + '.'
                    : "LIBRARY AND MODEM DISAGREE:");
    for (const std::string& line : differences) {
        output.line("  " + line);
    }
    output.document()["disagreements"] = differences;
    return differences.empty();
}

void Context::save(Workbench& bench) const {
    bench.settle();
    const std::string told = bench.save();
    if (!told.empty()) {
        output.note(told);
    }
}

}  // namespace velactl
