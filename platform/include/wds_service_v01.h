// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Messages of the modem's wireless data service, interface version 1.227, as they cross the
// messaging client. Every structure has a fixed layout; sizes and offsets are asserted below.
//
// An optional part is a `_valid` flag (0 or 1) and its value, which means nothing when the flag is
// 0. Texts are arrays that include their terminator. Parts that the library neither reads nor
// writes are `reserved`.
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#include "rlink_client.h"

#ifdef __cplusplus
extern "C" {
#endif

enum { WDS_INTERFACE_MAJOR_V01 = 1, WDS_INTERFACE_MINOR_V01 = 227, WDS_INTERFACE_TOOL_V01 = 6 };

/* Message identifiers. */
enum {
    RLINK_WDS_INDICATION_REGISTER_REQ_V01 = 0x03,
    RLINK_WDS_CREATE_PROFILE_REQ_V01 = 0x27,
    RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01 = 0x28,
    RLINK_WDS_DELETE_PROFILE_REQ_V01 = 0x29,
    RLINK_WDS_GET_PROFILE_LIST_REQ_V01 = 0x2A,
    RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01 = 0x2B,
    RLINK_WDS_CONFIGURE_PROFILE_EVENT_LIST_REQ_V01 = 0xA7,
    RLINK_WDS_PROFILE_CHANGED_IND_V01 = 0xA8,
    RLINK_WDS_BIND_SUBSCRIPTION_REQ_V01 = 0xAF
};

/* Longest texts, without the terminator, and longest lists. */
enum {
    WDS_PROFILE_NAME_MAX_V01 = 50,
    WDS_APN_NAME_MAX_V01 = 150,
    WDS_USER_NAME_MAX_V01 = 127,
    WDS_PASSWORD_MAX_V01 = 127,
    WDS_PROFILE_LIST_MAX_V01 = 255
};

/* In an event-list entry: every profile type, every profile index. */
enum { WDS_PROFILE_TYPE_ALL_V01 = 0xFF, WDS_PROFILE_INDEX_ALL_V01 = 0xFF };

/* The outermost enumerators make every enumeration hold any 32-bit number. */

typedef enum wds_profile_type_enum_v01 {
    WDS_PROFILE_TYPE_ENUM_MIN_V01 = -2147483647,
    WDS_PROFILE_TYPE_3GPP_V01 = 0,
    WDS_PROFILE_TYPE_3GPP2_V01 = 1,
    WDS_PROFILE_TYPE_ENUM_MAX_V01 = 2147483647
} wds_profile_type_enum_v01;

/* PDP type of a 3GPP profile. */
typedef enum wds_pdp_type_enum_v01 {
    WDS_PDP_TYPE_ENUM_MIN_V01 = -2147483647,
    WDS_PDP_TYPE_IPV4_V01 = 0,
    WDS_PDP_TYPE_PPP_V01 = 1,
    WDS_PDP_TYPE_IPV6_V01 = 2,
    WDS_PDP_TYPE_IPV4V6_V01 = 3,
    WDS_PDP_TYPE_ENUM_MAX_V01 = 2147483647
} wds_pdp_type_enum_v01;

/* PDP type of the home override and of roaming. */
typedef enum wds_common_pdp_type_enum_v01 {
    WDS_COMMON_PDP_TYPE_ENUM_MIN_V01 = -2147483647,
    WDS_COMMON_PDP_TYPE_IPV4_V01 = 0,
    WDS_COMMON_PDP_TYPE_IPV6_V01 = 1,
    WDS_COMMON_PDP_TYPE_IPV4V6_V01 = 2,
    WDS_COMMON_PDP_TYPE_UNSET_V01 = 255,
    WDS_COMMON_PDP_TYPE_ENUM_MAX_V01 = 2147483647
} wds_common_pdp_type_enum_v01;

/* PDN type of a 3GPP2 profile. */
typedef enum wds_profile_pdn_type_enum_v01 {
    WDS_PROFILE_PDN_TYPE_ENUM_MIN_V01 = -2147483647,
    WDS_PROFILE_PDN_TYPE_IPV4_V01 = 0,
    WDS_PROFILE_PDN_TYPE_IPV6_V01 = 1,
    WDS_PROFILE_PDN_TYPE_IPV4V6_V01 = 2,
    WDS_PROFILE_PDN_TYPE_UNSPECIFIED_V01 = 3,
    WDS_PROFILE_PDN_TYPE_ENUM_MAX_V01 = 2147483647
} wds_profile_pdn_type_enum_v01;

/* Authentication protocol of a 3GPP2 profile. */
typedef enum wds_profile_auth_protocol_enum_v01 {
    WDS_PROFILE_AUTH_PROTOCOL_ENUM_MIN_V01 = -2147483647,
    WDS_PROFILE_AUTH_PROTOCOL_NONE_V01 = 0,
    WDS_PROFILE_AUTH_PROTOCOL_PAP_V01 = 1,
    WDS_PROFILE_AUTH_PROTOCOL_CHAP_V01 = 2,
    WDS_PROFILE_AUTH_PROTOCOL_PAP_CHAP_V01 = 3,
    WDS_PROFILE_AUTH_PROTOCOL_ENUM_MAX_V01 = 2147483647
} wds_profile_auth_protocol_enum_v01;

/* PDN-level authentication protocol of a 3GPP2 profile; the same numbers. */
typedef enum wds_profile_pdn_level_auth_protocol_enum_v01 {
    WDS_PROFILE_PDN_LEVEL_AUTH_PROTOCOL_ENUM_MIN_V01 = -2147483647,
    WDS_PROFILE_PDN_LEVEL_AUTH_PROTOCOL_NONE_V01 = 0,
    WDS_PROFILE_PDN_LEVEL_AUTH_PROTOCOL_PAP_V01 = 1,
    WDS_PROFILE_PDN_LEVEL_AUTH_PROTOCOL_CHAP_V01 = 2,
    WDS_PROFILE_PDN_LEVEL_AUTH_PROTOCOL_PAP_CHAP_V01 = 3,
    WDS_PROFILE_PDN_LEVEL_AUTH_PROTOCOL_ENUM_MAX_V01 = 2147483647
} wds_profile_pdn_level_auth_protocol_enum_v01;

/* What happened to a profile. */
typedef enum wds_profile_change_event_enum_v01 {
    WDS_PROFILE_CHANGE_EVENT_ENUM_MIN_V01 = -2147483647,
    WDS_PROFILE_CHANGE_EVENT_CREATE_V01 = 1,
    WDS_PROFILE_CHANGE_EVENT_DELETE_V01 = 2,
    WDS_PROFILE_CHANGE_EVENT_MODIFY_V01 = 3,
    WDS_PROFILE_CHANGE_EVENT_SUBSCRIPTION_CHANGE_V01 = 4,
    WDS_PROFILE_CHANGE_EVENT_PROFILE_READY_V01 = 5,
    WDS_PROFILE_CHANGE_EVENT_ENUM_MAX_V01 = 2147483647
} wds_profile_change_event_enum_v01;

/* Result of every response: `result` 0 is success, otherwise `error` says why. */
typedef struct wds_response_type_v01 {
    uint32_t result;
    uint32_t error;
} wds_response_type_v01;

/* Names one stored profile. */
typedef struct wds_profile_identifier_type_v01 {
    wds_profile_type_enum_v01 profile_type;
    uint8_t profile_index;
} wds_profile_identifier_type_v01;

/* The settings of one profile: what create and modify write and get-settings reads. */
typedef struct wds_profile_settings_type_v01 {
    /* APN types, in the service's own bit layout. */
    uint64_t apn_type_mask;
    uint8_t apn_type_mask_valid;

    uint8_t persistence_flag_valid;
    uint8_t persistence_flag;
    uint8_t clat_enabled_valid;
    uint8_t clat_enabled;

    uint8_t profile_name_valid;
    char profile_name[WDS_PROFILE_NAME_MAX_V01 + 1];

    /* 3GPP */
    uint8_t apn_name_valid;
    char apn_name[WDS_APN_NAME_MAX_V01 + 1];
    uint8_t user_name_valid;
    char user_name[WDS_USER_NAME_MAX_V01 + 1];
    uint8_t password_valid;
    char password[WDS_PASSWORD_MAX_V01 + 1];
    uint8_t pdp_type_valid;
    wds_pdp_type_enum_v01 pdp_type;
    uint8_t override_home_pdp_type_valid;
    wds_common_pdp_type_enum_v01 override_home_pdp_type;
    uint8_t lte_roaming_pdp_type_valid;
    wds_common_pdp_type_enum_v01 lte_roaming_pdp_type;
    uint8_t umts_roaming_pdp_type_valid;
    wds_common_pdp_type_enum_v01 umts_roaming_pdp_type;
    uint8_t max_pdn_connections_per_block_valid;
    uint16_t max_pdn_connections_per_block;
    uint8_t max_pdn_connection_timer_valid;
    uint16_t max_pdn_connection_timer; /* seconds */
    uint8_t pdn_request_wait_interval_valid;
    uint16_t pdn_request_wait_interval;
    uint8_t apn_disabled_flag_valid;
    uint8_t apn_disabled_flag;
    uint8_t emergency_calls_support_valid;
    uint8_t emergency_calls_support;
    uint8_t authentication_preference_valid;
    uint8_t authentication_preference; /* bit 0 PAP, bit 1 CHAP */
    uint8_t apn_class_valid;
    uint8_t apn_class;

    /* 3GPP2 */
    uint8_t apn_string_3gpp2_valid;
    char apn_string_3gpp2[WDS_APN_NAME_MAX_V01 + 1];
    uint8_t user_id_valid;
    char user_id[WDS_USER_NAME_MAX_V01 + 1];
    uint8_t pdn_level_user_id_valid;
    char pdn_level_user_id[WDS_USER_NAME_MAX_V01 + 1];
    uint8_t authentication_password_valid;
    char authentication_password[WDS_PASSWORD_MAX_V01 + 1];
    uint8_t pdn_level_authentication_password_valid;
    char pdn_level_authentication_password[WDS_PASSWORD_MAX_V01 + 1];
    uint8_t pdn_type_3gpp2_valid;
    wds_profile_pdn_type_enum_v01 pdn_type_3gpp2;
    uint8_t authentication_protocol_valid;
    wds_profile_auth_protocol_enum_v01 authentication_protocol;
    uint8_t pdn_level_authentication_protocol_valid;
    wds_profile_pdn_level_auth_protocol_enum_v01 pdn_level_authentication_protocol;
    uint8_t apn_class_3gpp2_valid;
    uint8_t apn_class_3gpp2;

    uint8_t reserved[2022];
} wds_profile_settings_type_v01;

/* Create profile */
typedef struct wds_create_profile_req_msg_v01 {
    wds_profile_type_enum_v01 profile_type;
    wds_profile_settings_type_v01 settings;
} wds_create_profile_req_msg_v01;

typedef struct wds_create_profile_resp_msg_v01 {
    wds_response_type_v01 resp;
    wds_profile_identifier_type_v01 profile;
    uint8_t extended_error_code_valid;
    uint32_t extended_error_code;
} wds_create_profile_resp_msg_v01;

/* Modify profile settings */
typedef struct wds_modify_profile_settings_req_msg_v01 {
    wds_profile_identifier_type_v01 profile;
    wds_profile_settings_type_v01 settings;
    uint8_t reserved[8];
} wds_modify_profile_settings_req_msg_v01;

typedef struct wds_modify_profile_settings_resp_msg_v01 {
    wds_response_type_v01 resp;
    uint8_t extended_error_code_valid;
    uint32_t extended_error_code;
} wds_modify_profile_settings_resp_msg_v01;

/* Delete profile */
typedef struct wds_delete_profile_req_msg_v01 {
    wds_profile_identifier_type_v01 profile;
} wds_delete_profile_req_msg_v01;

typedef struct wds_delete_profile_resp_msg_v01 {
    wds_response_type_v01 resp;
    uint8_t extended_error_code_valid;
    uint32_t extended_error_code;
} wds_delete_profile_resp_msg_v01;

/* Get profile settings */
typedef struct wds_get_profile_settings_req_msg_v01 {
    wds_profile_identifier_type_v01 profile;
} wds_get_profile_settings_req_msg_v01;

typedef struct wds_get_profile_settings_resp_msg_v01 {
    wds_response_type_v01 resp;
    wds_profile_settings_type_v01 settings;
    uint8_t extended_error_code_valid;
    uint32_t extended_error_code;
    uint8_t reserved[8];
} wds_get_profile_settings_resp_msg_v01;

/* Get profile list */
typedef struct wds_get_profile_list_req_msg_v01 {
    uint8_t profile_type_valid;
    wds_profile_type_enum_v01 profile_type;
    uint8_t reserved[176];
} wds_get_profile_list_req_msg_v01;

typedef struct wds_profile_info_type_v01 {
    wds_profile_type_enum_v01 profile_type;
    uint8_t profile_index;
    char profile_name[WDS_PROFILE_NAME_MAX_V01 + 1];
} wds_profile_info_type_v01;

typedef struct wds_get_profile_list_resp_msg_v01 {
    wds_response_type_v01 resp;
    uint32_t profile_list_len;
    wds_profile_info_type_v01 profile_list[WDS_PROFILE_LIST_MAX_V01];
    uint8_t extended_error_code_valid;
    uint32_t extended_error_code;
} wds_get_profile_list_resp_msg_v01;

/* Bind subscription */
typedef struct wds_bind_subscription_req_msg_v01 {
    int32_t instance;
} wds_bind_subscription_req_msg_v01;

typedef struct wds_bind_subscription_resp_msg_v01 {
    wds_response_type_v01 resp;
} wds_bind_subscription_resp_msg_v01;

/* Indication register */
typedef struct wds_indication_register_req_msg_v01 {
    uint8_t reserved_before[16];
    uint8_t report_profile_changes_valid;
    uint8_t report_profile_changes;
    uint8_t reserved_after[374];
} wds_indication_register_req_msg_v01;

typedef struct wds_indication_register_resp_msg_v01 {
    wds_response_type_v01 resp;
} wds_indication_register_resp_msg_v01;

/* Profile event list configuration: which profiles' changes are indicated */
typedef struct wds_configure_profile_event_list_req_msg_v01 {
    uint8_t event_list_valid;
    uint32_t event_list_len;
    wds_profile_identifier_type_v01 event_list[WDS_PROFILE_LIST_MAX_V01];
    uint8_t report_own_changes_valid;
    uint8_t report_own_changes;
} wds_configure_profile_event_list_req_msg_v01;

typedef struct wds_configure_profile_event_list_resp_msg_v01 {
    wds_response_type_v01 resp;
} wds_configure_profile_event_list_resp_msg_v01;

/* Profile changed (indication) */
typedef struct wds_profile_changed_ind_type_v01 {
    wds_profile_type_enum_v01 profile_type;
    uint8_t profile_index;
    wds_profile_change_event_enum_v01 change_event;
} wds_profile_changed_ind_type_v01;

typedef struct wds_profile_changed_ind_msg_v01 {
    uint8_t profile_changed_valid;
    wds_profile_changed_ind_type_v01 profile_changed;
} wds_profile_changed_ind_msg_v01;

#define WDS_ASSERT_SIZE(type, size) static_assert(sizeof(type) == (size), "size of " #type)
#define WDS_ASSERT_OFFSET(type, field, offset) \
    static_assert(offsetof(type, field) == (offset), "offset of " #field " in " #type)

WDS_ASSERT_SIZE(wds_profile_identifier_type_v01, 8);
WDS_ASSERT_OFFSET(wds_profile_identifier_type_v01, profile_type, 0);
WDS_ASSERT_OFFSET(wds_profile_identifier_type_v01, profile_index, 4);
WDS_ASSERT_SIZE(wds_profile_settings_type_v01, 3240);

WDS_ASSERT_SIZE(wds_create_profile_req_msg_v01, 3248);
WDS_ASSERT_OFFSET(wds_create_profile_req_msg_v01, profile_type, 0);
WDS_ASSERT_SIZE(wds_create_profile_resp_msg_v01, 24);
WDS_ASSERT_OFFSET(wds_create_profile_resp_msg_v01, resp.result, 0);
WDS_ASSERT_SIZE(wds_modify_profile_settings_req_msg_v01, 3256);
WDS_ASSERT_OFFSET(wds_modify_profile_settings_req_msg_v01, profile, 0);
WDS_ASSERT_SIZE(wds_modify_profile_settings_resp_msg_v01, 16);
WDS_ASSERT_OFFSET(wds_modify_profile_settings_resp_msg_v01, resp.result, 0);
WDS_ASSERT_SIZE(wds_delete_profile_req_msg_v01, 8);
WDS_ASSERT_SIZE(wds_delete_profile_resp_msg_v01, 16);
WDS_ASSERT_OFFSET(wds_delete_profile_resp_msg_v01, resp.result, 0);
WDS_ASSERT_SIZE(wds_get_profile_settings_req_msg_v01, 8);
WDS_ASSERT_SIZE(wds_get_profile_settings_resp_msg_v01, 3264);
WDS_ASSERT_OFFSET(wds_get_profile_settings_resp_msg_v01, resp.result, 0);
WDS_ASSERT_SIZE(wds_get_profile_list_req_msg_v01, 184);
WDS_ASSERT_SIZE(wds_get_profile_list_resp_msg_v01, 14300);
WDS_ASSERT_OFFSET(wds_get_profile_list_resp_msg_v01, resp.result, 0);
WDS_ASSERT_SIZE(wds_bind_subscription_req_msg_v01, 4);
WDS_ASSERT_SIZE(wds_bind_subscription_resp_msg_v01, 8);
WDS_ASSERT_OFFSET(wds_bind_subscription_resp_msg_v01, resp.result, 0);
WDS_ASSERT_SIZE(wds_indication_register_req_msg_v01, 392);
WDS_ASSERT_OFFSET(wds_indication_register_req_msg_v01, report_profile_changes_valid, 16);
WDS_ASSERT_OFFSET(wds_indication_register_req_msg_v01, report_profile_changes, 17);
WDS_ASSERT_SIZE(wds_indication_register_resp_msg_v01, 8);
WDS_ASSERT_OFFSET(wds_indication_register_resp_msg_v01, resp.result, 0);
WDS_ASSERT_SIZE(wds_configure_profile_event_list_req_msg_v01, 2052);
WDS_ASSERT_OFFSET(wds_configure_profile_event_list_req_msg_v01, event_list_valid, 0);
WDS_ASSERT_OFFSET(wds_configure_profile_event_list_req_msg_v01, event_list_len, 4);
WDS_ASSERT_OFFSET(wds_configure_profile_event_list_req_msg_v01, event_list, 8);
WDS_ASSERT_OFFSET(wds_configure_profile_event_list_req_msg_v01, report_own_changes_valid, 2048);
WDS_ASSERT_OFFSET(wds_configure_profile_event_list_req_msg_v01, report_own_changes, 2049);
WDS_ASSERT_SIZE(wds_configure_profile_event_list_resp_msg_v01, 8);
WDS_ASSERT_OFFSET(wds_configure_profile_event_list_resp_msg_v01, resp.result, 0);

#undef WDS_ASSERT_SIZE
#undef WDS_ASSERT_OFFSET

/* The service object of the given interface version; null when the platform has no such service. */
rlink_service_object_type wds_get_service_object_internal_v01(int32_t major, int32_t minor,
                                                              int32_t tool);

#ifdef __cplusplus
}
#endif
