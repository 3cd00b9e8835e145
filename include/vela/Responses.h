// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What the worker thread answers. Each kind of request has one response class; dump() of each is
// the text of its log line. Immutable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "vela/Export.h"
#include "vela/IProfileKey.h"
#include "vela/ProfileParams.h"
#include "vela/Requests.h"

namespace vela {

/** Outcome of a request. Prints as its name, an unknown value as its number. */
enum class Status : std::int32_t {
    Success = 0,
    Failure = 1,
};

VELA_API std::ostream& operator<<(std::ostream& out, Status value);

/** Base of all responses. */
class VELA_API ClientResponse {
  public:
    ClientResponse(ReqRespType type, Status status) : status(status), type(type) {}
    ClientResponse(const ClientResponse&) = delete;
    ClientResponse& operator=(const ClientResponse&) = delete;
    virtual ~ClientResponse();

    /** The response in one line, as it is logged. */
    virtual std::string dump() const;

    ReqRespType getResponseType() const { return type; }
    Status getStatus() const { return status; }

  private:
    Status status;
    ReqRespType type;
};

class VELA_API AddResponse : public ClientResponse {
  public:
    AddResponse(Status status, std::shared_ptr<IProfileKey> key);
    /** Empty when nothing was added. */
    std::shared_ptr<IProfileKey> getAddProfileKey() const { return key; }
    std::string dump() const override;

  private:
    std::shared_ptr<IProfileKey> key;
};

class VELA_API ModifyResponse : public ClientResponse {
  public:
    explicit ModifyResponse(Status status);
};

class VELA_API DeleteResponse : public ClientResponse {
  public:
    explicit DeleteResponse(Status status);
};

class VELA_API FilterResponse : public ClientResponse {
  public:
    FilterResponse(Status status, std::list<std::shared_ptr<IProfileKey>> keys);
    std::list<std::shared_ptr<IProfileKey>> getFilterResult() const { return keys; }
    /** The same without a copy; nothing is left of it here. */
    std::list<std::shared_ptr<IProfileKey>> takeFilterResult() { return std::move(keys); }
    std::string dump() const override;
    /** As much of the dump as makes `length` bytes, or a little more. */
    std::string dump(std::size_t length) const;

  private:
    std::list<std::shared_ptr<IProfileKey>> keys;
};

class VELA_API MatchResponse : public ClientResponse {
  public:
    MatchResponse(Status status, bool result);
    bool getMatchResult() const { return result; }
    std::string dump() const override;

  private:
    bool result;
};

class VELA_API GetResponse : public ClientResponse {
  public:
    GetResponse(Status status, std::optional<ProfileParams> params);
    /** Empty when the profile could not be read. */
    std::optional<ProfileParams> getParams() const { return params; }
    /** The same without a copy; what is left here is unspecified. */
    std::optional<ProfileParams> takeParams() { return std::move(params); }
    std::string dump() const override;

  private:
    std::optional<ProfileParams> params;
};

class VELA_API CallbackResponse : public ClientResponse {
  public:
    explicit CallbackResponse(Status status);
};

class VELA_API RefreshResponse : public ClientResponse {
  public:
    explicit RefreshResponse(Status status);
};

}  // namespace vela
