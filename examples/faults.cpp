// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// A modem that restarts at the worst moment: what happened, and what the library makes of it.
#include <vela/Manager.h>
#include <velasim/Settle.h>
#include <velasim/Simulator.h>

#include <cstdio>

int main() {
    velasim::SimulatorOptions options;
    options.delivery = velasim::DeliveryMode::Stepped;
    velasim::Simulator modem(options);

    vela::Manager& radio = vela::Manager::getInstance();
    radio.init(0, false);
    velasim::settle(radio, modem);  // the library is told of the service, and subscribes
    radio.refresh(vela::PDCRefreshStatus::RefreshCompleted);

    // The modem restarts between the answer to a create and its indications.
    modem.faults().add({.fault = velasim::Fault::RestartAfterResponse,
                        .messageId = RLINK_WDS_CREATE_PROFILE_REQ_V01});
    vela::ProfileParams params;
    params.setApnName("internet");
    const auto key =
        radio.addProfile(vela::AddProfileParams(params, true, vela::TechType::TECH_3GPP, false));
    velasim::settle(radio, modem);

    std::printf("%s", modem.journal().text().c_str());  // what crossed the boundary
    for (const auto& line : radio.dump()) {             // two indications are still expected
        std::printf("%s\n", line.c_str());
    }
}
