// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vela/Export.h"
#include "vela/IProfileKey.h"
#include "vela/ProfileParams.h"
#include "vela/Requests.h"

namespace vela {

class ClientRequestManager;

/**
 * The library's front door: the data profiles of one modem instance.
 *
 * Every operation may be called from any thread and blocks its caller until the worker thread has
 * answered; callers take turns. On the worker thread itself, that is in an expiration callback,
 * operations are refused with an error line in the log and the empty result. Before init() every
 * operation logs "Manager not initialized!" and returns the empty result.
 */
class VELA_API Manager {
  public:
    /** The process-wide instance, made on first use and destroyed at process exit. */
    static Manager& getInstance();

    Manager();
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;
    ~Manager();

    /**
     * Connects to the modem. A second call replaces the connection and the cache: keys made before
     * stay valid objects, but name nothing any more. Must not run while another thread is inside an
     * operation of this manager.
     *
     * @param instance modem instance (subscription)
     * @param useAdb log to the Android log; otherwise to the modem's diagnostic log
     */
    void init(int instance, bool useAdb);

    /**
     * Creates a profile in the modem.
     * @return its key; empty when the modem refused or could not be reached
     */
    std::shared_ptr<IProfileKey> addProfile(const AddProfileParams& params);

    /**
     * Writes the fields of `params` that differ from the profile.
     * @return false when the key names no profile; a write that the modem refuses is only logged,
     *         and true is returned
     */
    bool modifyProfile(const ModifyProfileParams& params, std::shared_ptr<IProfileKey> key);

    /**
     * Deletes the profile from the modem, whoever else holds keys to it.
     * @return false when the key names no profile, or the modem refused
     */
    bool deleteProfile(std::shared_ptr<IProfileKey> key);

    /** @return a new key for each profile that matches, in no particular order */
    std::list<std::shared_ptr<IProfileKey>> filter(const FilterProfileParams& params);

    /** @return the profile's fields as last read or written; empty when the key names no profile */
    std::optional<ProfileParams> getProfile(std::shared_ptr<IProfileKey> key);

    /** @return whether the profile matches; false also when the key names no profile */
    bool match(const FilterProfileParams& params, std::shared_ptr<IProfileKey> key);

    /**
     * Tells that the modem's profile database is being replaced. RefreshStarted has all operations
     * fail until any other value, which reloads the cache from the modem.
     */
    void refresh(PDCRefreshStatus status);

    /** @return the cache, the expected indications and the recent log lines, as text for people */
    std::vector<std::string> dump();

  private:
    bool isInitialized() const;

    template <typename Response>
    std::shared_ptr<Response> process(const char* operation, const char* castMessage,
                                      const std::shared_ptr<ClientRequest>& request);

    std::unique_ptr<ClientRequestManager> requestManager;
};

}  // namespace vela
