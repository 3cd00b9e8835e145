// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "ConstantModem.h"
#include "vela/Manager.h"

/** A manager whose modem holds so many profiles of each technology. */
class Connection {
  public:
    Connection(int profiles3gpp, int profiles3gpp2) {
        constant_modem::hold(profiles3gpp, profiles3gpp2);
        constant_modem::setAnnouncing(false);
        manager.init(0, false);
        constant_modem::deliver();
        manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);
        filter.setFilterByTechType(vela::TechType::TECH_3GPP);
        filter.setFilterByProfileId(1);
        const auto keys = manager.filter(filter);
        if (!keys.empty()) {
            key = keys.front();
        }
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { constant_modem::setFormatting(false); }

    vela::Manager manager;
    vela::FilterProfileParams filter;
    std::shared_ptr<vela::IProfileKey> key;
};
