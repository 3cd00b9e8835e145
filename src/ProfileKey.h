// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "vela/IProfileKey.h"
#include "vela/Requests.h"
#include "vela/Responses.h"

namespace vela {

/**
 * Posts a request to the worker thread and returns its response, which is empty when there is no
 * worker (any more).
 */
using RequestFn = std::function<std::shared_ptr<ClientResponse>(std::shared_ptr<ClientRequest>)>;

/** The library's only key: names a cached profile by token, technology and profile id. */
class ProfileKey : public IProfileKey {
  public:
    ProfileKey(TechType techType, int profileId, unsigned long token, RequestFn requestFn);

    /** Releases the token. Ends the process when the request function is empty. */
    ~ProfileKey() override;

    int getProfileId() const override { return profileId; }
    TechType getTechType() const override { return techType; }
    unsigned long getToken() const { return token; }

    /** @throws std::bad_function_call when the request function is empty */
    void registerExpirationListener(std::function<void()> callback) override;

    std::string dump() const override;

  private:
    const TechType techType;
    const int profileId;
    const unsigned long token;
    const RequestFn requestFn;
};

}  // namespace vela
