// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>

#include "EventFd.h"
#include "EventManager.h"
#include "MessageObservation.h"
#include "ModemProfile.h"
#include "Mutex.h"
#include "WorkerRole.h"
#include "rlink_client.h"
#include "vela/ProfileChangedInd.h"
#include "wds_service_v01.h"

namespace vela {

/**
 * The library's only client of the modem's wireless data service: follows the service as it comes
 * and goes, carries out synchronous profile operations, and reports profile changes.
 *
 * Everything runs on the worker thread, but for the three callbacks of the messaging library, which
 * only queue and signal. While the service is down every operation fails; nothing is queued.
 */
class RlinkWdsProxy {
  public:
    using ProfileChangedIndCb = std::function<void(ProfileChangedInd)>;

    /**
     * Starts waiting for the service.
     * @param eventManager must outlive the proxy
     * @param instance modem instance (subscription) to bind to
     */
    RlinkWdsProxy(EventManager& eventManager, int instance);
    RlinkWdsProxy(const RlinkWdsProxy&) = delete;
    RlinkWdsProxy& operator=(const RlinkWdsProxy&) = delete;
    ~RlinkWdsProxy();

    /** Names the request that the following operations serve, to observers; null: none. */
    void serve(const ClientRequest* request) { observation.serve(request); }

    /** The number of the message that is under way; 0: none. Any thread. */
    std::uint32_t messageUnderWay() const { return observation.messageUnderWay(); }

    /** The calling thread is the worker from here on. */
    void assumeWorker() { worker.assume(); }

    /** Sets the one consumer of profile changes, called on the worker thread. */
    void registerProfileChangedInd(ProfileChangedIndCb callback);

    /** Creates the profile in the modem and stores its new index into it. False on failure. */
    bool add(ModemProfile& profile);

    /** Writes the settings of `profile` to the modem profile named. False on failure. */
    bool modify(ModemProfile& profile, TechType techType, int profileId);

    /** Deletes the modem profile named. False on failure. */
    bool remove(TechType techType, int profileId);

    /** Reads one modem profile; empty on failure. */
    std::shared_ptr<ModemProfile> get(TechType techType, int profileId);

    /**
     * Reads all 3GPP, then all 3GPP2 profiles. A profile that cannot be read is an empty pointer at
     * its place; a list that cannot be read ends the result.
     */
    std::list<std::shared_ptr<ModemProfile>> getAllProfiles();

  private:
    /** An indication as the messaging library delivered it. */
    struct IndInfo_t {
        rlink_client_type user_handle = nullptr;
        std::uint32_t msg_id = 0;
        std::unique_ptr<unsigned char[]> ind_buf;
        std::uint32_t ind_buf_len = 0;
        void* ind_cb_data = nullptr;
    };

    // Event handlers, worker thread.
    static void handleSvcUp(int fd, void* data);
    static void handleError(int fd, void* data);
    static void handleIndication(int fd, void* data);

    // Callbacks of the messaging library, its threads.
    static void rlinkNotifyCb(rlink_client_type notifier, rlink_service_object_type service,
                              rlink_notify_event_type event, void* data);
    static void rlinkIndCb(rlink_client_type client, unsigned int msgId, void* indBuf,
                           unsigned int indBufLen, void* data);
    static void rlinkErrorCb(rlink_client_type client, int error, void* data);

    void registerRlinkSvcUp();
    void connect();
    void initializeClient(rlink_service_info& service);
    void registerRlinkIndications();
    void bindSubscription();
    void registerForIndications();
    void configureEventList();

    void handleQueuedIndications();
    std::size_t countIndications();
    bool handleTaken(const IndInfo_t* indication);
    bool takeIndication(std::unique_ptr<IndInfo_t>& indication);
    bool decodeAndReport(const IndInfo_t& indication);
    void handleProfileChangedInd(const wds_profile_changed_ind_type_v01& change);

    bool appendProfiles(wds_profile_type_enum_v01 type,
                        std::list<std::shared_ptr<ModemProfile>>& profiles);
    void release(rlink_client_type& handle);

    template <typename Request, typename Response>
    bool send(unsigned int msgId, Request& request, Response& response);
    template <typename Request, typename Response>
    bool send(unsigned int msgId, const char* name, Request& request, Response& response);

    EventManager& eventManager;
    const int instance;
    const rlink_service_object_type serviceObject;

    rlink_client_type client = nullptr;
    rlink_client_type notifier = nullptr;
    rlink_client_os_params osParams{};

    Mutex indQueueMutex;
    std::deque<std::unique_ptr<IndInfo_t>> indQueue VELA_GUARDED_BY(indQueueMutex);

    EventFd svcUpFd;
    EventFd errorFd;
    EventFd indicationFd;

    ProfileChangedIndCb profileChangedIndCb;
    MessageObservation observation;
    WorkerRole worker;
};

}  // namespace vela
