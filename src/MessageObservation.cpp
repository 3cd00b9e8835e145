// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "MessageObservation.h"

#include <optional>

#include "Observation.h"
#include "rlink_client.h"

namespace vela {

namespace {

using Clock = std::chrono::steady_clock;

MessageOutcome failureOf(int result) {
    switch (result) {
        case RLINK_NO_ERROR:
            return MessageOutcome::Refused;
        case RLINK_ERROR_TIMEOUT:
            return MessageOutcome::TimedOut;
        case RLINK_ERROR_SERVICE:
        case RLINK_ERROR_DECODE:
            return MessageOutcome::Lost;
        default:
            return MessageOutcome::NotSent;
    }
}

}  // namespace

void MessageObservation::begin(std::uint32_t messageId) {
    underWay.store(messageId, std::memory_order_relaxed);
    latest.reset();
    if (isObserved()) {
        latest.emplace();
        started = Clock::now();
    }
}

bool MessageObservation::end(int result, const wds_response_type_v01& response) {
    underWay.store(0, std::memory_order_relaxed);
    const bool isDone = result == RLINK_NO_ERROR && response.result == 0;
    if (latest) {
        latest->outcome = isDone ? MessageOutcome::Answered : failureOf(result);
        latest->error = latest->outcome == MessageOutcome::Refused ? response.error : 0;
        latest->result = result;
        latest->duration = Clock::now() - started;
    }
    return isDone;
}

void MessageObservation::tell(ModemMessageType type, TechType techType, int profileId,
                              const ModemProfile* profile) const {
    if (!latest) {
        return;
    }
    tellObserver([&](Observer& observer) {
        ModemMessage message = *latest;
        message.type = type;
        message.request = served;
        message.techType = techType;
        message.profileId = profileId;
        std::optional<ProfileImage> image;
        if (profile != nullptr) {
            message.profile = &image.emplace(imageOf(*profile));
            image->profileId = profileId;  // what is written to a profile does not know it
        }
        observer.onMessage(message);
    });
}

}  // namespace vela
