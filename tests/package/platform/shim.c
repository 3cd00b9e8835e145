// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The contract of a platform whose modem has no data service.
#include <diag_log.h>
#include <rlink_client.h>
#include <wds_service_v01.h>

int vendor_modem_send(unsigned int msg_id);

bool diagLogInit(void* argument) {
    return argument == 0;
}
bool diagLogDeinit(void) {
    return true;
}
void diagLogPrintf(const diag_log_descriptor* descriptor, ...) {}

rlink_service_object_type wds_get_service_object_internal_v01(int32_t major, int32_t minor,
                                                              int32_t tool) {
    return 0;
}

int rlink_client_notifier_init(rlink_service_object_type service, rlink_client_os_params* os_params,
                               rlink_client_type* notifier) {
    return RLINK_ERROR_SERVICE;
}
int rlink_client_register_notify_cb(rlink_client_type notifier, rlink_notify_cb callback,
                                    void* data) {
    return RLINK_ERROR_SERVICE;
}
int rlink_client_get_any_service(rlink_service_object_type service, rlink_service_info* info) {
    return RLINK_ERROR_SERVICE;
}
int rlink_client_init(rlink_service_info* info, rlink_service_object_type service,
                      rlink_ind_cb callback, void* data, rlink_client_os_params* os_params,
                      rlink_client_type* client) {
    return RLINK_ERROR_SERVICE;
}
int rlink_client_register_error_cb(rlink_client_type client, rlink_error_cb callback, void* data) {
    return RLINK_ERROR_SERVICE;
}
int rlink_client_send_msg_sync(rlink_client_type client, unsigned int msg_id, void* request,
                               unsigned int request_len, void* response, unsigned int response_len,
                               unsigned int timeout_ms) {
    return vendor_modem_send(msg_id);
}
int rlink_client_message_decode(rlink_client_type client, rlink_message_kind kind,
                                unsigned int msg_id, const void* buf, unsigned int len, void* out,
                                unsigned int out_len) {
    return RLINK_ERROR_SERVICE;
}
int rlink_client_release(rlink_client_type client) {
    return RLINK_ERROR_SERVICE;
}
