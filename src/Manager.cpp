// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "vela/Manager.h"

#include <iterator>
#include <utility>

#include "AdbWriter.h"
#include "ClientRequestManager.h"
#include "DiagWriter.h"
#include "LocalLogBuffer.h"
#include "LogWrapper.h"
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

Manager& Manager::getInstance() {
    static Manager instance;
    return instance;
}

Manager::Manager() {
    log(LogLevel::Debug, "vela::Manager: constructor");
}

Manager::~Manager() {
    if (!requestManager) {
        return;
    }
    if (requestManager->isWorkerThread()) {
        // A listener ends the process: the worker cannot wait for itself, and all goes anyway.
        static_cast<void>(requestManager.release());
        return;
    }
    // Until it has stopped, listeners may call us. Those that run afterwards, while its cache dies,
    // find the manager uninitialised.
    requestManager->stop();
    const auto dying = std::move(requestManager);
}

void Manager::init(int instance, bool useAdb) {
    if (requestManager && requestManager->isWorkerThread()) {
        log(LogLevel::Error, "Manager::init refused on the VELA thread");
        return;
    }
    LogWrapper::getInstance().setLogWriter(makeLogWriter(useAdb));
    log(LogLevel::Notice, "Manager::init(%d)", instance);
    auto next = std::make_unique<ClientRequestManager>(instance);
    if (requestManager) {
        requestManager->stop();  // its listeners may call us until then
    }
    requestManager = std::move(next);  // the previous one goes after the new one is in place
}

/** One round trip; empty, and logged, when no response of the expected class came back. */
template <typename Response>
std::shared_ptr<Response> Manager::process(const char* operation, const char* castMessage,
                                           const std::shared_ptr<ClientRequest>& request) {
    log(LogLevel::Notice, "Manager::%s > %s", operation, request->dump().c_str());
    const std::shared_ptr<ClientResponse> response = requestManager->processClientRequest(request);
    log(LogLevel::Notice, "Manager::%s < %s", operation, response ? response->dump().c_str() : "");
    auto expected = std::dynamic_pointer_cast<Response>(response);
    if (!expected) {
        logText(LogLevel::Error, castMessage);
    }
    return expected;
}

bool Manager::isInitialized() const {
    if (!requestManager) {
        log(LogLevel::Error, "Manager not initialized!");
    }
    return requestManager != nullptr;
}

std::shared_ptr<IProfileKey> Manager::addProfile(const AddProfileParams& params) {
    if (!isInitialized()) {
        return nullptr;
    }
    const auto response = process<AddResponse>("addProfile", "Unable to cast to AddResponse",
                                               std::make_shared<AddRequest>(params));
    return response ? response->getAddProfileKey() : nullptr;
}

bool Manager::modifyProfile(const ModifyProfileParams& params, std::shared_ptr<IProfileKey> key) {
    if (!isInitialized()) {
        return false;
    }
    const auto response =
        process<ModifyResponse>("modifyProfile", "Unable to cast to ModifyResponse",
                                std::make_shared<ModifyRequest>(params, std::move(key)));
    return response && response->getStatus() == Status::Success;
}

bool Manager::deleteProfile(std::shared_ptr<IProfileKey> key) {
    if (!isInitialized()) {
        return false;
    }
    const auto response =
        process<DeleteResponse>("deleteProfile", "Unable to cast to DeleteResponse",
                                std::make_shared<DeleteRequest>(std::move(key)));
    return response && response->getStatus() == Status::Success;
}

std::list<std::shared_ptr<IProfileKey>> Manager::filter(const FilterProfileParams& params) {
    if (!isInitialized()) {
        return {};
    }
    const auto response = process<FilterResponse>("filter", "Unable to cast to FilterResponse",
                                                  std::make_shared<FilterRequest>(params));
    return response ? response->getFilterResult() : std::list<std::shared_ptr<IProfileKey>>();
}

std::optional<ProfileParams> Manager::getProfile(std::shared_ptr<IProfileKey> key) {
    if (!isInitialized()) {
        return std::nullopt;
    }
    const auto response = process<GetResponse>("getProfile", "Error in getProfile",
                                               std::make_shared<GetRequest>(std::move(key)));
    if (!response || response->getStatus() != Status::Success) {
        return std::nullopt;
    }
    return response->getParams();
}

bool Manager::match(const FilterProfileParams& params, std::shared_ptr<IProfileKey> key) {
    if (!isInitialized()) {
        return false;
    }
    const auto response =
        process<MatchResponse>("match", "Unable to cast to MatchResponse",
                               std::make_shared<MatchRequest>(params, std::move(key)));
    return response && response->getMatchResult();
}

void Manager::refresh(PDCRefreshStatus status) {
    if (!isInitialized()) {
        return;
    }
    if (process<RefreshResponse>("refresh", "Unable to cast to RefreshResponse",
                                 std::make_shared<RefreshRequest>(status))) {
        const bool started = status == PDCRefreshStatus::RefreshStarted;
        log(LogLevel::Info, "VELA refresh %s", started ? "started" : "completed");
    }
}

std::vector<std::string> Manager::dump() {
    std::vector<std::string> lines;
    if (requestManager) {
        lines = requestManager->dump();
    }
    lines.insert(lines.end(), {"", "Logs:"});
    std::vector<std::string> logs = LocalLogBuffer::getInstance().getLogs();
    lines.insert(lines.end(), std::make_move_iterator(logs.begin()),
                 std::make_move_iterator(logs.end()));
    return lines;
}

}  // namespace vela
