// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// List and read responses with arbitrary contents: this program answers the library's requests with
// bytes of its input. Whatever they say, texts stay within their arrays and every operation ends.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "EventManager.h"
#include "Modem3gpp2Profile.h"
#include "Modem3gppProfile.h"
#include "RlinkWdsProxy.h"
#include "rlink_client.h"
#include "velasim/Simulator.h"

namespace {

/** The input, handed out as long as anybody asks: it starts again at its end. */
class Bytes {
  public:
    void start(const std::uint8_t* newData, std::size_t newSize) {
        data = newData;
        size = newSize;
        position = 0;
    }

    std::uint8_t next() {
        position = position >= size ? 0 : position;
        return size == 0 ? std::uint8_t{0} : data[position++];
    }

    void fill(void* target, std::size_t length) {
        std::generate_n(static_cast<std::uint8_t*>(target), length, [this] { return next(); });
    }

    std::string text() {
        std::string result(next() % 200U, '\0');
        fill(result.data(), result.size());
        return result;
    }

  private:
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
    std::size_t position = 0;
};

Bytes input;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void checkTexts(const vela::ProfileParams& params) {
    require(params.getApnName().size() <= WDS_APN_NAME_MAX_V01 + 1U);
    require(params.getUserName().size() <= WDS_USER_NAME_MAX_V01 + 1U);
    require(params.getPassword().size() <= WDS_PASSWORD_MAX_V01 + 1U);
    require(params.dump().size() < 1000);
}

/** What a cache and its clients do with a profile once it has been read. */
void exercise(vela::ModemProfile& profile) {
    const vela::ProfileParams params = profile.get();
    checkTexts(params);
    require(profile.dump().size() < 2000);
    vela::FilterProfileParams filter(params);
    filter.addFilterMatchCriteria(input.next());
    profile.match(filter);
    vela::ModifyProfileParams changes;
    changes.setApnName(input.text());
    changes.setHomeIPType(static_cast<vela::IPType>(input.next() % 5));
    changes.setRoamIPType(static_cast<vela::IPType>(input.next() % 5));
    if (const auto difference = profile.diff(changes)) {
        difference->constructModifyRequest();
        profile.apply(difference);
    }
}

void readOne(bool is3gpp2) {
    wds_get_profile_settings_resp_msg_v01 response;
    const int index = input.next();
    input.fill(&response, sizeof(response));
    if (is3gpp2) {
        vela::Modem3gpp2Profile profile(index, response);
        exercise(profile);
    } else {
        vela::Modem3gppProfile profile(index, response);
        exercise(profile);
    }
}

void readAll() {
    static velasim::Simulator sim({.delivery = velasim::DeliveryMode::Stepped});
    static vela::EventManager events;
    static vela::RlinkWdsProxy proxy(events, 0);
    for (const auto& profile : proxy.getAllProfiles()) {
        if (profile) {
            exercise(*profile);
        }
    }
}

}  // namespace

extern "C" int rlink_client_send_msg_sync(rlink_client_type, unsigned int message, void*,
                                          unsigned int, void* response, unsigned int length,
                                          unsigned int) {
    constexpr unsigned kMany = 4;
    static unsigned readsSinceList = 0;
    const bool isList = message == RLINK_WDS_GET_PROFILE_LIST_REQ_V01;
    readsSinceList = isList ? 0 : readsSinceList + 1;
    const std::uint8_t mood = input.next();
    if (mood == 0xFF || readsSinceList > kMany) {  // a list of 255 is more of the same
        return RLINK_ERROR_TIMEOUT;
    }
    input.fill(response, length);
    if (mood < 0xF0) {
        std::memset(response, 0, sizeof(std::uint32_t));
    }
    const std::uint8_t count = isList ? input.next() : 0xFF;
    if (count < 0xC0) {  // mostly a short list; now and then whatever the bytes say
        static_cast<wds_get_profile_list_resp_msg_v01*>(response)->profile_list_len = count % 4;
    }
    return RLINK_NO_ERROR;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    input.start(data, size);
    // Most inputs are one answer, without a list and a log on the way: they are faster.
    const std::uint8_t road = input.next();
    if (road < 0x20) {
        readAll();
    } else {
        readOne(road % 2 == 0);
    }
    return 0;
}
