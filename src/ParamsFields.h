// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "vela/ProfileParams.h"

namespace vela {

// Each copies one field of a record into another, when it is present.

inline void copyApnName(const ProfileParams& from, ProfileParams& to) {
    if (from.hasApnName()) {
        to.setApnName(from.getApnName());
    }
}

inline void copyHomeIPType(const ProfileParams& from, ProfileParams& to) {
    if (from.hasHomeIPType()) {
        to.setHomeIPType(from.getHomeIPType());
    }
}

inline void copyRoamIPType(const ProfileParams& from, ProfileParams& to) {
    if (from.hasRoamIPType()) {
        to.setRoamIPType(from.getRoamIPType());
    }
}

inline void copyIPTypes(const ProfileParams& from, ProfileParams& to) {
    copyHomeIPType(from, to);
    copyRoamIPType(from, to);
}

inline void copyUserName(const ProfileParams& from, ProfileParams& to) {
    if (from.hasUserName()) {
        to.setUserName(from.getUserName());
    }
}

/** User name, password and authentication type. */
inline void copyCredentials(const ProfileParams& from, ProfileParams& to) {
    copyUserName(from, to);
    if (from.hasPassword()) {
        to.setPassword(from.getPassword());
    }
    if (from.hasAuthType()) {
        to.setAuthType(from.getAuthType());
    }
}

inline void copyApnTypesMask(const ProfileParams& from, ProfileParams& to) {
    if (from.hasApnTypesMask()) {
        to.setApnTypesMask(from.getApnTypesMask());
    }
}

/** What limits the rate of PDN connections. */
inline void copyPdnThrottling(const ProfileParams& from, ProfileParams& to) {
    if (from.hasMaxPdnsConnPerBlock()) {
        to.setMaxPdnsConnPerBlock(from.getMaxPdnsConnPerBlock());
    }
    if (from.hasMaxPdnConnTimer()) {
        to.setMaxPdnConnTimer(from.getMaxPdnConnTimer());
    }
    if (from.hasPdnReqWaitInterval()) {
        to.setPdnReqWaitInterval(from.getPdnReqWaitInterval());
    }
}

}  // namespace vela
