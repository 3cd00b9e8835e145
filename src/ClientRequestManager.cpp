// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ClientRequestManager.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

#include "LogWrapper.h"
#include "Observation.h"
#include "ProfileKey.h"

namespace vela {

namespace {

Status toStatus(bool success) {
    return success ? Status::Success : Status::Failure;
}

thread_local bool isWorker = false;

/** How long a dump waits for the worker. */
constexpr auto kDumpPatience = std::chrono::seconds(3);

/** The library's own key behind a client's; empty for none and for a foreign one. */
std::shared_ptr<ProfileKey> toProfileKey(const std::shared_ptr<IProfileKey>& key) {
    return std::dynamic_pointer_cast<ProfileKey>(key);
}

}  // namespace

// --- Life

ClientRequestManager::ClientRequestManager(int instance)
    : gate([this] { eventManager.wake(); }),
      line(std::make_shared<RequestLine>(
          [this](std::shared_ptr<ClientRequest> request) {
              return processClientRequest(std::move(request));
          },
          [this] { return dump(); }, [this] { awaitRest(); })),
      cache(eventManager, instance, [line = line](std::shared_ptr<ClientRequest> request) {
          return line->post(std::move(request));
      }) {
    log(LogLevel::Debug, "vela::ClientRequestManager: constructor");
    const WorkerGate::Hold hold(gate);
    startWorker();
    requestFd.emplace();
    if (!eventManager.addEventHandler(requestFd->get(), handleClientRequest, this, nullptr,
                                      EPOLLIN)) {
        std::abort();  // which has been logged; nobody would ever be answered
    }
}

ClientRequestManager::~ClientRequestManager() {
    stop();
}

void ClientRequestManager::stop() {
    if (!worker.joinable()) {
        return;
    }
    log(LogLevel::Debug, "vela::ClientRequestManager: destructor");
    line->close();
    stopWorker();
}

void ClientRequestManager::startWorker() {
    try {
        worker = std::thread(&ClientRequestManager::runVelaThread, this);
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "thread constructor failed");
    }
    gate.awaitWorker();
}

void ClientRequestManager::stopWorker() {
    {
        const WorkerGate::Hold hold(gate);
        eventManager.removeEventHandler(requestFd->get());
        requestFd->close();
        running = false;
    }
    eventManager.wake();
    worker.join();
}

void ClientRequestManager::runVelaThread() {
    isWorker = true;
    workerId = std::this_thread::get_id();
    cache.assumeWorker();
    log(LogLevel::Notice, "VELA thread started");
    running = true;
    while (running) {
        gate.pass();
        activity.beginPass();
        eventManager.processEvents([this] { gate.beginWork(); });
        runDeferredReleases();
    }
}

bool ClientRequestManager::isOnWorker() {
    return isWorker;
}

bool ClientRequestManager::isWorkerThread() const {
    return workerId.load() == std::this_thread::get_id();
}

std::vector<std::string> ClientRequestManager::dump() {
    if (isWorkerThread()) {
        return cache.dump();
    }
    const WorkerGate::Hold hold(gate, std::chrono::steady_clock::now() + kDumpPatience);
    if (hold) {
        return cache.dump();
    }
    return {"Cache:", "  " + activity.dump(cache.messageUnderWay())};
}

void ClientRequestManager::awaitRest() {
    if (!isWorkerThread()) {
        gate.awaitRest([this] { return eventManager.hasEvents(); });
    }
}

// --- Calling threads

std::shared_ptr<ClientResponse> ClientRequestManager::processClientRequest(
    std::shared_ptr<ClientRequest> request) {
    if (!request || !isObserved()) {
        return carryOut(request);
    }
    tellObserver([&](Observer& observer) { observer.onRequest(*request); });
    const auto begin = std::chrono::steady_clock::now();
    auto response = carryOut(request);
    const auto duration = std::chrono::steady_clock::now() - begin;
    tellObserver(
        [&](Observer& observer) { observer.onResponse(*request, response.get(), duration); });
    return response;
}

