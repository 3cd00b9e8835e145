// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/Requests.h"

#include <utility>

#include "DumpText.h"
#include "KeyText.h"

namespace vela {

ClientRequest::~ClientRequest() = default;

std::string ClientRequest::dump() const {
    DumpText text;
    text << type << " ";
    return text.take();
}

AddRequest::AddRequest(AddProfileParams params)
    : ClientRequest(ReqRespType::Add), params(std::move(params)) {}

std::string AddRequest::dump() const {
    return ClientRequest::dump() + params.dump();
}

ModifyRequest::ModifyRequest(ModifyProfileParams params, std::shared_ptr<IProfileKey> key)
    : ClientRequest(ReqRespType::Modify), params(std::move(params)), key(std::move(key)) {}

std::string ModifyRequest::dump() const {
    return ClientRequest::dump() + keyText(key, "") + " " + params.dump();
}

DeleteRequest::DeleteRequest(std::shared_ptr<IProfileKey> key)
    : ClientRequest(ReqRespType::Delete), key(std::move(key)) {}

std::string DeleteRequest::dump() const {
    return ClientRequest::dump() + keyText(key, "");
}

FilterRequest::FilterRequest(FilterProfileParams params)
    : ClientRequest(ReqRespType::Filter), params(std::move(params)) {}

std::string FilterRequest::dump() const {
    return ClientRequest::dump() + "params: " + params.dump();
}

MatchRequest::MatchRequest(FilterProfileParams params, std::shared_ptr<IProfileKey> key)
    : ClientRequest(ReqRespType::Match), params(std::move(params)), key(std::move(key)) {}

std::string MatchRequest::dump() const {
    return ClientRequest::dump() + keyText(key, "") + " " + params.dump();
}

GetRequest::GetRequest(std::shared_ptr<IProfileKey> key)
    : ClientRequest(ReqRespType::Get), key(std::move(key)) {}

std::string GetRequest::dump() const {
    return ClientRequest::dump() + keyText(key, "");
}

CallbackRequest::CallbackRequest() : ClientRequest(ReqRespType::Callback) {}

void CallbackRequest::setExpirationInfo(std::function<void()> callback,
                                        std::weak_ptr<IProfileKey> key, unsigned long token) {
    expirationCb = std::move(callback);
    expirationKey = std::move(key);
    expirationToken = token;
}

bool CallbackRequest::hasExpirationInfo() const {
    return expirationToken && expirationCb && expirationKey;
}

std::function<void()> CallbackRequest::getExpirationCb() const {
    return expirationCb.value_or(nullptr);
}

std::weak_ptr<IProfileKey> CallbackRequest::getExpirationKey() const {
    return expirationKey.value_or(std::weak_ptr<IProfileKey>());
}

std::string CallbackRequest::dump() const {
    std::string text = ClientRequest::dump();
    if (releaseToken) {
        text += "Release " + std::to_string(*releaseToken);
    }
    if (hasExpirationInfo()) {
        text += "Register " + keyText(expirationKey->lock(), "null") + " " +
                std::to_string(*expirationToken);
    }
    return text;
}

RefreshRequest::RefreshRequest(PDCRefreshStatus status)
    : ClientRequest(ReqRespType::Refresh), status(status) {}

}  // namespace vela
