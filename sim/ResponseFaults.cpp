// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "ResponseFaults.h"

#include <wds_service_v01.h>

#include <algorithm>
#include <cstring>

#include "SettingsField.h"

namespace velasim {

namespace {

constexpr char kFiller = 'x';
constexpr std::uint32_t kOverrunCount = 1000;

template <typename Message, typename Change>
void edit(std::span<std::uint8_t> response, Change change) {
    Message message{};
    if (response.size() == sizeof message) {
        std::memcpy(&message, response.data(), sizeof message);
        change(message);
        std::memcpy(response.data(), &message, sizeof message);
    }
}

void fillArray(char* text, std::size_t size) {
    std::fill(std::find(text, text + size, '\0'), text + size, kFiller);
}

void unterminate(wds_get_profile_settings_resp_msg_v01& message) {
    for (const auto& field : SettingsField::all()) {
        if (field.isText && field.isPresent(message.settings)) {
            fillArray(field.bytes(message.settings), field.size);
        }
    }
}

void unterminate(wds_get_profile_list_resp_msg_v01& message) {
    const auto count = std::min<std::uint32_t>(message.profile_list_len, WDS_PROFILE_LIST_MAX_V01);
    std::for_each(message.profile_list, message.profile_list + count,
                  [](auto& info) { fillArray(info.profile_name, sizeof info.profile_name); });
}

void spoilEnumerators(Settings& settings, const FiredFault& fault) {
    Random random(fault.random);
    for (const auto& field : SettingsField::all()) {
        if (field.isEnum && field.isPresent(settings)) {
            const auto garbage = random.next() | 0x10000U;
            field.writeNumber(settings, fault.value == 0 ? garbage : fault.value);
        }
    }
}

void unterminateTexts(std::uint32_t messageId, std::span<std::uint8_t> response) {
    const auto change = [](auto& message) { unterminate(message); };
    if (messageId == RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01) {
        edit<wds_get_profile_settings_resp_msg_v01>(response, change);
    } else if (messageId == RLINK_WDS_GET_PROFILE_LIST_REQ_V01) {
        edit<wds_get_profile_list_resp_msg_v01>(response, change);
    }
}

}  // namespace

void spoilResponse(const FiredFault& fault, std::uint32_t messageId,
                   std::span<std::uint8_t> response) {
    switch (fault.fault) {
        case Fault::UnterminatedText:
            return unterminateTexts(messageId, response);
        case Fault::ListOverrun:
            return edit<wds_get_profile_list_resp_msg_v01>(response, [&](auto& message) {
                message.profile_list_len = fault.value == 0 ? kOverrunCount : fault.value;
            });
        case Fault::GarbageEnumerators:
            return edit<wds_get_profile_settings_resp_msg_v01>(
                response, [&](auto& message) { spoilEnumerators(message.settings, fault); });
        default:
            return;
    }
}

}  // namespace velasim