std::shared_ptr<ClientResponse> ClientRequestManager::carryOut(
    const std::shared_ptr<ClientRequest>& request) {
    if (isWorkerThread()) {
        return processOnWorker(request);
    }
    const CallerTurns::Turn turn(callers);
    MutexLock lock(requestMutex);
    // Signalled before the request is stored: the worker needs the mutex to look at the slot.
    ssize_t written = 0;
    if (!requestFd->signal(written)) {
        log(LogLevel::Error, "error in writing rv: %d error: %s", static_cast<int>(written),
            std::strerror(errno));
        return nullptr;
    }
    requestSlot = request;
    while (!responseSlot && requestSlot) {
        responseReady.wait(lock);
    }
    return std::exchange(responseSlot, nullptr);
}

std::shared_ptr<ClientResponse> ClientRequestManager::processOnWorker(
    const std::shared_ptr<ClientRequest>& request) {
    const auto* callback = dynamic_cast<const CallbackRequest*>(request.get());
    if (callback != nullptr && callback->hasReleaseToken()) {
        deferredReleases.push_back(request);
        return std::make_shared<CallbackResponse>(Status::Success);
    }
    log(LogLevel::Error, "Request refused on the VELA thread: %s",
        request ? request->dump().c_str() : "none");
    return nullptr;
}

// --- Worker thread

void ClientRequestManager::handleClientRequest(int fd, void* arg) {
    log(LogLevel::Debug, ":%d:%s", 77, "handleClientRequest");
    if (!EventFd::drain(fd)) {
        log(LogLevel::Error, "Error while clearing the read buffer on fd %d", fd);
    }
    if (arg == nullptr) {
        log(LogLevel::Error, "arg is null");
        return;
    }
    static_cast<ClientRequestManager*>(arg)->handlePostedRequest();
}

void ClientRequestManager::handlePostedRequest() {
    const MutexLock lock(requestMutex);
    if (requestSlot) {
        log(LogLevel::Info, "Handling %s", requestSlot->dump().c_str());
        cache.serve(requestSlot.get());
        activity.beginRequest(requestSlot->getRequestType());
        if (auto response = dispatch(*requestSlot)) {
            responseSlot = std::move(response);
        }
        cache.serve(nullptr);
        runDeferredReleases();
        requestSlot.reset();
    }
    responseReady.notifyOne();
}

/** Carries out the releases of keys that were dropped on this thread, in their order. */
void ClientRequestManager::runDeferredReleases() {
    while (!deferredReleases.empty()) {
        const std::shared_ptr<ClientRequest> release = deferredReleases.front();
        deferredReleases.pop_front();
        log(LogLevel::Info, "Handling %s", release->dump().c_str());
        cache.serve(release.get());
        callBack(*release);
        cache.serve(nullptr);
    }
}

std::shared_ptr<ClientResponse> ClientRequestManager::dispatch(ClientRequest& request) {
    switch (request.getRequestType()) {
        case ReqRespType::Add:
            return add(request);
        case ReqRespType::Modify:
            return modify(request);
        case ReqRespType::Delete:
            return remove(request);
        case ReqRespType::Filter:
            return filter(request);
        case ReqRespType::Match:
            return match(request);
        case ReqRespType::Get:
            return get(request);
        case ReqRespType::Callback:
            return callBack(request);
        case ReqRespType::Refresh:
            return refresh(request);
    }
    return nullptr;
}

/** The request as its concrete class; null when it is of another, or the cache is blocked. */
template <typename Request>
Request* ClientRequestManager::admit(ClientRequest& request) const {
    return refreshBlocked ? nullptr : dynamic_cast<Request*>(&request);
}

