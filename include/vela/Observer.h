// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// What the library does, told to a program as it happens: values of the library's own types, never
// text. For telemetry, for tools that explain, and for tests.
#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <vector>

#include "vela/Export.h"
#include "vela/IProfileKey.h"
#include "vela/ProfileChangedInd.h"
#include "vela/ProfileParams.h"
#include "vela/ProfileTypes.h"
#include "vela/Requests.h"
#include "vela/Responses.h"

namespace vela {

/** The messages of the wireless data service that the library sends, by their numbers there. */
enum class ModemMessageType : std::uint32_t {
    RegisterIndications = 0x03,
    CreateProfile = 0x27,
    ModifyProfile = 0x28,
    DeleteProfile = 0x29,
    ListProfiles = 0x2A,
    ReadProfile = 0x2B,
    ConfigureEventList = 0xA7,
    BindSubscription = 0xAF,
};

/** What became of a message. */
enum class MessageOutcome : std::int32_t {
    /** The modem has carried it out. */
    Answered = 0,
    /** The modem has refused it, and says why. */
    Refused = 1,
    /** No answer in time: whether the modem has carried it out is unknown. */
    TimedOut = 2,
    /** There is no connection to the modem, or the messaging library says that it failed itself. */
    NotSent = 3,
    /** The service went away or its answer cannot be read: whether the modem has carried it out is
     * unknown. */
    Lost = 4,
};

/** A modem profile: as the library holds it, or as it was written or read. */
struct ProfileImage {
    TechType techType = TechType::TECH_3GPP;
    /** The modem's profile index; -1 when it has none yet. */
    int profileId = -1;
    /** As `Manager::getProfile` gives it; of a modification only the fields that were written. The
     * password is in clear text. */
    ProfileParams params;
    /** Survives a power cycle. Says nothing of a modification, nor does the next. */
    bool isPersistent = false;
    /** This process has created it, and has not read it from the modem since; whether any libvelar
     * has, `params` tells by the profile's name. */
    bool isVelaCreated = false;
    // What the modem keeps, out of which come the home and roaming types of `params`. Of 3GPP2
    // profiles only the first.
    std::optional<IPType> pdpType;
    /** UNKNOWN stands for no override. */
    std::optional<IPType> overrideHomeIPType;
    std::optional<IPType> lteRoamIPType;
    std::optional<IPType> umtsRoamIPType;
};

/** What a filter can ask for, in the order in which it is compared. */
enum class FilterCriterion : std::int32_t {
    TechType = 0,
    ProfileId = 1,
    ApnName = 2,
    ApnTypesMask = 3,
    UserName = 4,
    Password = 5,
    AuthType = 6,
    ApnClass = 7,
    IsClatEnabled = 8,
    IsIAProfile = 9,
    IsVelaProfile = 10,
    HomeIPType = 11,
    RoamIPType = 12,
    MaxPdnsConnPerBlock = 13,
    MaxPdnConnTimer = 14,
    PdnReqWaitInterval = 15,
    IsApnDisabled = 16,
    IsEmergencySupported = 17,
};

/** An entry of the cache that was held against a filter. */
struct ProfileCandidate {
    /** The entry's, as it stands in `IProfileKey::dump` of its keys. */
    unsigned long token = 0;
    /** Empty: the library could not read this profile, and passes it over. */
    std::optional<ProfileImage> profile;
    /** The criteria of the filter that the profile does not meet, all of them, each found by the
     * library's own comparison; none for a profile that fits. */
    std::vector<FilterCriterion> mismatches;

