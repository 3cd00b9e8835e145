// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include "EditCommands.h"
#include "PolicyCommands.h"
#include "ProvisionCommand.h"
#include "TableCommands.h"

namespace velactl {

namespace {

template <typename... Verbs>
void add(CommandList& commands) {
    (commands.push_back(std::make_unique<Verbs>()), ...);
}

}  // namespace

CommandList makeCommands() {
    CommandList commands;
    add<ListCommand, ShowCommand, AddCommand, ModifyCommand, DeleteCommand, MatchCommand,
        DumpCommand>(commands);
    add<ProvisionCommand>(commands);
    add<AttachCommand, MatchAttachCommand, DataCallCommand, EmergencyCommand, ApnClassCommand,
        TypeMaskCommand>(commands);
    addBackendCommands(commands);
    return commands;
}

}  // namespace velactl
