// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ProfileKey.h"

#include <utility>

#include "DumpText.h"
#include "LogWrapper.h"

namespace vela {

ProfileKey::ProfileKey(TechType techType, int profileId, unsigned long token, RequestFn requestFn)
    : techType(techType), profileId(profileId), token(token), requestFn(std::move(requestFn)) {}

ProfileKey::~ProfileKey() {
    auto request = std::make_shared<CallbackRequest>();
    request->setReleaseToken(token);
    requestFn(std::move(request));
    log(LogLevel::Debug, "~ProfileKey");
}

void ProfileKey::registerExpirationListener(std::function<void()> callback) {
    auto request = std::make_shared<CallbackRequest>();
    request->setExpirationInfo(std::move(callback), weak_from_this(), token);
    requestFn(std::move(request));
}

std::string ProfileKey::dump() const {
    DumpText text;
    text << techType << ":" << profileId << " token=" << token;
    return text.take();
}

}  // namespace vela