std::shared_ptr<ClientResponse> ClientRequestManager::add(ClientRequest& request) {
    const auto* addRequest = admit<AddRequest>(request);
    if (addRequest == nullptr) {
        return std::make_shared<AddResponse>(Status::Failure, nullptr);
    }
    AddProfileParams params = addRequest->getAddProfileParams();
    return std::make_shared<AddResponse>(Status::Success, cache.add(params));
}

std::shared_ptr<ClientResponse> ClientRequestManager::modify(ClientRequest& request) {
    bool modified = false;
    if (const auto* modifyRequest = admit<ModifyRequest>(request)) {
        if (const auto key = toProfileKey(modifyRequest->getModifyProfileKey())) {
            ModifyProfileParams params = modifyRequest->getModifyProfileParams();
            modified = cache.modify(params, key);
        }
    }
    return std::make_shared<ModifyResponse>(toStatus(modified));
}

std::shared_ptr<ClientResponse> ClientRequestManager::remove(ClientRequest& request) {
    bool removed = false;
    if (const auto* deleteRequest = admit<DeleteRequest>(request)) {
        if (const auto key = toProfileKey(deleteRequest->getDeleteProfileKey())) {
            removed = cache.remove(key);
        }
    }
    return std::make_shared<DeleteResponse>(toStatus(removed));
}

std::shared_ptr<ClientResponse> ClientRequestManager::filter(ClientRequest& request) {
    std::list<std::shared_ptr<IProfileKey>> keys;
    const auto* filterRequest = admit<FilterRequest>(request);
    if (filterRequest != nullptr) {
        FilterProfileParams params = filterRequest->getFilterParams();
        for (std::shared_ptr<ProfileKey>& key : cache.filter(params)) {
            keys.push_back(std::move(key));
        }
    }
    return std::make_shared<FilterResponse>(toStatus(filterRequest != nullptr), std::move(keys));
}

std::shared_ptr<ClientResponse> ClientRequestManager::match(ClientRequest& request) {
    if (const auto* matchRequest = admit<MatchRequest>(request)) {
        if (const auto key = toProfileKey(matchRequest->getMatchKey())) {
            FilterProfileParams params = matchRequest->getMatchParams();
            return std::make_shared<MatchResponse>(Status::Success, cache.match(params, key));
        }
    }
    return std::make_shared<MatchResponse>(Status::Failure, false);
}

std::shared_ptr<ClientResponse> ClientRequestManager::get(ClientRequest& request) {
    std::optional<ProfileParams> params;
    if (const auto* getRequest = admit<GetRequest>(request)) {
        if (const auto key = toProfileKey(getRequest->getProfileKey())) {
            params = cache.get(key);
        }
    }
    const Status status = toStatus(params.has_value());
    return std::make_shared<GetResponse>(status, std::move(params));
}

std::shared_ptr<ClientResponse> ClientRequestManager::callBack(ClientRequest& request) {
    bool released = false;
    if (const auto* callback = admit<CallbackRequest>(request)) {
        if (callback->hasReleaseToken()) {
            released = cache.releaseProfile(callback->getReleaseToken());
        } else if (callback->hasExpirationInfo()) {
            // The outcome of a registration is deliberately not reported.
            cache.registerExpirationListener(callback->getExpirationCb(),
                                             callback->getExpirationKey(),
                                             callback->getExpirationToken());
        }
    }
    return std::make_shared<CallbackResponse>(toStatus(released));
}

std::shared_ptr<ClientResponse> ClientRequestManager::refresh(ClientRequest& request) {
    const auto* refreshRequest = dynamic_cast<RefreshRequest*>(&request);
    if (refreshRequest == nullptr) {
        return std::make_shared<RefreshResponse>(Status::Failure);
    }
    refreshBlocked = refreshRequest->getRefreshStatus() == PDCRefreshStatus::RefreshStarted;
    if (!refreshBlocked) {
        cache.refresh();
    }
    return std::make_shared<RefreshResponse>(Status::Success);
}

}  // namespace vela
