// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Fault.h"

#include <wds_service_v01.h>

#include <algorithm>

namespace velasim {

namespace {

struct FaultInfo {
    std::string_view name;
    FaultPoint point = FaultPoint::Request;
};

/** Null for a number that is not a fault's. A fault without a line here does not compile. */
constexpr FaultInfo infoOf(Fault fault) {
    using enum Fault;
    using enum FaultPoint;
    // clang-format off
    switch (fault) {
        case SendFailure: return {"send-failure", Request};
        case Timeout: return {"time-out", Request};
        case TimeoutAfterEffect: return {"time-out-after-effect", Request};
        case Refuse: return {"refuse", Request};
        case TableFull: return {"table-full", Request};
        case RestartBeforeEffect: return {"restart-before-effect", Request};
        case RestartAfterEffect: return {"restart-after-effect", Request};
        case RestartAfterResponse: return {"restart-after-response", Request};
        case UnterminatedText: return {"unterminated-text", Request};
        case ListOverrun: return {"list-overrun", Request};
        case GarbageEnumerators: return {"garbage-enumerators", Request};
        case LoseIndication: return {"lose-indication", Indication};
        case DelayIndication: return {"delay-indication", Indication};
        case DuplicateIndication: return {"duplicate-indication", Indication};
        case ReorderIndication: return {"reorder-indication", Indication};
        case IndicationBeforeResponse: return {"indication-before-response", Indication};
        case TruncateIndication: return {"truncate-indication", Indication};
        case CorruptIndication: return {"corrupt-indication", Indication};
        case NotifierInitFailure: return {"notifier-init-failure", Connect};
        case NoServiceInstance: return {"no-service-instance", Connect};
        case ClientInitFailure: return {"client-init-failure", Connect};
        case ErrorCallbackFailure: return {"error-callback-failure", Connect};
    }
    // clang-format on
    return {};
}

bool isChange(std::uint32_t messageId) {
    return messageId == RLINK_WDS_CREATE_PROFILE_REQ_V01 ||
           messageId == RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01 ||
           messageId == RLINK_WDS_DELETE_PROFILE_REQ_V01;
}

}  // namespace

FaultPoint pointOf(Fault fault) {
    return infoOf(fault).point;
}

std::string toString(Fault fault) {
    return std::string(infoOf(fault).name);
}

std::optional<Fault> faultNamed(std::string_view name) {
    const auto faults = allFaults();
    const auto found = std::find_if(faults.begin(), faults.end(),
                                    [&](Fault fault) { return infoOf(fault).name == name; });
    return found == faults.end() ? std::nullopt : std::optional(*found);
}

std::vector<Fault> allFaults() {
    std::vector<Fault> faults;
    for (int number = 0; !infoOf(static_cast<Fault>(number)).name.empty(); ++number) {
        faults.push_back(static_cast<Fault>(number));
    }
    return faults;
}

bool appliesTo(Fault fault, std::uint32_t messageId) {
    if (pointOf(fault) == FaultPoint::Connect) {
        return false;
    }
    if (pointOf(fault) == FaultPoint::Indication) {
        const bool isForeign =
            messageId == kForeignChange && fault != Fault::IndicationBeforeResponse;
        return isForeign || isChange(messageId);
    }
    switch (fault) {
        case Fault::TableFull:
            return messageId == RLINK_WDS_CREATE_PROFILE_REQ_V01;
        case Fault::ListOverrun:
            return messageId == RLINK_WDS_GET_PROFILE_LIST_REQ_V01;
        case Fault::GarbageEnumerators:
            return messageId == RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01;
        case Fault::UnterminatedText:
            return messageId == RLINK_WDS_GET_PROFILE_LIST_REQ_V01 ||
                   messageId == RLINK_WDS_GET_PROFILE_SETTINGS_REQ_V01;
        default:
            return messageId != kForeignChange;
    }
}

}  // namespace velasim
