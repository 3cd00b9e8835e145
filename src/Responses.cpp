// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/Responses.h"

#include <utility>

#include "DumpText.h"
#include "KeyText.h"

namespace vela {

ClientResponse::~ClientResponse() = default;

std::string ClientResponse::dump() const {
    DumpText text;
    text << type << " " << status;
    return text.take();
}

AddResponse::AddResponse(Status status, std::shared_ptr<IProfileKey> key)
    : ClientResponse(ReqRespType::Add, status), key(std::move(key)) {}

std::string AddResponse::dump() const {
    return ClientResponse::dump() + " " + keyText(key, "");
}

ModifyResponse::ModifyResponse(Status status) : ClientResponse(ReqRespType::Modify, status) {}

DeleteResponse::DeleteResponse(Status status) : ClientResponse(ReqRespType::Delete, status) {}

FilterResponse::FilterResponse(Status status, std::list<std::shared_ptr<IProfileKey>> keys)
    : ClientResponse(ReqRespType::Filter, status), keys(std::move(keys)) {}

std::string FilterResponse::dump() const {
    return dump(std::string::npos);
}

std::string FilterResponse::dump(std::size_t length) const {
    std::string text = ClientResponse::dump() + " ";
    for (const std::shared_ptr<IProfileKey>& key : keys) {
        if (text.size() >= length) {
            break;
        }
        text.append(keyText(key, "null")).append(",");
    }
    return text;
}

MatchResponse::MatchResponse(Status status, bool result)
    : ClientResponse(ReqRespType::Match, status), result(result) {}

std::string MatchResponse::dump() const {
    return ClientResponse::dump() + " " + (result ? "true" : "false");
}

GetResponse::GetResponse(Status status, std::optional<ProfileParams> params)
    : ClientResponse(ReqRespType::Get, status), params(std::move(params)) {}

std::string GetResponse::dump() const {
    return ClientResponse::dump() + " " + (params ? params->dump() : std::string());
}

CallbackResponse::CallbackResponse(Status status) : ClientResponse(ReqRespType::Callback, status) {}

RefreshResponse::RefreshResponse(Status status) : ClientResponse(ReqRespType::Refresh, status) {}

}  // namespace vela
