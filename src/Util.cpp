// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/Util.h"

#include "LogWrapper.h"
#include "vela/Manager.h"

namespace vela {

Util::Util() : manager(Manager::getInstance()) {
    log(LogLevel::Debug, "vela::Util: constructor");
}

Util::~Util() {
    log(LogLevel::Debug, "vela::Util: destructor");
}

void Util::setProfileUpdateAllowed(bool allowed) {
    log(LogLevel::Notice, "vela::Util: profileUpdateAllowed %s", allowed ? "true" : "false");
    profileUpdateAllowed = allowed;
}

}  // namespace vela
