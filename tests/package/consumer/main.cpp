// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
//
// Uses every exported class from outside the library: links each, and finds their types again.
#include <vela/Manager.h>
#include <vela/Observer.h>
#include <vela/Responses.h>
#include <vela/Util.h>

#include <iostream>
#include <memory>
#include <sstream>

namespace {

int failures = 0;

void check(bool good, const char* what) {
    if (good) {
        return;
    }
    std::cerr << "failed: " << what << '\n';
    ++failures;
}

template <typename T>
std::string print(T value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

template <typename Base, typename... Records>
void checkTexts(const Records&... records) {
    for (const Base* record : {static_cast<const Base*>(&records)...}) {
        check(!record->dump().empty(), "a request and a response have a text");
    }
}

// Each request keeps its type and its text across the library's boundary.
void requests() {
    const vela::FilterProfileParams params;
    vela::CallbackRequest callback;
    callback.setReleaseToken(7);
    const vela::GetRequest get(nullptr);
    checkTexts<vela::ClientRequest>(
        vela::AddRequest(vela::AddProfileParams(params, true, vela::TechType::TECH_3GPP, false)),
        vela::ModifyRequest(vela::ModifyProfileParams(params), nullptr),
        vela::DeleteRequest(nullptr), vela::FilterRequest(params),
        vela::MatchRequest(params, nullptr), get, callback,
        vela::RefreshRequest(vela::PDCRefreshStatus::RefreshStarted));
    const vela::ClientRequest* base = &get;
    check(print(base->getRequestType()) == "Get", "a request type has a name");
    check(dynamic_cast<const vela::GetRequest*>(base) != nullptr, "a request keeps its class");
    check(dynamic_cast<const vela::AddRequest*>(base) == nullptr, "requests differ in class");
}

void responses() {
    const vela::Status ok = vela::Status::Success;
    const vela::GetResponse get(ok, std::nullopt);
    checkTexts<vela::ClientResponse>(vela::AddResponse(ok, nullptr), vela::ModifyResponse(ok),
                                     vela::DeleteResponse(ok), vela::FilterResponse(ok, {}),
                                     vela::MatchResponse(ok, true), get, vela::CallbackResponse(ok),
                                     vela::RefreshResponse(ok));
    check(print(get.getStatus()) == print(ok), "a response keeps its status");
}

void records() {
    vela::FilterProfileParams filter;
    filter.setApnName("internet");
    check(filter.dump().find("internet") != std::string::npos, "a record prints its fields");
    check(print(vela::TechType::TECH_3GPP2) == "3GPP2", "a technology has a name");
    check(print(vela::IPType::V4V6) == "V4V6", "an IP type has a name");
    check(print(vela::AuthType::PAP) == "PAP", "an authentication type has a name");
    check(print(vela::ApnClass::IMS) == "IMS", "an APN class has a name");
}

class PolicyCounter : public vela::Observer {
  public:
    void onPolicyEnd(const vela::PolicyCall& /*call*/, const vela::PolicyResult& result) override {
        check(result.key == nullptr && !result.matches, "no policy has a result");
        ++count;
    }
    int count = 0;
};

// A manager that was not initialised answers everything with the empty result.
void facade() {
    vela::Manager& manager = vela::Manager::getInstance();
    const vela::AddProfileParams params(false, vela::TechType::TECH_3GPP, false);
    check(!manager.addProfile(params), "nothing to add to");
    check(!manager.modifyProfile(vela::ModifyProfileParams(), nullptr), "nothing to modify");
    check(!manager.deleteProfile(nullptr), "nothing to delete");
    check(manager.filter(vela::FilterProfileParams()).empty(), "nothing to find");
    check(!manager.getProfile(nullptr), "nothing to read");
    check(!manager.match(vela::FilterProfileParams(), nullptr), "nothing to match");
    manager.refresh(vela::PDCRefreshStatus::RefreshCompleted);
    manager.dump();

    const auto counter = std::make_shared<PolicyCounter>();
    vela::setObserver(counter);
    vela::Util util;
    util.setProfileUpdateAllowed(true);
    check(!util.findOrCreateProfileForSetupDataCall(vela::TechType::TECH_3GPP, params),
          "nothing to call with");
    check(!util.matchLteAttachProfileId(1, params), "nothing to attach with");
    vela::setObserver(nullptr);
    check(counter->count == 2 && counter.use_count() == 1, "policies are observed");
}

}  // namespace

int main() {
    requests();
    responses();
    records();
    facade();
    return failures == 0 ? 0 : 1;
}
