// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What travels from a calling thread to the worker thread. Each kind of call has one request class;
// dump() of each is the text of its log line. Immutable once handed over.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include "vela/Export.h"
#include "vela/IProfileKey.h"
#include "vela/ProfileParams.h"

namespace vela {

/** Kind of a request and of its response. Prints as its name, an unknown value as its number. */
enum class ReqRespType : std::int32_t {
    Add = 0,
    Modify = 1,
    Delete = 2,
    Filter = 3,
    Match = 4,
    Get = 5,
    Callback = 6,
    Refresh = 7,
};

VELA_API std::ostream& operator<<(std::ostream& out, ReqRespType value);

/** Phase of a refresh of the modem's profile database. Every non-zero value means completed. */
enum class PDCRefreshStatus : std::uint8_t {
    RefreshStarted = 0,
    RefreshCompleted = 1,
};

/** Base of all requests. */
class VELA_API ClientRequest {
  public:
    explicit ClientRequest(ReqRespType type) : type(type) {}
    ClientRequest(const ClientRequest&) = delete;
    ClientRequest& operator=(const ClientRequest&) = delete;
    virtual ~ClientRequest();

    /** The request in one line, as it is logged. */
    virtual std::string dump() const;

    ReqRespType getRequestType() const { return type; }

  private:
    ReqRespType type;
};

class VELA_API AddRequest : public ClientRequest {
  public:
    explicit AddRequest(AddProfileParams params);
    AddProfileParams getAddProfileParams() const { return params; }
    std::string dump() const override;

  private:
    AddProfileParams params;
};

class VELA_API ModifyRequest : public ClientRequest {
  public:
    ModifyRequest(ModifyProfileParams params, std::shared_ptr<IProfileKey> key);
    ModifyProfileParams getModifyProfileParams() const { return params; }
    std::shared_ptr<IProfileKey> getModifyProfileKey() const { return key; }
    std::string dump() const override;

  private:
    ModifyProfileParams params;
    std::shared_ptr<IProfileKey> key;
};

class VELA_API DeleteRequest : public ClientRequest {
  public:
    explicit DeleteRequest(std::shared_ptr<IProfileKey> key);
    std::shared_ptr<IProfileKey> getDeleteProfileKey() const { return key; }
    std::string dump() const override;

  private:
    std::shared_ptr<IProfileKey> key;
};

class VELA_API FilterRequest : public ClientRequest {
  public:
    explicit FilterRequest(FilterProfileParams params);
    FilterProfileParams getFilterParams() const { return params; }
    std::string dump() const override;

  private:
    FilterProfileParams params;
};

class VELA_API MatchRequest : public ClientRequest {
  public:
    MatchRequest(FilterProfileParams params, std::shared_ptr<IProfileKey> key);
    FilterProfileParams getMatchParams() const { return params; }
    std::shared_ptr<IProfileKey> getMatchKey() const { return key; }
    std::string dump() const override;

  private:
    FilterProfileParams params;
    std::shared_ptr<IProfileKey> key;
};

class VELA_API GetRequest : public ClientRequest {
  public:
    explicit GetRequest(std::shared_ptr<IProfileKey> key);
    std::shared_ptr<IProfileKey> getProfileKey() const { return key; }
    std::string dump() const override;

  private:
    std::shared_ptr<IProfileKey> key;
};

/** What a key posts: the release of its token, or the registration of an expiration listener. */
class VELA_API CallbackRequest : public ClientRequest {
  public:
    CallbackRequest();

    void setReleaseToken(unsigned long token) { releaseToken = token; }
    bool hasReleaseToken() const { return releaseToken.has_value(); }
    /** 0 when absent. */
    unsigned long getReleaseToken() const { return releaseToken.value_or(0); }

    /** The three belong together and are set together. */
    void setExpirationInfo(std::function<void()> callback, std::weak_ptr<IProfileKey> key,
                           unsigned long token);
    /** True when token, callback and key are all set. */
    bool hasExpirationInfo() const;
    /** Empty, empty and 0 when absent. */
    std::function<void()> getExpirationCb() const;
    std::weak_ptr<IProfileKey> getExpirationKey() const;
    unsigned long getExpirationToken() const { return expirationToken.value_or(0); }

    std::string dump() const override;

  private:
    std::optional<unsigned long> releaseToken;
    std::optional<std::function<void()>> expirationCb;
    std::optional<std::weak_ptr<IProfileKey>> expirationKey;
    std::optional<unsigned long> expirationToken;
};

class VELA_API RefreshRequest : public ClientRequest {
  public:
    explicit RefreshRequest(PDCRefreshStatus status);
    PDCRefreshStatus getRefreshStatus() const { return status; }

  private:
    PDCRefreshStatus status;
};

}  // namespace vela
