// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
// Responses with arbitrary contents: this program answers every request of the library with bytes
// of its input. Whatever they say, texts stay within their arrays and every operation ends.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "EventManager.h"
#include "ProfileCache.h"
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
        auto* bytes = static_cast<std::uint8_t*>(target);
        while (length > 0 && size > 0) {
            position = position >= size ? 0 : position;
            const std::size_t part = std::min(length, size - position);
            std::memcpy(bytes, data + position, part);
            bytes += part;
            position += part;
            length -= part;
        }
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

Bytes& input() {
    static Bytes bytes;
    return bytes;
}

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

void exerciseProfiles(vela::ProfileCache& cache) {
    vela::FilterProfileParams all;
    for (const auto& key : cache.filter(all)) {
        const auto params = cache.get(key);
        require(params.has_value());
        checkTexts(*params);
        vela::FilterProfileParams filter(*params);
        filter.addFilterMatchCriteria(input().next());
        cache.match(filter, key);
        vela::ModifyProfileParams changes;
        changes.setApnName(input().text());
        changes.setHomeIPType(static_cast<vela::IPType>(input().next() % 5));
        changes.setRoamIPType(static_cast<vela::IPType>(input().next() % 5));
        cache.modify(changes, key);
        cache.releaseProfile(key->getToken());
    }
}

}  // namespace

extern "C" int rlink_client_send_msg_sync(rlink_client_type, unsigned int message, void*,
                                          unsigned int, void* response, unsigned int length,
                                          unsigned int) {
    const std::uint8_t mood = input().next();
    if (mood == 0xFF) {
        return RLINK_ERROR_TIMEOUT;
    }
    input().fill(response, length);
    if (mood < 0xF0) {
        std::memset(response, 0, sizeof(std::uint32_t));
    }
    if (message == RLINK_WDS_GET_PROFILE_LIST_REQ_V01 && mood < 0xE0) {
        static_cast<wds_get_profile_list_resp_msg_v01*>(response)->profile_list_len = mood % 4U;
    }
    return RLINK_NO_ERROR;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static velasim::Simulator sim([] {
        velasim::SimulatorOptions options;
        options.delivery = velasim::DeliveryMode::Stepped;
        return options;
    }());
    input().start(data, size);
    vela::EventManager events;
    vela::ProfileCache cache(events, 0, [](const auto&) { return nullptr; });
    cache.refresh();
    exerciseProfiles(cache);
    vela::AddProfileParams params(false, static_cast<vela::TechType>(input().next() % 3), false);
    params.setApnName(input().text());
    cache.add(params);
    for (int event = 0; event < 3; ++event) {
        const vela::ProfileChangedInd ind{static_cast<vela::TechType>(input().next() % 2),
                                          input().next() % 4,
                                          static_cast<vela::ProfileChangedEvent>(event)};
        cache.onIndication(ind);
    }
    exerciseProfiles(cache);
    cache.dump();
    return 0;
}
