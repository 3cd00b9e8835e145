// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/Manager.h"

#include <array>
#include <iterator>
#include <new>
#include <type_traits>
#include <utility>

#include "AdbWriter.h"
#include "ClientRequestManager.h"
#include "DiagWriter.h"
#include "ForkedChild.h"
#include "LocalLogBuffer.h"
#include "LogWrapper.h"
#include "Mutex.h"
#include "RequestLine.h"
#include "vela/Responses.h"

namespace vela {

namespace {

std::unique_ptr<LogWriter> makeLogWriter(bool useAdb) {
    if (useAdb) {
        return std::make_unique<AdbWriter>();
    }
    return std::make_unique<DiagWriter>();
}

}  // namespace

/** One pipeline after the other, and the way to the latest. */
struct Manager::State {
    Mutex changes VELA_ACQUIRED_BEFORE(mutex);  // init() and close() take turns
    std::unique_ptr<ClientRequestManager> pipeline VELA_GUARDED_BY(changes);
    bool isClosed VELA_GUARDED_BY(changes) = false;

    Mutex mutex;
    std::shared_ptr<RequestLine> line VELA_GUARDED_BY(mutex);

    void setLine(std::shared_ptr<RequestLine> next) {
        const MutexLock lock(mutex);
        line.swap(next);
    }
};

/** Closes the process-wide manager when the process ends. */
class Manager::AtExit {
  public:
    explicit AtExit(Manager& manager) : manager(manager) {}
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;
    ~AtExit() { manager.close(); }

