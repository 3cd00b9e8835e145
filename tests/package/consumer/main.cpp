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

// Each request keeps its type and its text across the library's boundary.
void requests() {
    const vela::ProfileParams params;
    const vela::AddRequest add(
        vela::AddProfileParams(params, true, vela::TechType::TECH_3GPP, false));
    const vela::ModifyRequest modify(vela::ModifyProfileParams(params), nullptr);
    const vela::DeleteRequest remove(nullptr);
    const vela::FilterRequest filter{vela::FilterProfileParams(params)};
    const vela::MatchRequest match(vela::FilterProfileParams(params), nullptr);
    const vela::GetRequest get(nullptr);
    const vela::RefreshRequest refresh(vela::PDCRefreshStatus::RefreshStarted);
    vela::CallbackRequest callback;
    callback.setReleaseToken(7);
    const vela::ClientRequest* const all[] = {&add,   &modify, &remove,  &filter,
                                              &match, &get,    &refresh, &callback};
    for (const vela::ClientRequest* request : all) {
        check(!request->dump().empty(), "a request has a text");
        check(!print(request->getRequestType()).empty(), "a request type has a name");
    }
    const vela::ClientRequest* base = &get;
    check(dynamic_cast<const vela::GetRequest*>(base) != nullptr, "a request keeps its class");
    check(dynamic_cast<const vela::AddRequest*>(base) == nullptr, "requests differ in class");
}

void responses() {
    const vela::Status ok = vela::Status::Success;
    const vela::AddResponse add(ok, nullptr);
    const vela::ModifyResponse modify(ok);
    const vela::DeleteResponse remove(ok);
    const vela::FilterResponse filter(ok, {});
    const vela::MatchResponse match(ok, true);
    const vela::GetResponse get(ok, std::nullopt);
    const vela::CallbackResponse callback(ok);
    const vela::RefreshResponse refresh(ok);
    const vela::ClientResponse* const all[] = {&add,   &modify, &remove,   &filter,
                                               &match, &get,    &callback, &refresh};
    for (const vela::ClientResponse* response : all) {
        check(!response->dump().empty(), "a response has a text");
        check(print(response->getStatus()) == print(ok), "a response keeps its status");
    }
}

void records() {
    vela::FilterProfileParams filter;
    filter.setApnName("internet");
    check(filter.dump().find("internet") != std::string::npos, "a record prints its fields");
    check(!print(vela::TechType::TECH_3GPP2).empty(), "a technology has a name");
    check(!print(vela::IPType::V4V6).empty(), "an IP type has a name");
    check(!print(vela::AuthType::PAP).empty(), "an authentication type has a name");
    check(!print(vela::ApnClass::IMS).empty(), "an APN class has a name");
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
