// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "CallerTurns.h"
#include "EventFd.h"
#include "EventManager.h"
#include "ForkedChild.h"
#include "Mutex.h"
#include "ProfileCache.h"
#include "RequestLine.h"
#include "WorkerActivity.h"
#include "WorkerGate.h"
#include "vela/Requests.h"
#include "vela/Responses.h"

namespace vela {

/**
 * Owns the worker thread, its event loop and the cache, and carries each request from the calling
 * thread to the worker and its response back. One request is under way at a time; callers take
 * turns.
 */
class ClientRequestManager {
  public:
    /**
     * @param instance modem instance (subscription)
     * @throws std::system_error "thread constructor failed"
     */
    explicit ClientRequestManager(int instance);
    ClientRequestManager(const ClientRequestManager&) = delete;
    ClientRequestManager& operator=(const ClientRequestManager&) = delete;

    ~ClientRequestManager();

    /**
     * Ends the worker; no request may come after that. Keys that are still alive release nothing
     * from then on. The destructor does it as well. An owner from which listeners may still get
     * this object calls it before it destroys the object. Not on the worker thread.
     */
    void stop();

    /**
     * Has the worker carry out `request` and waits for the response; empty when the worker could
     * not be signalled. Any thread.
     *
     * On the worker thread nobody can wait: a release is carried out after the current dispatch,
     * and every other request is refused with an empty response.
     */
    std::shared_ptr<ClientResponse> processClientRequest(std::shared_ptr<ClientRequest> request);

    /** The cache's dump; within some seconds, also when the worker is stuck: then with what, and
     * for how long. Any thread. */
    std::vector<std::string> dump();

    /** Returns when the worker has nothing left to do. Any thread; at once on the worker. */
    void awaitRest();

    /** Whether the calling thread is the worker. */
    bool isWorkerThread() const;

    /** Whether the calling thread is that of any pipeline. */
    static bool isOnWorker();

    /** By which requests get here; closed before this object goes. */
    const std::shared_ptr<RequestLine>& getLine() const { return line; }

  private:
    void runVelaThread();
    void startWorker();
    void stopWorker();

    static void handleClientRequest(int fd, void* arg);
    void handlePostedRequest();
    void runDeferredReleases();
    std::shared_ptr<ClientResponse> carryOut(const std::shared_ptr<ClientRequest>& request);
    std::shared_ptr<ClientResponse> processOnWorker(const std::shared_ptr<ClientRequest>& request);

    std::shared_ptr<ClientResponse> dispatch(ClientRequest& request);
    std::shared_ptr<ClientResponse> add(ClientRequest& request);
    std::shared_ptr<ClientResponse> modify(ClientRequest& request);
    std::shared_ptr<ClientResponse> remove(ClientRequest& request);
    std::shared_ptr<ClientResponse> filter(ClientRequest& request);
    std::shared_ptr<ClientResponse> match(ClientRequest& request);
    std::shared_ptr<ClientResponse> get(ClientRequest& request);
    std::shared_ptr<ClientResponse> callBack(ClientRequest& request);
    std::shared_ptr<ClientResponse> refresh(ClientRequest& request);

    template <typename Request>
    Request* admit(ClientRequest& request) const;

    Mutex requestMutex;
    // Held by a caller for its whole turn, taken before the mutex of the slots.
    CallerTurns callers;

    std::shared_ptr<ClientRequest> requestSlot VELA_GUARDED_BY(requestMutex);
    std::shared_ptr<ClientResponse> responseSlot VELA_GUARDED_BY(requestMutex);
    Condition responseReady;

    const ForkGuard forkGuard;
    std::thread worker;
    std::atomic<std::thread::id> workerId{};
    std::atomic<bool> running{false};

    std::optional<EventFd> requestFd;
    EventManager eventManager;
    WorkerActivity activity;
    WorkerGate gate;
    std::shared_ptr<RequestLine> line;  // shared with every key
    ProfileCache cache;                 // worker thread

    bool refreshBlocked = false;                                 // worker thread
    std::list<std::shared_ptr<ClientRequest>> deferredReleases;  // worker thread
};

}  // namespace vela
