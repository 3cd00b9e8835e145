// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "vela/Export.h"
#include "vela/ProfileTypes.h"

namespace vela {

/**
 * A client's handle to one cached profile, always held by `std::shared_ptr`. Dropping the last
 * owner of a key releases its share in the profile; a non-persistent profile that the library
 * created is deleted from the modem together with its last key.
 *
 * Immutable and usable from any thread. Dropping a key and registering a listener block until the
 * worker thread has answered, except on the worker thread itself, where a release is carried out
 * after the current operation. A key may outlive `Manager::init` and the process's static objects;
 * it then releases nothing.
 */
class VELA_API IProfileKey : public std::enable_shared_from_this<IProfileKey> {
  public:
    IProfileKey(const IProfileKey&) = delete;
    IProfileKey& operator=(const IProfileKey&) = delete;
    virtual ~IProfileKey();

    /** The modem's profile index. */
    virtual int getProfileId() const = 0;

    virtual TechType getTechType() const = 0;

    /**
     * Has `callback` called once when the cached profile that this key names is dropped (deleted,
     * changed by someone else, or reloaded), provided that this key still lives then. Never called
     * when the profile is gone already.
     *
     * It runs on the worker thread, where calls of the library are refused; all callers wait
     * meanwhile. When the profile goes because of a second Manager::init(), or of a Manager's
     * destructor, it runs on the thread that makes that call: after init() its calls are answered
     * by the new connection, after the destructor they come back empty.
     *
     * The callback must not throw, nor be empty: either ends the process when the profile is
     * dropped, which may be long after this call and for a reason in the modem.
     */
    virtual void registerExpirationListener(std::function<void()> callback) = 0;

    /** Technology, profile id and token in one line. */
    virtual std::string dump() const = 0;

  protected:
    IProfileKey() = default;
};

}  // namespace vela
