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

class RequestLine;

/**
 * The library's front door: the data profiles of one modem instance.
 *
 * Every operation may be called from any thread and blocks its caller until the worker thread has
 * answered; callers take turns. How long that takes: a modem message takes at most a second.
 * Adding, changing and deleting a profile take one message; refresh() takes one for each technology
 * and one for each profile; all others take none. Before it come the callers who wait already, and
 * what the modem has reported meanwhile, each change by someone else with one message.
 *
 * On the worker thread itself, that is in an expiration callback, operations are refused with an
 * error line in the log and the empty result. Before init() every operation logs "Manager not
 * initialized!" and returns the empty result.
 */
class VELA_API Manager {
  public:
    /**
     * The process-wide instance, made on first use. At process exit it lets go of the modem; its
     * memory stays, so that threads which still use it then get the empty result.
     */
    static Manager& getInstance();

    Manager();
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;

    /** Calls of other threads that are under way are answered first; those that find it closed get
     * the empty result. */
    ~Manager();

    /**
     * Connects to the modem. A second call replaces the connection and the cache: keys made before
     * stay valid objects, but name nothing any more. Other threads may be inside operations: those
     * get their answers, later ones those of the new connection. Refused on the worker thread, and
     * after the end of main().
     *
     * @param instance modem instance (subscription)
     * @param useAdb log to the Android log; otherwise to the modem's diagnostic log
     * @throws std::system_error when no thread can be had; nothing has changed but the log then
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

    /**
     * @return the cache, the expected indications and the recent log lines, as text for people.
     *         While the worker is stuck, in a listener or with the modem, it says so within some
     *         seconds in place of the cache.
     */
    std::vector<std::string> dump();

    /**
     * For tests and tools: returns when the worker thread has done everything of which it was told
     * before the call, at once when it rests already. Takes no turn among the callers and leaves
     * no line in the log. Waits as long as the worker is stuck. Does nothing before init() and on
     * the worker thread.
     */
    void settle();

  private:
    struct State;
    class AtExit;

    /** Empty when there is none. */
    std::shared_ptr<RequestLine> connection() const;
    bool checkInitialized() const;
    /** Ends the connection; init() makes no new one. False where it has to stay. */
    bool close();

    template <typename Response>
    std::shared_ptr<Response> process(const char* operation, const char* castMessage,
                                      const std::shared_ptr<ClientRequest>& request);

    State* const state;  // outlives this object where its worker cannot be ended
};

}  // namespace vela
