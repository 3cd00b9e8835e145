// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include "velasim/Fault.h"

#include <wds_service_v01.h>

#include <algorithm>
#include <array>

namespace velasim {

namespace {

struct FaultInfo {
    Fault fault;
    std::string_view name;
    FaultPoint point;
};

constexpr std::array<FaultInfo, 22> kFaults = {{
    {Fault::SendFailure, "send-failure", FaultPoint::Request},
    {Fault::Timeout, "time-out", FaultPoint::Request},
    {Fault::TimeoutAfterEffect, "time-out-after-effect", FaultPoint::Request},
    {Fault::Refuse, "refuse", FaultPoint::Request},
    {Fault::TableFull, "table-full", FaultPoint::Request},
    {Fault::RestartBeforeEffect, "restart-before-effect", FaultPoint::Request},
    {Fault::RestartAfterEffect, "restart-after-effect", FaultPoint::Request},
    {Fault::RestartAfterResponse, "restart-after-response", FaultPoint::Request},
    {Fault::UnterminatedText, "unterminated-text", FaultPoint::Request},
    {Fault::ListOverrun, "list-overrun", FaultPoint::Request},
    {Fault::GarbageEnumerators, "garbage-enumerators", FaultPoint::Request},
    {Fault::LoseIndication, "lose-indication", FaultPoint::Indication},
    {Fault::DelayIndication, "delay-indication", FaultPoint::Indication},
    {Fault::DuplicateIndication, "duplicate-indication", FaultPoint::Indication},
    {Fault::ReorderIndication, "reorder-indication", FaultPoint::Indication},
    {Fault::IndicationBeforeResponse, "indication-before-response", FaultPoint::Indication},
    {Fault::TruncateIndication, "truncate-indication", FaultPoint::Indication},
    {Fault::CorruptIndication, "corrupt-indication", FaultPoint::Indication},
    {Fault::NotifierInitFailure, "notifier-init-failure", FaultPoint::Connect},
    {Fault::NoServiceInstance, "no-service-instance", FaultPoint::Connect},
    {Fault::ClientInitFailure, "client-init-failure", FaultPoint::Connect},
    {Fault::ErrorCallbackFailure, "error-callback-failure", FaultPoint::Connect},
}};

bool isChange(std::uint32_t messageId) {
    return messageId == RLINK_WDS_CREATE_PROFILE_REQ_V01 ||
           messageId == RLINK_WDS_MODIFY_PROFILE_SETTINGS_REQ_V01 ||
           messageId == RLINK_WDS_DELETE_PROFILE_REQ_V01;
}

const FaultInfo& infoOf(Fault fault) {
    return kFaults.at(static_cast<std::size_t>(fault));
}

}  // namespace

FaultPoint pointOf(Fault fault) {
    return infoOf(fault).point;
}

std::string toString(Fault fault) {
    return std::string(infoOf(fault).name);
}

std::optional<Fault> faultNamed(std::string_view name) {
    const auto* found = std::find_if(kFaults.begin(), kFaults.end(),
                                     [&](const FaultInfo& info) { return info.name == name; });
    return found == kFaults.end() ? std::nullopt : std::optional(found->fault);
}

std::vector<Fault> allFaults() {
    std::vector<Fault> faults;
    faults.reserve(kFaults.size());
    for (const auto& info : kFaults) {
        faults.push_back(info.fault);
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
