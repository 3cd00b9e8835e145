// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "EventFd.h"
#include "EventManager.h"
#include "ProfileCache.h"
#include "RequestLine.h"
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
     * from then on. The destructor does it as well; an owner that listeners may still ask for this
     * object stops it first and lets go of it afterwards. Not for the worker.
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

    /** The cache's dump. Any thread. */
    std::vector<std::string> dump();

    /** Whether the calling thread is the worker. */
    bool isWorkerThread() const;

  private:
    void runVelaThread();
    void startWorker();
    void stopWorker();

    static void handleClientRequest(int fd, void* arg);
    void handlePostedRequest();
    void runDeferredReleases();
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

    std::mutex callersMutex;  // before the slot: one caller at a time

    std::shared_ptr<ClientRequest> requestSlot;    // guarded by requestMutex
    std::shared_ptr<ClientResponse> responseSlot;  // guarded by requestMutex
    std::mutex requestMutex;
    std::condition_variable responseReady;

    std::thread worker;
    std::atomic<std::thread::id> workerId{};
    std::atomic<bool> running{false};

    std::optional<EventFd> requestFd;
    EventManager eventManager;
    WorkerGate gate;
    std::shared_ptr<RequestLine> line;  // shared with every key
    ProfileCache cache;                 // worker thread

    bool refreshBlocked = false;                                 // worker thread
    std::list<std::shared_ptr<ClientRequest>> deferredReleases;  // worker thread
};

}  // namespace vela
