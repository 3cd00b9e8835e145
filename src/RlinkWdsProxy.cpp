// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "RlinkWdsProxy.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "LogWrapper.h"
#include "Modem3gpp2Profile.h"
#include "Modem3gppProfile.h"
#include "ModemConversions.h"
#include "Observation.h"

namespace vela {

namespace {

constexpr unsigned int kRequestTimeoutMs = 1000;

void tellUnreadable() {
    tellObserver([](Observer& observer) {
        observer.onIndication({{}, IndicationOutcome::Unreadable});
    });
}

void drain(int fd) {
    if (!EventFd::drain(fd)) {
        log(LogLevel::Error, "Error while clearing the read buffer on fd %d", fd);
    }
}

/** All bytes zero, those between the members included. */
template <typename Message>
void clear(Message& message) {
    std::memset(&message, 0, sizeof(message));
}

/** Field by field: the padding stays as it is. */
void identify(wds_profile_identifier_type_v01& identifier, TechType techType, int profileId) {
    const wds_profile_identifier_type_v01 values = convertToProfileIdentifier(techType, profileId);
    identifier.profile_type = values.profile_type;
    identifier.profile_index = values.profile_index;
}

}  // namespace

RlinkWdsProxy::RlinkWdsProxy(EventManager& eventManager, int instance)
    : eventManager(eventManager),
      instance(instance),
      serviceObject(wds_get_service_object_internal_v01(
          WDS_INTERFACE_MAJOR_V01, WDS_INTERFACE_MINOR_V01, WDS_INTERFACE_TOOL_V01)) {
    eventManager.addEventHandler(svcUpFd.get(), handleSvcUp, this, nullptr, EPOLLIN);
    eventManager.addEventHandler(errorFd.get(), handleError, this, nullptr, EPOLLIN);
    eventManager.addEventHandler(indicationFd.get(), handleIndication, this, nullptr, EPOLLIN);
    registerRlinkSvcUp();
    profileChangedIndCb = [](const ProfileChangedInd&) {
        log(LogLevel::Debug, "RlinkWdsProxy::no profileChangedIndCb registered!");
    };
}

RlinkWdsProxy::~RlinkWdsProxy() {
    release(notifier);
    release(client);
    for (EventFd* fd : {&svcUpFd, &errorFd, &indicationFd}) {
        eventManager.removeEventHandler(fd->get());
    }
    for (EventFd* fd : {&svcUpFd, &errorFd, &indicationFd}) {
        fd->close();
    }
}

void RlinkWdsProxy::release(rlink_client_type& handle) {
    if (handle != nullptr) {
        rlink_client_release(std::exchange(handle, nullptr));
    }
}

void RlinkWdsProxy::registerProfileChangedInd(ProfileChangedIndCb callback) {
    profileChangedIndCb.swap(callback);
}

// --- Service life cycle

void RlinkWdsProxy::registerRlinkSvcUp() {
    log(LogLevel::Notice, "RlinkWdsProxy::registerRlinkSvcUp");
    if (serviceObject == nullptr) {
        log(LogLevel::Error, "cannot obtain service obj, fatal error");
        return;
    }
    release(notifier);  // there is one already when the modem reports the same outage twice
    clear(osParams);
    if (rlink_client_notifier_init(serviceObject, &osParams, &notifier) != RLINK_NO_ERROR) {
        notifier = nullptr;  // whatever it was set to names nothing that could be released
    }
    rlink_client_register_notify_cb(notifier, rlinkNotifyCb, this);
}

void RlinkWdsProxy::rlinkNotifyCb(rlink_client_type /*notifier*/,
                                  rlink_service_object_type /*service*/,
                                  rlink_notify_event_type event, void* data) {
    if (data == nullptr) {
        log(LogLevel::Error, "RlinkWdsProxy instance is null");
        return;
    }
    if (event != RLINK_SERVICE_AVAILABLE) {
        log(LogLevel::Error, "RlinkWdsProxy notify cb: unsupported service event");
        return;
    }
    ssize_t written = 0;
    if (!static_cast<RlinkWdsProxy*>(data)->svcUpFd.signal(written)) {
        log(LogLevel::Error, "error in writing rv:%d, error:%s", static_cast<int>(written),
            std::strerror(errno));
    }
}

void RlinkWdsProxy::handleSvcUp(int fd, void* data) {
    log(LogLevel::Debug, "RlinkWdsProxy service is up, trying to initialize svc client");
    drain(fd);
    if (data == nullptr) {
        log(LogLevel::Error, "RlinkWdsProxy instance is null");
        return;
    }
    static_cast<RlinkWdsProxy*>(data)->connect();
}

void RlinkWdsProxy::connect() {
    worker.check();
    rlink_service_info service;
    clear(service);
    if (rlink_client_get_any_service(serviceObject, &service) != RLINK_NO_ERROR) {
        log(LogLevel::Error, "error get service.");
        tellObserver([](Observer& observer) { observer.onService(ServiceState::ConnectFailed); });
        return;
    }
    release(notifier);  // one notifier serves one outage
    if (client != nullptr) {
        log(LogLevel::Debug,
            "RlinkWdsProxy client is already present, so skipping client initialization.");
        return;
    }
    initializeClient(service);
}

void RlinkWdsProxy::initializeClient(rlink_service_info& service) {
    clear(osParams);
    const int result =
        rlink_client_init(&service, serviceObject, rlinkIndCb, this, &osParams, &client);
    if (result != RLINK_NO_ERROR) {
        client = nullptr;
        log(LogLevel::Error, "rlink_client_init error. ErrCode : %s",
            std::to_string(result).c_str());
        tellObserver([](Observer& observer) { observer.onService(ServiceState::ConnectFailed); });
        return;
    }
    const int registered = rlink_client_register_error_cb(client, rlinkErrorCb, this);
    log(LogLevel::Debug, "rlink_client_register_error_cb result: %d", registered);
    registerRlinkIndications();
    tellObserver([](Observer& observer) { observer.onService(ServiceState::Up); });
}

void RlinkWdsProxy::rlinkErrorCb(rlink_client_type /*client*/, int /*error*/, void* data) {
    log(LogLevel::Debug, ":%d:%s", __LINE__, "rlinkErrorCb");
    if (data == nullptr) {
        log(LogLevel::Error, "RlinkWdsProxy NULL in rlinkErrorCb");
        return;
    }
    ssize_t written = 0;
    if (!static_cast<RlinkWdsProxy*>(data)->errorFd.signal(written)) {
        log(LogLevel::Error, "error in writing rv: %d, error: %s", static_cast<int>(written),
            std::strerror(errno));
    }
}

void RlinkWdsProxy::handleError(int fd, void* data) {
    log(LogLevel::Debug, ":%d:%s", __LINE__, "handleError");
    drain(fd);
    if (data == nullptr) {
        log(LogLevel::Error, "arg is null");
        return;
    }
    auto* proxy = static_cast<RlinkWdsProxy*>(data);
    proxy->worker.check();
    proxy->release(proxy->client);
    log(LogLevel::Info, "Handling modem down");
    tellObserver([](Observer& observer) { observer.onService(ServiceState::Down); });
    proxy->registerRlinkSvcUp();
}

// --- Requests

template <typename Request, typename Response>
bool RlinkWdsProxy::send(unsigned int msgId, Request& request, Response& response) {
    clear(response);
    observation.begin(msgId);
    const int result = rlink_client_send_msg_sync(client, msgId, &request, sizeof(request),
                                                  &response, sizeof(response), kRequestTimeoutMs);
    return observation.end(result, response.resp);
}

/** The same for a message about profiles, whose outcome is logged under its name. */
template <typename Request, typename Response>
bool RlinkWdsProxy::send(unsigned int msgId, const char* name, Request& request,
                         Response& response) {
    const bool isDone = send(msgId, request, response);
    if (isDone) {
        log(LogLevel::Notice, "RlinkWdsProxy %s request successful!", name);
    } else {
        log(LogLevel::Error, "Unable send %s message", name);
    }
    return isDone;
}

void RlinkWdsProxy::registerRlinkIndications() {
    bindSubscription();
    registerForIndications();
    configureEventList();
}

void RlinkWdsProxy::bindSubscription() {
    wds_bind_subscription_req_msg_v01 request;
    clear(request);
    request.instance = instance;
    wds_bind_subscription_resp_msg_v01 response;
    if (send(RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01, request, response)) {
        log(LogLevel::Debug, "RlinkWdsProxy bind register request successful!");
    } else {
        log(LogLevel::Error, "Unable send bind req message");
    }
    observation.tell(ModemMessageType::BindSubscription);
}

void RlinkWdsProxy::registerForIndications() {
    wds_indication_register_req_msg_v01 request;
    clear(request);
    request.report_profile_changes_valid = 1;
    request.report_profile_changes = 1;
    wds_indication_register_resp_msg_v01 response;
    if (send(RLINK_WDS_INDICATION_REGISTER_REQ_V01, request, response)) {
        log(LogLevel::Debug, "RlinkWdsProxy indication register request successful!");
    } else {
        log(LogLevel::Error, "Unable send indication req message");
    }
    observation.tell(ModemMessageType::RegisterIndications);
}

void RlinkWdsProxy::configureEventList() {
    wds_configure_profile_event_list_req_msg_v01 request;
    clear(request);
    request.event_list_valid = 1;
    request.event_list_len = 1;
    request.event_list[0].profile_type =
        static_cast<wds_profile_type_enum_v01>(WDS_PROFILE_TYPE_ALL_V01);
    request.event_list[0].profile_index = WDS_PROFILE_INDEX_ALL_V01;
    request.report_own_changes_valid = 1;
    request.report_own_changes = 1;
    wds_configure_profile_event_list_resp_msg_v01 response;
    if (send(RLINK_WDS_CONFIGURE_PROFILE_EVENT_LIST_REQ_V01, request, response)) {
        log(LogLevel::Debug, "RlinkWdsProxy config register request successful!");
    } else {
        log(LogLevel::Error, "Unable send config req message");
    }
    observation.tell(ModemMessageType::ConfigureEventList);
}

// The name that a message has in the log is that of its number.
#define VELA_MESSAGE(number) number, #number

bool RlinkWdsProxy::add(ModemProfile& profile) {
    worker.check();
    wds_create_profile_req_msg_v01 request = profile.constructAddRequest();
    wds_create_profile_resp_msg_v01 response;
    const bool isDone = send(VELA_MESSAGE(RLINK_WDS_CREATE_PROFILE_REQ_V01), request, response);
    if (isDone) {
        profile.setProfileId(response.profile.profile_index);
    }
    observation.tell(ModemMessageType::CreateProfile, profile.getTechType(), profile.getProfileId(),
                     &profile);
    return isDone;
}

bool RlinkWdsProxy::modify(ModemProfile& profile, TechType techType, int profileId) {
    worker.check();
    wds_modify_profile_settings_req_msg_v01 request = profile.constructModifyRequest();
    identify(request.profile, techType, profileId);
    wds_modify_profile_settings_resp_msg_v01 response;
    const bool isDone =
        send(VELA_MESSAGE(RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01), request, response);
    observation.tell(ModemMessageType::ModifyProfile, techType, profileId, &profile);
    return isDone;
}

bool RlinkWdsProxy::remove(TechType techType, int profileId) {
    worker.check();
    wds_delete_profile_req_msg_v01 request;
    clear(request);
    identify(request.profile, techType, profileId);
    wds_delete_profile_resp_msg_v01 response;
    const bool isDone = send(VELA_MESSAGE(RLINK_WDS_DELETE_PROFILE_REQ_V01), request, response);
    observation.tell(ModemMessageType::DeleteProfile, techType, profileId);
    return isDone;
}

std::shared_ptr<ModemProfile> RlinkWdsProxy::get(TechType techType, int profileId) {
    worker.check();
    wds_get_profile_settings_req_msg_v01 request;
    clear(request);
    identify(request.profile, techType, profileId);
    wds_get_profile_settings_resp_msg_v01 response;
    std::shared_ptr<ModemProfile> profile;
    if (send(VELA_MESSAGE(RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01), request, response)) {
        if (request.profile.profile_type == WDS_PROFILE_TYPE_3GPP2_V01) {
            profile = std::make_shared<Modem3gpp2Profile>(profileId, response);
        } else {
            profile = std::make_shared<Modem3gppProfile>(profileId, response);
        }
    }
    observation.tell(ModemMessageType::ReadProfile, techType, profileId, profile.get());
    return profile;
}

std::list<std::shared_ptr<ModemProfile>> RlinkWdsProxy::getAllProfiles() {
    worker.check();
    std::list<std::shared_ptr<ModemProfile>> profiles;
    if (appendProfiles(WDS_PROFILE_TYPE_3GPP_V01, profiles)) {
        appendProfiles(WDS_PROFILE_TYPE_3GPP2_V01, profiles);
    }
    return profiles;
}

bool RlinkWdsProxy::appendProfiles(wds_profile_type_enum_v01 type,
                                   std::list<std::shared_ptr<ModemProfile>>& profiles) {
    wds_get_profile_list_req_msg_v01 request;
    clear(request);
    request.profile_type_valid = 1;
    request.profile_type = type;
    wds_get_profile_list_resp_msg_v01 response;
    const bool isDone = send(VELA_MESSAGE(RLINK_WDS_GET_PROFILE_LIST_REQ_V01), request, response);
    observation.tell(ModemMessageType::ListProfiles, convertProfileType(type));
    if (!isDone) {
        return false;
    }
    const auto count = std::min<std::uint32_t>(response.profile_list_len, WDS_PROFILE_LIST_MAX_V01);
    for (std::uint32_t i = 0; i < count; ++i) {
        const wds_profile_info_type_v01& entry = response.profile_list[i];
        profiles.push_back(get(convertProfileType(entry.profile_type), entry.profile_index));
    }
    return true;
}

// --- Indications

void RlinkWdsProxy::rlinkIndCb(rlink_client_type client, unsigned int msgId, void* indBuf,
                               unsigned int indBufLen, void* data) {
    log(LogLevel::Verbose, "%s:%d", __PRETTY_FUNCTION__, __LINE__);
    if (indBufLen == 0 || indBuf == nullptr || data == nullptr) {
        log(LogLevel::Error, "The ind_cb_data/ind_buf is null or ind_buf_len is %d",
            static_cast<int>(indBufLen));
        return;
    }
    auto indication = std::make_unique<IndInfo_t>();
    indication->user_handle = client;
    indication->msg_id = msgId;
    indication->ind_buf = std::make_unique<unsigned char[]>(indBufLen);
    std::memcpy(indication->ind_buf.get(), indBuf, indBufLen);
    indication->ind_buf_len = indBufLen;
    indication->ind_cb_data = data;

    auto* proxy = static_cast<RlinkWdsProxy*>(data);
    {
        const MutexLock lock(proxy->indQueueMutex);
        proxy->indQueue.push_back(std::move(indication));
    }
    ssize_t written = 0;
    if (!proxy->indicationFd.signal(written)) {
        log(LogLevel::Error, "Error in writing rv: %d, error: %s", static_cast<int>(written),
            std::strerror(errno));
    }
}

void RlinkWdsProxy::handleIndication(int fd, void* data) {
    drain(fd);
    if (data == nullptr) {
        log(LogLevel::Error, "RlinkWdsProxy nullptr in handleIndication");
        return;
    }
    static_cast<RlinkWdsProxy*>(data)->handleQueuedIndications();
}

void RlinkWdsProxy::handleQueuedIndications() {
    worker.check();
    // What arrives meanwhile has signalled again. It waits its turn, so that a flood of indications
    // does not keep the worker from its callers.
    std::size_t left = countIndications();
    std::unique_ptr<IndInfo_t> indication;
    while (takeIndication(indication) && handleTaken(indication.get())) {
        left -= left > 0 ? 1 : 0;
        if (left == 0 && countIndications() > 0) {
            return;
        }
    }
}

/** False when the rest of the queue has to wait for the next signal. */
bool RlinkWdsProxy::handleTaken(const IndInfo_t* indication) {
    if (indication == nullptr) {
        log(LogLevel::Error, "handleIndication: arg is null");
        return false;
    }
    if (indication->msg_id != RLINK_WDS_PROFILE_CHANGED_IND_V01) {
        log(LogLevel::Verbose, "Unknown message ID %lu received",
            static_cast<unsigned long>(indication->msg_id));
        return true;
    }
    return decodeAndReport(*indication);
}

std::size_t RlinkWdsProxy::countIndications() {
    const MutexLock lock(indQueueMutex);
    return indQueue.size();
}

bool RlinkWdsProxy::takeIndication(std::unique_ptr<IndInfo_t>& indication) {
    std::size_t size = 0;
    {
        const MutexLock lock(indQueueMutex);
        size = indQueue.size();
        if (size > 0) {
            indication = std::move(indQueue.front());
            indQueue.pop_front();
        }
    }
    log(LogLevel::Debug, "RlinkWdsProxy: handleIndication indQueue.size[%d]",
        static_cast<int>(size));
    return size > 0;
}

bool RlinkWdsProxy::decodeAndReport(const IndInfo_t& indication) {
    wds_profile_changed_ind_msg_v01 message;
    clear(message);
    if (rlink_client_message_decode(indication.user_handle, RLINK_MESSAGE_INDICATION,
                                    indication.msg_id, indication.ind_buf.get(),
                                    indication.ind_buf_len, &message,
                                    sizeof(message)) != RLINK_NO_ERROR) {
        log(LogLevel::Error, "Unable to decode the nr status ind message");
        tellUnreadable();
        return false;  // deliberate: one bad message ends the pass
    }
    if (message.profile_changed_valid == 0) {
        log(LogLevel::Error, "Profile changed ind TLV is not valid");
        tellUnreadable();
    } else {
        handleProfileChangedInd(message.profile_changed);
    }
    return true;
}

void RlinkWdsProxy::handleProfileChangedInd(const wds_profile_changed_ind_type_v01& change) {
    log(LogLevel::Debug, "RlinkWdsProxy ProfileChangedInd received!");
    constexpr std::uint32_t kLastEvent = 4;
    const std::uint32_t event = static_cast<std::uint32_t>(change.change_event) - 1U;  // 0 wraps
    ProfileChangedInd indication;
    indication.techType = convertProfileType(change.profile_type);
    indication.profileId = change.profile_index;
    indication.event = static_cast<ProfileChangedEvent>(std::min(event, kLastEvent));
    profileChangedIndCb(indication);
}

}  // namespace vela