  private:
    Manager& manager;
};

Manager& Manager::getInstance() {
    // Never destroyed: threads that outlive main() may be inside, or come.
    alignas(Manager) static std::array<std::byte, sizeof(Manager)> storage;
    static Manager* const instance = new (storage.data()) Manager;
    static const AtExit atExit(*instance);
    return *instance;
}

Manager::Manager() : state(new State) {
    log(LogLevel::Debug, "vela::Manager: constructor");
}

Manager::~Manager() {
    if (close()) {
        delete state;
    }
}

bool Manager::close() {
    // In a forked child, worker and modem are the parent's. On the worker, a listener has called
    // exit(): the worker cannot wait for its own end, and the process goes anyway.
    if (isForkedChild() || ClientRequestManager::isOnWorker()) {
        return false;
    }
    std::unique_ptr<ClientRequestManager> dying;
    {
        const MutexLock lock(state->changes);
        state->isClosed = true;
        dying = std::move(state->pipeline);
    }
    if (dying) {
        // Until it has stopped, listeners may call us. Those that run afterwards, while its cache
        // dies, find the manager uninitialised.
        dying->stop();
        state->setLine(nullptr);
    }
    return true;
}

void Manager::init(int instance, bool useAdb) {
    if (isForkedChild()) {
        return;
    }
    if (ClientRequestManager::isOnWorker()) {
        log(LogLevel::Error, "Manager::init refused on the VELA thread");
        return;
    }
    std::unique_ptr<ClientRequestManager> previous;
    {
        const MutexLock lock(state->changes);
        if (state->isClosed) {
            return;
        }
        LogWrapper::getInstance().setLogWriter(makeLogWriter(useAdb));
        log(LogLevel::Notice, "Manager::init(%d)", instance);
        auto next = std::make_unique<ClientRequestManager>(instance);
        state->setLine(next->getLine());
        previous = std::exchange(state->pipeline, std::move(next));
    }
    // The previous one goes after the new one is in place. Its listeners may call us meanwhile.
    if (previous) {
        previous->stop();
    }
}

std::shared_ptr<RequestLine> Manager::connection() const {
    if (isForkedChild()) {
        return nullptr;
    }
    const MutexLock lock(state->mutex);
    return state->line;
}

namespace {

template <typename Response>
std::string textOf(const Response& response) {
    if constexpr (std::is_same_v<Response, FilterResponse>) {
        return response.dump(LogWrapper::kMessageSize);  // of very many keys the rest would be cut
    } else {
        return response.dump();
    }
}

}  // namespace

/** One round trip; empty, and logged, when no response of the expected class came back. */
template <typename Response>
std::shared_ptr<Response> Manager::process(const char* operation, const char* castMessage,
                                           const std::shared_ptr<ClientRequest>& request) {
    log(LogLevel::Notice, "Manager::%s > %s", operation, request->dump().c_str());
    const auto line = connection();
    const std::shared_ptr<ClientResponse> response = line ? line->post(request) : nullptr;
    auto expected = std::dynamic_pointer_cast<Response>(response);
    if (expected) {
        log(LogLevel::Notice, "Manager::%s < %s", operation, textOf(*expected).c_str());
    } else {
        log(LogLevel::Notice, "Manager::%s < %s", operation,
            response ? response->dump().c_str() : "");
        logText(LogLevel::Error, castMessage);
    }
    return expected;
}

bool Manager::checkInitialized() const {
    const bool isConnected = connection() != nullptr;
    if (!isConnected) {
        log(LogLevel::Error, "Manager not initialized!");
    }
    return isConnected;
}

std::shared_ptr<IProfileKey> Manager::addProfile(const AddProfileParams& params) {
    if (!checkInitialized()) {
        return nullptr;
    }
    const auto response = process<AddResponse>("addProfile", "Unable to cast to AddResponse",
                                               std::make_shared<AddRequest>(params));
    return response ? response->getAddProfileKey() : nullptr;
}

bool Manager::modifyProfile(const ModifyProfileParams& params, std::shared_ptr<IProfileKey> key) {
    if (!checkInitialized()) {
        return false;
    }
    const auto response =
        process<ModifyResponse>("modifyProfile", "Unable to cast to ModifyResponse",
                                std::make_shared<ModifyRequest>(params, std::move(key)));
    return response && response->getStatus() == Status::Success;
}

bool Manager::deleteProfile(std::shared_ptr<IProfileKey> key) {
    if (!checkInitialized()) {
        return false;
    }
    const auto response =
        process<DeleteResponse>("deleteProfile", "Unable to cast to DeleteResponse",
                                std::make_shared<DeleteRequest>(std::move(key)));
    return response && response->getStatus() == Status::Success;
}

std::list<std::shared_ptr<IProfileKey>> Manager::filter(const FilterProfileParams& params) {
    if (!checkInitialized()) {
        return {};
    }
    const auto response = process<FilterResponse>("filter", "Unable to cast to FilterResponse",
                                                  std::make_shared<FilterRequest>(params));
    return response ? response->takeFilterResult() : std::list<std::shared_ptr<IProfileKey>>();
}

std::optional<ProfileParams> Manager::getProfile(std::shared_ptr<IProfileKey> key) {
    if (!checkInitialized()) {
        return std::nullopt;
    }
    const auto response = process<GetResponse>("getProfile", "Error in getProfile",
                                               std::make_shared<GetRequest>(std::move(key)));
    if (!response || response->getStatus() != Status::Success) {
        return std::nullopt;
    }
    return response->takeParams();
}

bool Manager::match(const FilterProfileParams& params, std::shared_ptr<IProfileKey> key) {
    if (!checkInitialized()) {
        return false;
    }
    const auto response =
        process<MatchResponse>("match", "Unable to cast to MatchResponse",
                               std::make_shared<MatchRequest>(params, std::move(key)));
    return response && response->getMatchResult();
}

void Manager::refresh(PDCRefreshStatus status) {
    if (!checkInitialized()) {
        return;
    }
    if (process<RefreshResponse>("refresh", "Unable to cast to RefreshResponse",
                                 std::make_shared<RefreshRequest>(status))) {
        const bool started = status == PDCRefreshStatus::RefreshStarted;
        log(LogLevel::Info, "VELA refresh %s", started ? "started" : "completed");
    }
}

void Manager::settle() {
    if (const auto line = connection()) {
        line->awaitRest();
    }
}

std::vector<std::string> Manager::dump() {
    std::vector<std::string> lines;
    if (const auto line = connection()) {
        lines = line->dump();
    }
    lines.insert(lines.end(), {"", "Logs:"});
    if (isForkedChild()) {
        return lines;
    }
    std::vector<std::string> logs = LocalLogBuffer::getInstance().getLogs();
    lines.insert(lines.end(), std::make_move_iterator(logs.begin()),
                 std::make_move_iterator(logs.end()));
    return lines;
}

}  // namespace vela
