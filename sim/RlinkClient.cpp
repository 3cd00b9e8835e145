// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// The messaging client's functions, answered by the installed simulators.
#include <rlink_client.h>
#include <wds_service_v01.h>

#include <cstdint>
#include <cstring>
#include <span>

#include "Exchange.h"
#include "IndicationCodec.h"
#include "Installation.h"
#include "velasim/Export.h"

struct rlink_service_object {
    std::uint32_t major;
};

namespace {

using velasim::Installation;
using velasim::SimulatedPlatform;

constexpr rlink_service_object kWdsService{WDS_INTERFACE_MAJOR_V01};

SimulatedPlatform::Handle handleOf(rlink_client_type client) {
    return reinterpret_cast<SimulatedPlatform::Handle>(client);
}

std::shared_ptr<SimulatedPlatform> ownerOf(rlink_client_type client) {
    return client == nullptr ? nullptr : Installation::process().ownerOf(handleOf(client));
}

template <typename Byte, typename Pointer>
std::span<Byte> bytesOf(Pointer* data, unsigned size) {
    return data == nullptr ? std::span<Byte>{} : std::span(static_cast<Byte*>(data), size);
}

}  // namespace

extern "C" {

VELASIM_API rlink_service_object_type wds_get_service_object_internal_v01(int32_t major,
                                                                          int32_t minor,
                                                                          int32_t tool) {
    const auto platform = Installation::process().newest();
    const bool isKnown = major == WDS_INTERFACE_MAJOR_V01 && minor == WDS_INTERFACE_MINOR_V01 &&
                         tool == WDS_INTERFACE_TOOL_V01;
    return platform && platform->options.hasService && isKnown ? &kWdsService : nullptr;
}

VELASIM_API int rlink_client_notifier_init(rlink_service_object_type service,
                                           rlink_client_os_params* /*os_params*/,
                                           rlink_client_type* notifier) {
    if (notifier == nullptr) {
        return RLINK_ERROR_CLIENT;
    }
    *notifier = nullptr;
    const auto platform = Installation::process().newest();
    if (service != &kWdsService || !platform) {
        return RLINK_ERROR_SERVICE;
    }
    const auto handle = Installation::process().newHandle();
    *notifier = velasim::RlinkRuntime::toClient(handle);  // names nothing after a failure
    return platform->createNotifier(handle);
}

VELASIM_API int rlink_client_register_notify_cb(rlink_client_type notifier,
                                                rlink_notify_cb callback, void* data) {
    const auto platform = ownerOf(notifier);
    return platform
               ? platform->runtime.watchService(handleOf(notifier), callback, &kWdsService, data)
               : RLINK_ERROR_CLIENT;
}

VELASIM_API int rlink_client_get_any_service(rlink_service_object_type service,
                                             rlink_service_info* info) {
    const auto platform = Installation::process().newest();
    if (service != &kWdsService || info == nullptr || !platform || !platform->offersService()) {
        return RLINK_ERROR_SERVICE;
    }
    info->reserved[0] = Installation::process().serialOf(platform.get());
    return RLINK_NO_ERROR;
}

VELASIM_API int rlink_client_init(rlink_service_info* info, rlink_service_object_type service,
                                  rlink_ind_cb callback, void* data,
                                  rlink_client_os_params* /*os_params*/,
                                  rlink_client_type* client) {
    if (client == nullptr) {
        return RLINK_ERROR_CLIENT;
    }
    *client = nullptr;
    const auto platform =
        info == nullptr ? nullptr : Installation::process().bySerial(info->reserved[0]);
    if (service != &kWdsService || !platform) {
        return RLINK_ERROR_SERVICE;
    }
    const auto handle = Installation::process().newHandle();
    *client = velasim::RlinkRuntime::toClient(handle);  // names nothing after a failure
    return platform->connect(handle, callback, data);
}

VELASIM_API int rlink_client_register_error_cb(rlink_client_type client, rlink_error_cb callback,
                                               void* data) {
    const auto platform = ownerOf(client);
    return platform ? platform->watchErrors(handleOf(client), callback, data) : RLINK_ERROR_CLIENT;
}

VELASIM_API int rlink_client_send_msg_sync(rlink_client_type client, unsigned int msg_id,
                                           void* request, unsigned int request_len, void* response,
                                           unsigned int response_len, unsigned int timeout_ms) {
    const auto platform = ownerOf(client);
    const auto number = platform ? platform->runtime.clientOf(handleOf(client)) : 0;
    if (number == 0) {
        return RLINK_ERROR_CLIENT;
    }
    return velasim::Exchange(*platform, number, msg_id,
                             bytesOf<const std::uint8_t>(request, request_len),
                             bytesOf<std::uint8_t>(response, response_len), timeout_ms)
        .run();
}

// Needs no client, so that a released handle does no harm.
VELASIM_API int rlink_client_message_decode(rlink_client_type client, rlink_message_kind kind,
                                            unsigned int msg_id, const void* buf, unsigned int len,
                                            void* out, unsigned int out_len) {
    if (client == nullptr) {
        return RLINK_ERROR_CLIENT;
    }
    if (kind != RLINK_MESSAGE_INDICATION || msg_id != RLINK_WDS_PROFILE_CHANGED_IND_V01 ||
        out == nullptr || out_len != sizeof(wds_profile_changed_ind_msg_v01) ||
        (buf == nullptr && len != 0)) {
        return RLINK_ERROR_DECODE;
    }
    const auto message = velasim::decodeProfileChanged(bytesOf<const std::uint8_t>(buf, len));
    if (!message) {
        return RLINK_ERROR_DECODE;
    }
    std::memcpy(out, &*message, sizeof *message);
    return RLINK_NO_ERROR;
}

VELASIM_API int rlink_client_release(rlink_client_type client) {
    const auto platform = ownerOf(client);
    return platform ? platform->release(handleOf(client)) : RLINK_ERROR_CLIENT;
}

}  // extern "C"
