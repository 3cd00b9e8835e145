// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// The messaging client that a platform supplies: how a process talks to a service in the modem.
//
// Contract for every implementation:
//  - Callbacks are made on threads of the implementation, never inside a call of the client.
//  - rlink_client_release() returns only when no callback for that client is running or will run.
//  - A null client is a valid argument everywhere and makes the call fail with RLINK_ERROR_CLIENT.
//  - A client handle that was released may still be handed to rlink_client_message_decode(), which
//    then either decodes or fails, but touches no freed memory.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A connection to a service, or a notifier that waits for one. Null means none. */
typedef struct rlink_client* rlink_client_type;

/* What identifies a service and its message set; owned by the platform, valid for ever. */
typedef const struct rlink_service_object* rlink_service_object_type;

/* Operating-system parameters of a client. The library passes them zero-filled. */
typedef struct rlink_client_os_params {
    uint64_t reserved[4];
} rlink_client_os_params;

/* The address of one running service; opaque to the library. */
typedef struct rlink_service_info {
    uint64_t reserved[4];
} rlink_service_info;

/* Results. Zero is success, everything else is failure. */
enum {
    RLINK_NO_ERROR = 0,
    RLINK_ERROR_INTERNAL = -1,
    RLINK_ERROR_SERVICE = -2, /* the service is not there (any more) */
    RLINK_ERROR_TIMEOUT = -3,
    RLINK_ERROR_DECODE = -4,
    RLINK_ERROR_CLIENT = -5 /* no such client */
};

/* What a notifier reports. */
typedef enum rlink_notify_event_type {
    RLINK_SERVICE_AVAILABLE = 0,
    RLINK_SERVICE_GONE = 1,
    RLINK_NOTIFY_EVENT_MAX = 2147483647
} rlink_notify_event_type;

/* Kinds of message, for decoding. */
typedef enum rlink_message_kind {
    RLINK_MESSAGE_REQUEST = 0,
    RLINK_MESSAGE_RESPONSE = 1,
    RLINK_MESSAGE_INDICATION = 2
} rlink_message_kind;

typedef void (*rlink_notify_cb)(rlink_client_type notifier, rlink_service_object_type service,
                                rlink_notify_event_type event, void* data);

/* `ind_buf` is valid during the call only. */
typedef void (*rlink_ind_cb)(rlink_client_type client, unsigned int msg_id, void* ind_buf,
                             unsigned int ind_buf_len, void* data);

typedef void (*rlink_error_cb)(rlink_client_type client, int error, void* data);

/* Creates a notifier, which waits for the service. */
int rlink_client_notifier_init(rlink_service_object_type service, rlink_client_os_params* os_params,
                               rlink_client_type* notifier);

/* Calls `callback` whenever the number of running services changes, and once soon after the
 * registration when the service is there already. */
int rlink_client_register_notify_cb(rlink_client_type notifier, rlink_notify_cb callback,
                                    void* data);

/* Fills `info` with the address of any running instance of the service; fails when none runs. */
int rlink_client_get_any_service(rlink_service_object_type service, rlink_service_info* info);

/* Connects a client. Its indications arrive through `callback`. */
int rlink_client_init(rlink_service_info* info, rlink_service_object_type service,
                      rlink_ind_cb callback, void* data, rlink_client_os_params* os_params,
                      rlink_client_type* client);

/* Calls `callback` when the service goes away, and soon when it is gone already. */
int rlink_client_register_error_cb(rlink_client_type client, rlink_error_cb callback, void* data);

/* Sends one request and waits at most `timeout_ms` milliseconds for its response, which is decoded
 * into `response`. Zero means that a response arrived, whatever it says. */
int rlink_client_send_msg_sync(rlink_client_type client, unsigned int msg_id, void* request,
                               unsigned int request_len, void* response, unsigned int response_len,
                               unsigned int timeout_ms);

/* Decodes an encoded message into its structure `out` of exactly `out_len` bytes. */
int rlink_client_message_decode(rlink_client_type client, rlink_message_kind kind,
                                unsigned int msg_id, const void* buf, unsigned int len, void* out,
                                unsigned int out_len);

/* Releases a client or notifier; its callbacks have ended when this returns. */
int rlink_client_release(rlink_client_type client);

#ifdef __cplusplus
}
#endif
