// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "DataService.h"

#include <vela/Manager.h>
#include <vela/Util.h>

bool DataService::start(const std::string& apn) {
    vela::ProfileParams wanted;
    wanted.setApnName(apn);
    wanted.setHomeIPType(vela::IPType::V4V6);
    key = vela::Util().findOrCreateProfileForSetupDataCall(vela::TechType::TECH_3GPP, wanted);
    return key != nullptr;
}

std::string DataService::apn() const {
    const auto profile = vela::Manager::getInstance().getProfile(key);
    return profile ? profile->getApnName() : "";
}