    bool fits() const { return profile.has_value() && mismatches.empty(); }
};

/** One message to the modem and what became of it. */
struct ModemMessage {
    ModemMessageType type = ModemMessageType::ReadProfile;
    MessageOutcome outcome = MessageOutcome::Answered;
    /** The modem's error number, from its response; 0 unless it has refused. */
    std::uint32_t error = 0;
    /** What the messaging library returned (its RLINK_ERROR_...); 0 when an answer arrived. */
    int result = 0;
    /** How long the worker thread waited for it. */
    std::chrono::nanoseconds duration{0};
    /** The request that it serves; null when the library sends it on its own account: to connect,
     * or to follow an indication. */
    const ClientRequest* request = nullptr;
    /** Of the profile, or of the list; no meaning for messages about neither. */
    TechType techType = TechType::TECH_3GPP;
    /** The modem's profile index; -1 when the message has none, or the new one is unknown. */
    int profileId = -1;
    /** What was written (create, modify) or read; null for none. */
    const ProfileImage* profile = nullptr;
};

/** What the library made of an indication. */
enum class IndicationOutcome : std::int32_t {
    /** One that the library was waiting for after a change of its own. */
    Confirmed = 0,
    /** Any other: someone else's change, or one that was told before. The cache has read again what
     * it names, or dropped it; the messages tell how that went. */
    Followed = 1,
    /** It cannot be decoded or says nothing; `change` has no meaning. */
    Unreadable = 2,
};

struct ModemIndication {
    ProfileChangedInd change;
    IndicationOutcome outcome = IndicationOutcome::Confirmed;
};

enum class ServiceState : std::int32_t {
    /** A client is connected and has asked for indications; messages tell whether it gets them. */
    Up = 0,
    /** The service has gone; the library waits for it. May be told twice of one outage. */
    Down = 1,
    /** The service came up, but no client could be connected. Only `Manager::init` is sure to try
     * again. */
    ConnectFailed = 2,
};

/** The operations of `Util` that are policies; their public steps show as the requests they make.
 */
enum class Policy : std::int32_t {
    LteAttach = 0,
    LteAttachMatch = 1,
    SetupDataCall = 2,
    EmergencyDataCall = 3,
    ApnClasses = 4,
    /** One entry of the former, or a call of its own. */
    ApnClassAndTechType = 5,
    ApnTypesMasks = 6,
};

/** A call of a policy with its arguments; those that it does not take are null or say nothing. */
struct PolicyCall {
    Policy policy = Policy::LteAttach;
    bool isProfileUpdateAllowed = false;
    const ProfileParams* params = nullptr;
    /** SetupDataCall and ApnClassAndTechType. */
    TechType techType = TechType::TECH_3GPP;
    /** LteAttachMatch: the modem's profile index. */
    int profileId = -1;
    /** ApnClasses and ApnTypesMasks. */
    const std::list<ProfileParams>* profiles = nullptr;
    /** ApnClasses. */
    const std::list<ProfileParams>* profiles3gpp2 = nullptr;
};

struct PolicyResult {
    /** Of the first, third and fourth policy: null when no profile was found or created. */
    const IProfileKey* key = nullptr;
    /** LteAttachMatch. */
    bool matches = false;
};

/**
 * Is told what the library does. Override what is of interest; the rest does nothing.
 *
 * Threads: requests and policies are told on the thread that makes them, everything else on the
 * library's worker thread, of which a second `Manager::init` has two for a moment. Calls on
 * different threads may come at the same time: guard what they share. What one thread does comes in
 * its order, and what the worker thread does for a request comes between the request and its
 * response. Only the release of a key that is dropped on the worker thread (by an expiration
 * callback) is answered at once and carried out later: its messages come after its response.
 *
 * Arguments, and what they point to, are valid during the call. Copy values, but keep no key, for a
 * key that is kept keeps a temporary profile in the modem.
 *
 * A call delays the library, and on the worker thread everyone who waits for it. It, and the
 * observer's destructor, may use any code but the library's operations: they must not call
 * `Manager` or `Util`, drop the last copy of a key, or wait for a thread that does. `setObserver`
 * and what only reads (getters, `dump` of a request, a response or a key) are allowed. What a call
 * throws is caught and dropped; the library goes on as if it had returned.
 */
class VELA_API Observer {
  public:
    Observer() = default;
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    virtual ~Observer();

    /** A request is about to be handed to the worker thread. Those of keys are among them, a
     * release and the registration of a listener, but not what finds no worker thread: before
     * `Manager::init`, and of keys that have outlived it. */
    virtual void onRequest(const ClientRequest& request);

    /**
     * The request has come back. Its status is what the caller gets: an Add that the modem refuses
     * is a Success without a key, a Modify that it refuses a Success, and the registration of a
     * listener always a Failure; the messages tell more.
     * @param response null when there was none, as for a request that the worker thread refuses
     * @param duration how long its caller has waited, in the line of callers included
     */
    virtual void onResponse(const ClientRequest& request, const ClientResponse* response,
                            std::chrono::nanoseconds duration);

    /** A Filter request is held against every entry of the cache, in its order, or a Match request
     * against the one of its key; that list is empty when the profile has gone. Not told of one
     * that fails before: during a refresh, or without a key of the library's. */
    virtual void onSearch(const ClientRequest& request,
                          const std::vector<ProfileCandidate>& candidates);

    /** A message has come back from the modem, or has not. */
    virtual void onMessage(const ModemMessage& message);

    /** Told when the cache has taken it in, after the messages that this took. Other indications
     * than profile changes are not told. */
    virtual void onIndication(const ModemIndication& indication);

    /** Told after the messages that ask for indications. */
    virtual void onService(ServiceState state);

    /** Policies nest: `ApnClasses` makes calls of `ApnClassAndTechType`. */
    virtual void onPolicyBegin(const PolicyCall& call);
    virtual void onPolicyEnd(const PolicyCall& call, const PolicyResult& result);
};

/**
 * Installs the process's one observer in place of the former; empty for none. Any thread, at any
 * time, also before `Manager::init` and from an observer's own call. The former may still be in a
 * call of another thread when this returns; the last of them lets it go, on its thread.
 *
 * An observer that comes while a request or policy is under way may be told its end, without its
 * beginning; of a message that was begun without any observer nothing is told. The observer stays
 * until it is replaced, and is not destroyed at process exit: what it refers to must live as long.
 * In a child that was forked while the library ran nothing is told.
 *
 * Without an observer the library computes, allocates and locks nothing for it.
 */
VELA_API void setObserver(std::shared_ptr<Observer> observer);

}  // namespace vela
