// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <vela/Manager.h>
#include <vela/Util.h>
#include <velasim/Simulator.h>

#include <iostream>

int main() {
    velasim::Simulator modem;  // on a device the modem is there already
    vela::Manager& manager = vela::Manager::getInstance();
    manager.init(0, false);
    modem.waitSubscribed();  // before that, every operation fails
    manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);

    vela::ProfileParams request;
    request.setApnName("internet");
    request.setHomeIPType(vela::IPType::V4V6);
    vela::Util policies;
    const auto key =
        policies.findOrCreateProfileForSetupDataCall(vela::TechType::TECH_3GPP, request);
    const auto profile = manager.getProfile(key);
    if (!profile) {
        return 1;
    }
    std::cout << key->dump() << ": " << profile->dump() << '\n';
}  // the key goes, and with it the temporary profile in the modem
