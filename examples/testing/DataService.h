// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vela/IProfileKey.h>

#include <memory>
#include <string>

/** The code under test: the part of a radio process that keeps the profile of its data call. */
class DataService {
  public:
    /** Finds or makes the profile. False when the modem could not be brought to hold it. */
    bool start(const std::string& apn);

    /** Lets go of the profile. */
    void stop() { key = nullptr; }

    /** The APN name that the data call uses; empty when the profile is gone. */
    std::string apn() const;

  private:
    std::shared_ptr<vela::IProfileKey> key;
};
